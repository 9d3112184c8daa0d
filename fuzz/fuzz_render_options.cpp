// libFuzzer target for `corvanel-tool render`'s options: the input is split into arguments at
// line breaks. Whatever is accepted must be drawable: an image that fits in memory, levels from
// 0 to 1, a finite moment of the audio and a visualizer time its arithmetic can hold.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RenderOptions.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvanel::tool;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> arguments;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        arguments.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    RenderOptions options;
    if (parseRenderOptions(arguments, options)) return 0;
    const double width = options.width * options.scale;
    const double height = options.height * options.scale;
    if (!(width >= 0.5 && height >= 0.5 && width <= 8192 && height <= 8192)) __builtin_trap();
    if (!(width * height <= 4096.0 * 4096.0)) __builtin_trap();
    const auto isLevel = [](float value) { return value >= 0.0f && value <= 1.0f; };
    for (const std::vector<float>* list : {&options.values.levels, &options.values.peaks})
        for (const float value : *list)
            if (!isLevel(value)) __builtin_trap();
    if (!isLevel(options.values.left) || !isLevel(options.values.right)) __builtin_trap();
    if (!(options.at >= 0 && std::isfinite(options.at))) __builtin_trap();
    if (options.time && !(std::fabs(*options.time) <= 1e10)) __builtin_trap();
    return 0;
}
