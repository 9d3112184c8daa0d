// libFuzzer target for the text parsers that read outside input: the log recognisers, the NDJSON
// object reader and the log time stamps. Any input must come back as a value, never a crash.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/sim/JsonObjectReader.h"
#include "platform/sim/LogExport.h"
#include "switching/LogScanner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto found = corvanel::LogScanner::parse(text, corvanel::WallTime{})) {
        // A recognised rate is always plausible.
        if (found->sampleRate < 32000 || found->sampleRate > 768000) __builtin_trap();
    }
    (void)corvanel::readJsonObject(text);
    (void)corvanel::parseLogTimestamp(text);
    return 0;
}
