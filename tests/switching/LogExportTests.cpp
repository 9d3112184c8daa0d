// Exported logs: time stamps, line problems, the simulated log's time span, and the scan-log
// report over a sample export.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/sim/LogExport.h"
#include "platform/sim/SimSystemLog.h"
#include "switching/ScanLogReport.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

const std::string samplePath =
    std::string(CORVANEL_SOURCE_DIR) + "/tests/switching/data/music-session.ndjson";

WallTime utc(const char* text) {
    return *parseLogTimestamp(text);
}

TEST(LogTimestamp, ReadsZonesAndFractions) {
    EXPECT_EQ(iso8601(utc("2024-05-01 21:14:03.123456+0200")), "2024-05-01T19:14:03.123456Z");
    EXPECT_EQ(utc("2024-05-01 21:14:03.123456+0200"), utc("2024-05-01T19:14:03.123456Z"));
    EXPECT_EQ(utc("2024-05-01 21:14:03+02:00"), utc("2024-05-01 19:14:03"));
    EXPECT_EQ(utc("2024-01-01 00:30:00-0130"), utc("2024-01-01 02:00:00Z"));
    EXPECT_EQ(iso8601(utc("2024-02-29 23:59:59.5")), "2024-02-29T23:59:59.500000Z");
    for (const char* bad : {"yesterday", "2024-05-01", "2024-02-30 10:00:00", "2024-05-01 24:00:00",
                            "2024-05-01 21:14:03.", "2024-05-01 21:14:03 +0200",
                            "2024-05-01 21:14:03+2", "2024-05-01 21:14:03.5Zulu"}) {
        EXPECT_FALSE(parseLogTimestamp(bad)) << bad;
    }
}

TEST(LogExport, ReadsEntriesAndReportsBadLinesByNumber) {
    std::istringstream input(
        "{\"eventMessage\":\"one\",\"processImagePath\":\"/A/Music\","
        "\"timestamp\":\"2024-05-01 10:00:00+0000\"}\n"
        "\n"
        "{\"eventMessage\":\"two\",\"processImagePath\":\"Music\"}\n"
        "not json\n"
        "{\"eventMessage\":7,\"processImagePath\":\"Music\",\"timestamp\":\"2024-05-01 "
        "10:00:00\"}\n"
        "{\"eventMessage\":\"three\",\"timestamp\":\"2024-05-01 10:00:00\"}\n"
        "{\"count\":1,\"finished\":1}\n");
    const LogExport exported = readLogExport(input);
    ASSERT_EQ(exported.entries.size(), 1u);
    EXPECT_EQ(exported.entries[0].process, "Music");
    EXPECT_EQ(exported.entries[0].message, "one");
    ASSERT_EQ(exported.problems.size(), 4u);
    EXPECT_EQ(exported.problems[0].line, 3u);
    EXPECT_EQ(exported.problems[0].reason, "no \"timestamp\" text");
    EXPECT_EQ(exported.problems[1].line, 4u);
    EXPECT_EQ(exported.problems[1].reason, "not a JSON object (expected '{' at column 1)");
    EXPECT_EQ(exported.problems[2].reason, "\"eventMessage\" is not a text");
    EXPECT_EQ(exported.problems[3].reason, "no \"processImagePath\" text");
}

TEST(LogExport, AnUnreadableFileSaysWhyAndAddsNothing) {
    SimSystemLog log;
    const auto result = log.addExport("/nonexistent/export.ndjson");
    ASSERT_TRUE(std::holds_alternative<std::string>(result));
    EXPECT_EQ(std::get<std::string>(result),
              "cannot open /nonexistent/export.ndjson: No such file or directory");
    const auto directory = log.addExport(CORVANEL_SOURCE_DIR);
    ASSERT_TRUE(std::holds_alternative<std::string>(directory));
    EXPECT_EQ(std::get<std::string>(directory),
              std::string("cannot read ") + CORVANEL_SOURCE_DIR + ": Is a directory");
}

TEST(SimSystemLogSpan, CountsBackFromTheNewestEntryOrTheClockInclusively) {
    SimSystemLog log;
    const WallTime base = WallTime{} + 1000s;
    log.add("Music", "late", base + 10s);
    log.add("Music", "early", base);
    log.add("Music", "same time, written after", base + 10s);
    std::vector<std::string> seen;
    const auto visit = [&seen](std::string_view message, WallTime) { seen.emplace_back(message); };
    EXPECT_FALSE(log.enumerate("Music", 10, visit));
    EXPECT_EQ(seen, (std::vector<std::string>{"early", "late", "same time, written after"}));
    seen.clear();
    log.enumerate("Music", 9.999, visit);
    EXPECT_EQ(seen.size(), 2u);

    SimSystemLog clocked([base] { return base + 5s; });
    clocked.add("Music", "past", base);
    clocked.add("Music", "future", base + 10s);
    seen.clear();
    clocked.enumerate("Music", 60, visit);
    EXPECT_EQ(seen, std::vector<std::string>{"past"});
}

class ScanLogReportTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto loaded = loadLogExport(samplePath);
        ASSERT_TRUE(std::holds_alternative<LogExport>(loaded)) << std::get<std::string>(loaded);
        exported = std::get<LogExport>(loaded);
    }
    LogExport exported;
};

TEST_F(ScanLogReportTest, AddingTheExportToALogReportsTheSameProblems) {
    SimSystemLog log;
    const auto added = log.addExport(samplePath);
    ASSERT_TRUE(std::holds_alternative<std::vector<LogExportProblem>>(added));
    EXPECT_EQ(std::get<std::vector<LogExportProblem>>(added).size(), exported.problems.size());
    EXPECT_EQ(scanLogReport(log, 1800, false).substr(0, 22), "Found 96 kHz \u00B7 24-bit");
}

TEST_F(ScanLogReportTest, TheSampleExportHasTwoBadLinesAndTheCapabilitiesMessageWins) {
    ASSERT_EQ(exported.problems.size(), 2u);
    EXPECT_EQ(exported.problems[0].line, 8u);
    EXPECT_EQ(exported.problems[1].line, 10u);
    EXPECT_EQ(exported.problems[1].reason, "unreadable \"timestamp\" \"yesterday\"");

    SimSystemLog log;
    log.add(exported.entries);
    EXPECT_EQ(scanLogReport(log, 1800, true),
              "{\"outcome\":\"found\",\"sampleRate\":96000,\"bitDepth\":24,\"bitRateKbps\":null,"
              "\"source\":\"Apple Music\",\"date\":\"2024-05-01T19:14:03.123456Z\","
              "\"rawMessage\":\"[audioCapabilities] asbdSampleRate = 96 kHz, sdBitDepth = 24 "
              "bit, isLossless = 1, \u201CSpatial\u201D = 0 \U0001F3B5\"}");
    EXPECT_EQ(scanLogReport(log, 1.0, true), "{\"outcome\":\"nothing\"}");
    EXPECT_EQ(scanLogReport(log, 1.0, false), "Nothing usable from Music in the scanned span.");
}

TEST_F(ScanLogReportTest, AnEarlierNowScansAnEarlierSpan) {
    SimSystemLog log([] { return *parseLogTimestamp("2024-05-01 21:14:03.000000+0200"); });
    log.add(exported.entries);
    EXPECT_EQ(scanLogReport(log, 1800, false),
              "Found 44.1 kHz \u00B7 16-bit (Lossless decoder) at 2024-05-01T19:14:02.731554Z\n"
              "  ACAppleLosslessDecoder::Initialize: Input format: 2 ch, 44100 Hz, from 16-bit "
              "source");
}

TEST(ScanLogOutcome, FailuresAndEscapesAreValidJson) {
    EXPECT_EQ(scanOutcomeJson(ScanFailed{"Could not read \"it\"\n\x01"}),
              "{\"outcome\":\"failed\",\"message\":\"Could not read \\\"it\\\"\\n\\u0001\"}");
    const RateDetection fractional{44100.5, std::nullopt, 256, "AAC", WallTime{}, "m\\"};
    EXPECT_EQ(scanOutcomeJson(ScanFound{fractional}),
              "{\"outcome\":\"found\",\"sampleRate\":44100.5,\"bitDepth\":null,\"bitRateKbps\":"
              "256,\"source\":\"AAC\",\"date\":\"1970-01-01T00:00:00.000000Z\",\"rawMessage\":"
              "\"m\\\\\"}");
}

TEST(ScanLogArguments, ReadsOptionsAndRejectsNonsense) {
    const auto parsed = parseScanLogArguments(
        {"--json", "export.ndjson", "--seconds", "60.5", "--now", "2024-05-01 21:00:00"});
    ASSERT_TRUE(std::holds_alternative<ScanLogOptions>(parsed));
    const auto& options = std::get<ScanLogOptions>(parsed);
    EXPECT_EQ(options.path, "export.ndjson");
    EXPECT_EQ(options.seconds, 60.5);
    EXPECT_EQ(options.now, "2024-05-01 21:00:00");
    EXPECT_TRUE(options.json);
    EXPECT_EQ(std::get<ScanLogOptions>(parseScanLogArguments({"x"})).seconds, 1800);

    const auto error = [](std::vector<std::string> arguments) {
        const auto result = parseScanLogArguments(arguments);
        return std::holds_alternative<std::string>(result) ? std::get<std::string>(result) : "";
    };
    EXPECT_EQ(error({}), "no log file given");
    EXPECT_EQ(error({"a", "b"}), "only one log file, please (also got \"b\")");
    EXPECT_EQ(error({"a", "--seconds"}), "--seconds needs a number of seconds");
    EXPECT_EQ(error({"a", "--seconds", "-5"}), "--seconds needs a positive number, not \"-5\"");
    EXPECT_EQ(error({"a", "--seconds", "ten"}), "--seconds needs a positive number, not \"ten\"");
    EXPECT_EQ(error({"a", "--now"}), "--now needs a time");
    EXPECT_EQ(error({"a", "--verbose"}), "unknown option --verbose");
}

}  // namespace
}  // namespace corvanel
