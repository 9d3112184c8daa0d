// corvanel-tool scan-log FILE [--seconds S] [--now TIME] [--json]: what the rate switcher would
// detect from an exported system log (`log show --style ndjson`), using the real recognisers and
// selection rule over the Music process's messages of the last S seconds before TIME. A FIFO as
// FILE waits for its writer, as a pipe does; other files that are not regular are refused.
#include <cstdio>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ToolCommand.h"
#include "platform/sim/LogScanCandidate.h"
#include "switching/ScanLogReport.h"

namespace corvanel::tool {
namespace {

constexpr std::size_t shownWarnings = 100;

int scanLog(const std::vector<std::string>& arguments) {
    const auto parsed = parseScanLogArguments(arguments);
    if (const auto* error = std::get_if<std::string>(&parsed)) {
        std::fprintf(stderr, "corvanel-tool scan-log: %s\nusage: corvanel-tool scan-log %s\n",
                     error->c_str(), scanLogUsage);
        return 2;
    }
    const ScanLogOptions& options = std::get<ScanLogOptions>(parsed);

    std::optional<WallTime> end;
    if (options.now) {
        end = parseLogTimestamp(*options.now);
        if (!end) {
            std::fprintf(stderr,
                         "corvanel-tool scan-log: --now needs a time such as "
                         "\"2024-05-01 21:14:03.123456+0200\", not \"%s\"\n",
                         options.now->c_str());
            return 2;
        }
    }

    // Only the first warnings are shown; an endless export would otherwise print without end.
    std::size_t warnings = 0;
    const auto scanned =
        scanLogExport(options.path, options.seconds, end, [&](const LogExportProblem& problem) {
            if (warnings++ < shownWarnings)
                std::fprintf(stderr, "corvanel-tool scan-log: warning: %s line %zu skipped: %s\n",
                             options.path.c_str(), problem.line, problem.reason.c_str());
        });
    if (const auto* error = std::get_if<std::string>(&scanned)) {
        std::fprintf(stderr, "corvanel-tool scan-log: %s\n", error->c_str());
        return 1;
    }
    if (warnings > shownWarnings)
        std::fprintf(stderr, "corvanel-tool scan-log: warning: %zu more lines skipped, not shown\n",
                     warnings - shownWarnings);
    const ScanOutcome& outcome = std::get<ScanOutcome>(scanned);
    std::printf("%s\n",
                (options.json ? scanOutcomeJson(outcome) : scanOutcomeText(outcome)).c_str());
    return 0;
}

const RegisterCommand registration{
    {"scan-log",
     std::string(scanLogUsage) +
         "  the detection an exported system log gives (a FIFO as FILE waits for its writer)",
     scanLog}};

}  // namespace
}  // namespace corvanel::tool
