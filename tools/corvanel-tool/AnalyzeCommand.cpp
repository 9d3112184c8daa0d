// corvanel-tool analyze FILE [--json]: the meters' values for an audio file, one line per
// analysis tick, computed by the real analyzer as if the file were playing.
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "ToolCommand.h"
#include "corvanel-tool/OfflineSpectrum.h"
#include "platform/sim/AudioFileSource.h"

namespace corvanel::tool {
namespace {

// The analyzer publishes only levels from 0 to 1; should anything else ever come out, the JSON
// says null rather than "nan", which is not JSON.
void printValue(float value, const char* before) {
    if (std::isfinite(value))
        std::printf("%s%.6f", before, static_cast<double>(value));
    else
        std::printf("%snull", before);
}

void printValues(const std::vector<float>& values, const char* separator) {
    for (std::size_t i = 0; i < values.size(); ++i)
        printValue(values[i], i == 0 ? "" : separator);
}

void printText(const SpectrumSnapshot& values) {
    std::printf("%.3f ", values.time);
    printValues(values.levels, " ");
    std::printf(" ");
    printValues(values.peaks, " ");
    std::printf(" %.6f %.6f\n", static_cast<double>(values.leftLevel),
                static_cast<double>(values.rightLevel));
}

void printJson(const SpectrumSnapshot& values) {
    std::printf("{\"t\":%.3f,\"levels\":[", values.time);
    printValues(values.levels, ",");
    std::printf("],\"peaks\":[");
    printValues(values.peaks, ",");
    std::printf("]");
    printValue(values.leftLevel, ",\"left\":");
    printValue(values.rightLevel, ",\"right\":");
    std::printf("}\n");
}

int analyze(const std::vector<std::string>& arguments) {
    std::string path;
    bool json = false;
    for (const std::string& argument : arguments) {
        if (argument == "--json") {
            json = true;
        } else if (path.empty() && !argument.starts_with("--")) {
            path = argument;
        } else {
            std::fprintf(stderr, "corvanel-tool analyze: unexpected argument \"%s\"\n",
                         argument.c_str());
            return 2;
        }
    }
    if (path.empty()) {
        std::fprintf(stderr, "usage: corvanel-tool analyze FILE [--json]\n");
        return 2;
    }

    auto opened = AudioFileSource::open(path);
    if (const auto* error = std::get_if<std::string>(&opened)) {
        std::fprintf(stderr, "corvanel-tool analyze: %s\n", error->c_str());
        return 1;
    }
    std::shared_ptr<AudioFileSource> source =
        std::move(std::get<std::unique_ptr<AudioFileSource>>(opened));
    const double duration = static_cast<double>(source->frameCount()) / source->sampleRate();

    OfflineSpectrum offline(source);
    for (;;) {
        const SpectrumSnapshot values = offline.nextTick();
        if (values.time > duration + 1e-9) break;
        json ? printJson(values) : printText(values);
    }
    return 0;
}

const RegisterCommand registration{
    {"analyze",
     "FILE [--json]  meter values per 33 ms tick of an audio file (a FIFO as FILE waits for its "
     "writer)",
     analyze}};

}  // namespace
}  // namespace corvanel::tool
