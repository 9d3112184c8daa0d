#include "RenderOptions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

#include "switching/NumberText.h"

namespace corvanel::tool {

namespace {

using OptionError = std::optional<std::string>;

// A still frame is drawn in memory several layers deep; these keep each layer well within it.
constexpr double largestSide = 8192;
constexpr double largestArea = 4096.0 * 4096.0;
// The visualizer's clock, in seconds either side of 2001: far beyond any real frame, yet small
// enough for its whole-number arithmetic.
constexpr double largestTime = 1e10;

std::optional<float> meterLevel(const std::string& text) {
    const std::optional<double> value = parseDecimal(text);
    if (!value || *value < 0 || *value > 1) return std::nullopt;
    return static_cast<float>(*value);
}

std::optional<std::vector<float>> parseList(const std::string& text) {
    std::vector<float> values;
    std::size_t start = 0;
    while (start <= text.size() && !text.empty()) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        const std::optional<float> value = meterLevel(text.substr(start, comma - start));
        if (!value) return std::nullopt;
        values.push_back(*value);
        start = comma + 1;
    }
    return values;
}

OptionError setNumber(double& target, const std::string& option, const std::string& text) {
    const std::optional<double> value = parseDecimal(text);
    if (!value) return option + " expects a number, got \"" + text + "\"";
    target = *value;
    return std::nullopt;
}

OptionError setLevel(float& target, const std::string& option, const std::string& text) {
    const std::optional<float> value = meterLevel(text);
    if (!value) return option + " expects a level from 0 to 1, got \"" + text + "\"";
    target = *value;
    return std::nullopt;
}

OptionError setList(std::vector<float>& target, const std::string& option,
                    const std::string& text) {
    std::optional<std::vector<float>> values = parseList(text);
    if (!values)
        return option + " expects numbers from 0 to 1 separated by commas, got \"" + text + "\"";
    target = std::move(*values);
    return std::nullopt;
}

OptionError setSize(RenderOptions& options, const std::string& text) {
    const std::size_t x = text.find('x');
    const std::optional<double> w =
        x == std::string::npos ? std::nullopt : parseDecimal(text.substr(0, x));
    const std::optional<double> h =
        x == std::string::npos ? std::nullopt : parseDecimal(text.substr(x + 1));
    if (!w || !h || *w <= 0 || *h <= 0)
        return "--size expects WIDTHxHEIGHT in points, got \"" + text + "\"";
    options.width = *w;
    options.height = *h;
    return std::nullopt;
}

struct OptionRow {
    const char* name;
    std::function<OptionError(RenderOptions&, const std::string&)> apply;
};

// Every option takes one value; adding an option is one row here.
const std::vector<OptionRow>& optionTable() {
    static const std::vector<OptionRow> table{
        {"--style",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             o.style = v;
             return std::nullopt;
         }},
        {"--size", [](RenderOptions& o, const std::string& v) { return setSize(o, v); }},
        {"--scale",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             if (OptionError error = setNumber(o.scale, "--scale", v)) return error;
             if (o.scale <= 0 || o.scale > 8) return "--scale expects a number from 0 to 8";
             return std::nullopt;
         }},
        {"-o",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             o.output = v;
             return std::nullopt;
         }},
        {"--levels", [](RenderOptions& o,
                        const std::string& v) { return setList(o.values.levels, "--levels", v); }},
        {"--peaks", [](RenderOptions& o,
                       const std::string& v) { return setList(o.values.peaks, "--peaks", v); }},
        {"--left", [](RenderOptions& o,
                      const std::string& v) { return setLevel(o.values.left, "--left", v); }},
        {"--right", [](RenderOptions& o,
                       const std::string& v) { return setLevel(o.values.right, "--right", v); }},
        {"--label",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             o.label = v;
             return std::nullopt;
         }},
        {"--audio",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             o.audio = v;
             return std::nullopt;
         }},
        {"--at",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             if (OptionError error = setNumber(o.at, "--at", v)) return error;
             if (o.at < 0) return "--at expects seconds from the start of the file";
             return std::nullopt;
         }},
        {"--gallery",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             o.gallery = v;
             return std::nullopt;
         }},
        {"--time",
         [](RenderOptions& o, const std::string& v) -> OptionError {
             double value = 0;
             if (OptionError error = setNumber(value, "--time", v)) return error;
             if (std::fabs(value) > largestTime)
                 return "--time expects seconds since 2001 within 1e10 either way";
             o.time = value;
             return std::nullopt;
         }},
    };
    return table;
}

}  // namespace

OptionError parseRenderOptions(const std::vector<std::string>& arguments, RenderOptions& options) {
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        const std::string& name = arguments[i];
        const auto& table = optionTable();
        const auto row = std::find_if(table.begin(), table.end(),
                                      [&](const OptionRow& s) { return name == s.name; });
        if (row == table.end()) return "unknown option \"" + name + "\"";
        if (i + 1 >= arguments.size()) return name + " needs a value";
        if (OptionError error = row->apply(options, arguments[i + 1])) return error;
    }
    return imageSizeProblem(options.width * options.scale, options.height * options.scale);
}

OptionError imageSizeProblem(double pixelWidth, double pixelHeight) {
    char size[96];
    std::snprintf(size, sizeof size, "%.0fx%.0f pixels", pixelWidth, pixelHeight);
    if (!(pixelWidth <= largestSide && pixelHeight <= largestSide &&
          pixelWidth * pixelHeight <= largestArea))
        return "--size and --scale give an image of " + std::string(size) +
               "; at most 8192 pixels a side and 16777216 pixels in all fit in memory";
    if (std::lround(pixelWidth) < 1 || std::lround(pixelHeight) < 1)
        return "--size and --scale give an image of " + std::string(size) + ", too small to draw";
    return std::nullopt;
}

}  // namespace corvanel::tool
