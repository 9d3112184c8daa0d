// corvanel-tool scan-log FILE [--seconds S] [--now TIME] [--json]: what the rate switcher would
// detect from an exported system log (`log show --style ndjson`), using the real recognisers and
// selection rule over the Music process's messages of the last S seconds before TIME.
#include <cstdio>
#include <string>
#include <variant>
#include <vector>

#include "ToolCommand.h"
#include "platform/sim/SimSystemLog.h"
#include "switching/ScanLogReport.h"

namespace corvanel::tool {
namespace {

int scanLog(const std::vector<std::string>& arguments) {
    const auto parsed = parseScanLogArguments(arguments);
    if (const auto* error = std::get_if<std::string>(&parsed)) {
        std::fprintf(stderr, "corvanel-tool scan-log: %s\nusage: corvanel-tool scan-log %s\n",
                     error->c_str(), scanLogUsage);
        return 2;
    }
    const ScanLogOptions& options = std::get<ScanLogOptions>(parsed);

    SimSystemLog::EndOfLog endOfLog;
    if (options.now) {
        const auto now = parseLogTimestamp(*options.now);
        if (!now) {
            std::fprintf(stderr,
                         "corvanel-tool scan-log: --now needs a time such as "
                         "\"2024-05-01 21:14:03.123456+0200\", not \"%s\"\n",
                         options.now->c_str());
            return 2;
        }
        endOfLog = [time = *now] { return time; };
    }

    SimSystemLog log(endOfLog);
    const auto added = log.addExport(options.path);
    if (const auto* error = std::get_if<std::string>(&added)) {
        std::fprintf(stderr, "corvanel-tool scan-log: %s\n", error->c_str());
        return 1;
    }
    for (const LogExportProblem& problem : std::get<std::vector<LogExportProblem>>(added)) {
        std::fprintf(stderr, "corvanel-tool scan-log: warning: %s line %zu skipped: %s\n",
                     options.path.c_str(), problem.line, problem.reason.c_str());
    }
    std::printf("%s\n", scanLogReport(log, options.seconds, options.json).c_str());
    return 0;
}

const RegisterCommand registration{
    {"scan-log", std::string(scanLogUsage) + "  the detection an exported system log gives",
     scanLog}};

}  // namespace
}  // namespace corvanel::tool
