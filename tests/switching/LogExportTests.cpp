// Exported logs: time stamps, line problems, the simulated log's time span, and the scan-log
// report over a sample export.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "platform/sim/LogExport.h"
#include "platform/sim/LogScanCandidate.h"
#include "platform/sim/SimSystemLog.h"
#include "switching/LogScanner.h"
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

TEST(LogTimestamp, YearsBeyondWhatAClockCountsAreNoTimes) {
    for (const char* outside :
         {"0000-01-01 00:00:00", "9999-12-31 23:59:59.999999", "1899-12-31 23:59:59Z",
          "2200-01-01 00:00:00", "2199-12-31 23:30:00-0100", "1900-01-01 00:30:00+0100"}) {
        EXPECT_FALSE(parseLogTimestamp(outside)) << outside;
    }
    EXPECT_EQ(iso8601(utc("1900-01-01 00:00:00")), "1900-01-01T00:00:00.000000Z");
    EXPECT_EQ(iso8601(utc("2199-12-31 23:59:59.9999999")), "2199-12-31T23:59:59.999999Z");
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
        "{\"count\":1,\"finished\":1}\n"
        "{\"eventMessage\":\"four\",\"processImagePath\":\"Music\","
        "\"timestamp\":\"9999-12-31 23:59:59\"}\n" +
        std::string(longestLogLine + 1, '{') +
        "\n{\"eventMessage\":\"five\",\"processImagePath\":\"Music\","
        "\"timestamp\":\"2024-05-01 10:00:01\"}");
    const LogExport exported = readLogExport(input);
    ASSERT_EQ(exported.entries.size(), 2u);
    EXPECT_EQ(exported.entries[0].process, "Music");
    EXPECT_EQ(exported.entries[0].message, "one");
    EXPECT_EQ(exported.entries[1].message, "five");  // the last line, without a line break
    ASSERT_EQ(exported.problems.size(), 6u);
    EXPECT_EQ(exported.problems[0].line, 3u);
    EXPECT_EQ(exported.problems[0].reason, "no \"timestamp\" text");
    EXPECT_EQ(exported.problems[1].line, 4u);
    EXPECT_EQ(exported.problems[1].reason, "not a JSON object (expected '{' at column 1)");
    EXPECT_EQ(exported.problems[2].reason, "\"eventMessage\" is not a text");
    EXPECT_EQ(exported.problems[3].reason, "no \"processImagePath\" text");
    EXPECT_EQ(exported.problems[4].line, 8u);
    EXPECT_EQ(exported.problems[4].reason, "unreadable \"timestamp\" \"9999-12-31 23:59:59\"");
    EXPECT_EQ(exported.problems[5].line, 9u);
    EXPECT_EQ(exported.problems[5].reason, "longer than 1048576 bytes");
}

TEST(LogExport, AnUnreadableFileSaysWhy) {
    const auto error = [](const std::string& path) {
        const auto result = loadLogExport(path);
        return std::holds_alternative<std::string>(result) ? std::get<std::string>(result) : "";
    };
    EXPECT_EQ(error("/nonexistent/export.ndjson"),
              "cannot open /nonexistent/export.ndjson: No such file or directory");
    EXPECT_EQ(error(CORVANEL_SOURCE_DIR),
              std::string("cannot read ") + CORVANEL_SOURCE_DIR + ": Is a directory");
    // A device that never ends is refused before a byte is read.
    EXPECT_EQ(error("/dev/zero"),
              "cannot read /dev/zero: not a regular file, a FIFO or a terminal");
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

// scan-log keeps one entry of the export, not all of them: over a shuffled export, for many
// spans and ends, it must find what a scan of the whole log finds.
TEST(ScanLogExport, KeepingOneEntryFindsWhatTheWholeLogGives) {
    std::mt19937 random(19);
    const WallTime base = *parseLogTimestamp("2024-05-01 10:00:00Z");
    std::vector<LogEntry> entries;
    const char* const messages[] = {"Creating AudioQueue sampleRate:%d.0,", "no rate here",
                                    "[audioCapabilities] asbdSampleRate = %d Hz kHz",
                                    "Creating AudioQueue sampleRate:1%d"};
    for (int i = 0; i < 400; ++i) {
        char message[96];
        std::snprintf(message, sizeof message, messages[random() % 4],
                      32000 + static_cast<int>(random() % 700000));
        const auto offset = std::chrono::milliseconds(random() % 120 * 500);  // equal times too
        entries.push_back({random() % 3 ? "Music" : "Other", message, base + offset});
    }
    const std::filesystem::path path =
        std::filesystem::path(::testing::TempDir()) / "shuffled-export.ndjson";
    {
        std::ofstream file(path);
        for (const LogEntry& entry : entries)
            file << "{\"eventMessage\":\"" << entry.message << "\",\"processImagePath\":\"/x/"
                 << entry.process << "\",\"timestamp\":\"" << iso8601(entry.time) << "\"}\n";
    }
    int found = 0;
    for (const std::optional<WallTime> end :
         {std::optional<WallTime>(), std::optional(base + 20s), std::optional(base + 59500ms)}) {
        SimSystemLog whole(end ? SimSystemLog::EndOfLog([end] { return *end; })
                               : SimSystemLog::EndOfLog());
        whole.add(entries);
        for (const double seconds : {0.5, 3.0, 10.0, 45.0, 1800.0, 1e9}) {
            const auto streamed =
                scanLogExport(path.string(), seconds, end, [](const LogExportProblem&) {});
            ASSERT_TRUE(std::holds_alternative<ScanOutcome>(streamed));
            const ScanOutcome expected = LogScanner::scanRecentLogs(whole, seconds);
            EXPECT_EQ(std::get<ScanOutcome>(streamed), expected) << seconds;
            found += std::holds_alternative<ScanFound>(expected);
        }
    }
    EXPECT_GT(found, 10);  // the comparison is not only of empty outcomes
    std::filesystem::remove(path);
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
    // Bytes that are no UTF-8 (stray, cut off, overlong, a surrogate) become U+FFFD; good
    // characters pass unchanged.
    EXPECT_EQ(
        scanOutcomeJson(ScanFailed{"a\xFF b\xE2\x82 c\xC0\xB1 d\xED\xA0\x80 \u00B7\U0001F3B5"}),
        "{\"outcome\":\"failed\",\"message\":\"a\\ufffd b\\ufffd\\ufffd c\\ufffd\\ufffd "
        "d\\ufffd\\ufffd\\ufffd \u00B7\U0001F3B5\"}");
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
    EXPECT_EQ(error({"a", "--seconds", "-5"}),
              "--seconds needs a positive number up to 1e9, not \"-5\"");
    EXPECT_EQ(error({"a", "--seconds", "ten"}),
              "--seconds needs a positive number up to 1e9, not \"ten\"");
    EXPECT_EQ(error({"a", "--seconds", "1e10"}),
              "--seconds needs a positive number up to 1e9, not \"1e10\"");
    EXPECT_EQ(std::get<ScanLogOptions>(parseScanLogArguments({"a", "--seconds", "1e9"})).seconds,
              1e9);
    EXPECT_EQ(error({"a", "--now"}), "--now needs a time");
    EXPECT_EQ(error({"a", "--verbose"}), "unknown option --verbose");
}

}  // namespace
}  // namespace corvanel
