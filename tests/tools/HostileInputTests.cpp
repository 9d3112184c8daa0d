// Hostile input to the tool and the app, run as a user runs them: option values that are not
// numbers, infinite, negative, zero, huge or empty, devices that never end, and a disk that
// refuses every write. Each is refused at once with a message naming the problem and the exit
// status of its kind (2 for the command line, 1 for a file), never a crash, a hang or success.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <random>
#include <vector>

#include "ToolRun.h"

namespace {

struct Row {
    const char* program;  // relative to the build directory
    QStringList arguments;
    int exitCode;
    const char* message;  // a part of the error stream
};

constexpr const char* tool = "tools/corvanel-tool";
constexpr const char* app = "src/corvanel";

// Half a second of silence at 8 kHz.
QString writeShortWav(const QTemporaryDir& directory) {
    const QString path = directory.filePath(QStringLiteral("short.wav"));
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.toLocal8Bit().constData(), SFM_WRITE, &info);
    const std::vector<short> silence(4000, 0);
    sf_write_short(file, silence.data(), static_cast<sf_count_t>(silence.size()));
    sf_close(file);
    return path;
}

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const ToolRun run = runBuilt(row.program, row.arguments, 20000);
        const std::string context =
            std::string(row.program) + " " + row.arguments.join(' ').toStdString();
        EXPECT_EQ(run.exitCode, row.exitCode) << context << "\n" << run.errors.toStdString();
        EXPECT_TRUE(run.errors.contains(QString::fromUtf8(row.message)))
            << context << "\n"
            << run.errors.toStdString();
    }
}

const QStringList hostileNumbers{"nan", "inf", "-inf", "1e999", "garbage", ""};

TEST(HostileInput, RenderOptions) {
    QTemporaryDir directory;
    const QString out = directory.filePath(QStringLiteral("x.png"));
    const QString wav = writeShortWav(directory);
    const auto render = [&](QStringList arguments) {
        return QStringList{"render"} + arguments + QStringList{"-o", out};
    };
    std::vector<Row> rows;
    for (const QString& value : hostileNumbers) {
        rows.push_back(
            {tool, render({"--size", value + "x100"}), 2, "--size expects WIDTHxHEIGHT"});
        rows.push_back({tool, render({"--scale", value}), 2, "--scale expects a number"});
        rows.push_back({tool, render({"--at", value}), 2, "--at expects a number"});
        rows.push_back({tool, render({"--left", value}), 2, "--left expects a level from 0 to 1"});
        rows.push_back({tool, render({"--levels", "0.5," + value}), 2, "--levels expects numbers"});
        rows.push_back({tool, render({"--time", value}), 2, "--time expects a number"});
    }
    rows.insert(
        rows.end(),
        {
            {tool, render({"--size", "-5x10"}), 2, "--size expects WIDTHxHEIGHT"},
            {tool, render({"--size", "0x100"}), 2, "--size expects WIDTHxHEIGHT"},
            {tool, render({"--size", "20000x20000"}), 2, "at most 8192 pixels a side"},
            {tool, render({"--size", "8000x8000"}), 2, "16777216 pixels in all fit in memory"},
            {tool, render({"--size", "4000x3000", "--scale", "8"}), 2, "32000x24000 pixels"},
            {tool, render({"--size", "0.1x0.1"}), 2, "too small to draw"},
            {tool, render({"--scale", "-1"}), 2, "--scale expects a number from 0 to 8"},
            {tool, render({"--scale", "0"}), 2, "--scale expects a number from 0 to 8"},
            {tool, render({"--scale", "1e300"}), 2, "--scale expects a number from 0 to 8"},
            {tool, render({"--at", "-1"}), 2, "--at expects seconds from the start"},
            {tool, render({"--audio", wav, "--at", "1e9"}), 1, "past the end of the file (0.500 s"},
            {tool, render({"--audio", wav, "--at", "1e300"}), 1, "past the end of the file"},
            {tool, render({"--left", "-0.5"}), 2, "--left expects a level from 0 to 1"},
            {tool, render({"--right", "1e300"}), 2, "--right expects a level from 0 to 1"},
            {tool, render({"--peaks", "2"}), 2, "--peaks expects numbers from 0 to 1"},
            {tool, render({"--time", "1e300"}), 2, "--time expects seconds since 2001"},
            {tool, render({"--gallery", directory.path(), "--scale", "8"}), 2, "7680x4800 pixels"},
        });
    expectRows(rows);
    EXPECT_FALSE(QFile::exists(out));
}

