#pragma once
// Options of `corvanel-tool render`. Every option takes one value; each is one row of the
// option table in RenderOptions.cpp, so a new option is one new row.
#include <optional>
#include <string>
#include <vector>

#include "meters/kit/MeterValues.h"

namespace corvanel::tool {

struct RenderOptions {
    std::string style = "bars";
    double width = 500;
    double height = 300;
    double scale = 1;
    std::string output;
    meters::MeterValues values;
    std::optional<std::string> label;
    std::optional<std::string> gallery;
    std::optional<std::string> audio;  // values from this file instead of --levels etc.
    double at = 0;                     // seconds into --audio
    // The visualizer's frame time, in seconds since 2001-01-01 UTC.
    std::optional<double> time;
};

// Fills `options` from the arguments; the error names the offending option in plain words.
std::optional<std::string> parseRenderOptions(const std::vector<std::string>& arguments,
                                              RenderOptions& options);

// Why an image of this many pixels cannot be drawn (too small, or more than fits in memory).
std::optional<std::string> imageSizeProblem(double pixelWidth, double pixelHeight);

}  // namespace corvanel::tool
