// libFuzzer target for the text parsers that read outside input: the log recognisers, the NDJSON
// object reader, the log time stamps and their conversion back to text, and scan-log's JSON
// strings. Any input must come back as a value, never a crash or undefined behaviour.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sim/JsonObjectReader.h"
#include "platform/sim/LogExport.h"
#include "switching/LogScanner.h"
#include "switching/ScanLogReport.h"
#include "switching/UnicodeNumeric.h"

namespace {

bool isValidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        std::size_t length = 1;
        const char32_t decoded = corvanel::decodeUtf8(text, at, length);
        if (decoded == U'\uFFFD' && length == 1 && static_cast<unsigned char>(text[at]) >= 0x80)
            return false;
        at += length;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvanel;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto found = LogScanner::parse(text, WallTime{})) {
        // A recognised rate is always plausible, and so is a depth.
        if (found->sampleRate < 32000 || found->sampleRate > 768000) __builtin_trap();
        if (found->bitDepth && (*found->bitDepth < 1 || *found->bitDepth > 64)) __builtin_trap();
    }
    (void)readJsonObject(text);
    if (const auto time = parseLogTimestamp(text)) {
        // A time read is one that can be written and read back, to the microsecond.
        const auto again = parseLogTimestamp(iso8601(*time));
        if (!again || *again != std::chrono::time_point_cast<std::chrono::microseconds>(*time))
            __builtin_trap();
    }
    if (!isValidUtf8(scanOutcomeJson(ScanFailed{std::string(text)}))) __builtin_trap();
    return 0;
}