TEST(HostileInput, ScanLogAndAnalyzeOptionsAndFiles) {
    QTemporaryDir directory;
    const QString log =
        QStringLiteral(CORVANEL_SOURCE_DIR "/tests/switching/data/music-session.ndjson");
    std::vector<Row> rows;
    for (const QString& value : hostileNumbers + QStringList{"-1", "0", "1e300", "9.3e9"})
        rows.push_back({tool,
                        {"scan-log", log, "--seconds", value},
                        2,
                        "--seconds needs a positive number up to 1e9"});
    for (const QString value : {"0000-01-01 00:00:00", "9999-12-31 23:59:59", "", "nan"})
        rows.push_back({tool, {"scan-log", log, "--now", value}, 2, "--now needs a time"});
    rows.insert(
        rows.end(),
        {
            {tool, {"scan-log", "/dev/zero"}, 1, "not a regular file, a FIFO or a terminal"},
            {tool, {"scan-log", directory.path()}, 1, "Is a directory"},
            {tool, {"analyze", "/dev/zero"}, 1, "not a regular file, a FIFO or a terminal"},
            {tool, {"analyze", directory.path()}, 1, "Is a directory"},
            {tool, {"analyze", ""}, 2, "usage: corvanel-tool analyze"},
        });
    expectRows(rows);
}

TEST(HostileInput, ScanLogShowsTheFirstHundredWarningsAndCountsTheRest) {
    QTemporaryDir directory;
    QFile log(directory.filePath(QStringLiteral("broken.ndjson")));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    for (int line = 0; line < 250; ++line)
        log.write("not json\n");
    log.close();
    const ToolRun run = runBuilt(tool, {"scan-log", log.fileName()});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors.count(QStringLiteral(" skipped: not a JSON object")), 100);
    EXPECT_TRUE(run.errors.contains("line 100 skipped")) << run.errors.toStdString();
    EXPECT_TRUE(run.errors.endsWith("warning: 150 more lines skipped, not shown\n"))
        << run.errors.toStdString();
}

// The resident memory of a running process in KiB, as Linux reports it; 0 when unknown.
long residentKiB(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
}

TEST(HostileInput, ScanLogReadsAnEndlessStreamInBoundedMemory) {
#if !defined(__linux__)
    GTEST_SKIP() << "reads the tool's memory from /proc";
#elif defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer holds freed memory in quarantine";
#endif
    QProcess scan;
    scan.start(QStringLiteral(CORVANEL_BINARY_DIR "/tools/corvanel-tool"),
               {"scan-log", "/dev/stdin"});
    ASSERT_TRUE(scan.waitForStarted());
    // 160 MB of noise: every line is a malformed entry, which the tool once kept, each of them.
    std::mt19937 random(7);
    std::vector<char> block(1 << 16);
    long peak = 0;
    for (int written = 0; written < 160 * 16; ++written) {
        for (char& byte : block)
            byte = static_cast<char>(random());
        scan.write(block.data(), static_cast<qint64>(block.size()));
        ASSERT_TRUE(scan.waitForBytesWritten(30000));
        if (written % 32 == 0) peak = std::max(peak, residentKiB(scan.processId()));
    }
    scan.closeWriteChannel();
    ASSERT_TRUE(scan.waitForFinished(120000));
    EXPECT_EQ(scan.exitCode(), 0) << scan.readAllStandardError().right(400).toStdString();
    EXPECT_GT(peak, 0);
    // What reading one line at a time needs, with room to spare; keeping every line took 90 MB.
    EXPECT_LT(peak, 48 * 1024) << "KiB resident while reading";
}

TEST(HostileInput, HeadlessDuration) {
    std::vector<Row> rows;
    for (const QString& value :
         hostileNumbers + QStringList{"-1", "0", "1e-9", "0.0004", "1e300", "2147484"})
        rows.push_back({app,
                        {"--demo", "--headless", "--duration", value},
                        2,
                        "--duration needs a number of seconds from 0.001 to 2147483"});
    expectRows(rows);
}

TEST(HostileInput, AFullDiskIsAFailureNotAnEmptyImage) {
    const ToolRun run = runBuilt(tool, {"render", "--size", "40x20", "-o", "/dev/full"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("could not write /dev/full")) << run.errors.toStdString();
}

}  // namespace
