// Quitting at once after start-up, many times over: every run ends, none hangs in its teardown
// (the start-up scan's result may still be on its way when the application object goes).
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>

namespace corvanel {
namespace {

// At least the minimum, and more while the time budget lasts (sanitizer builds run slower).
constexpr int minimumCycles = 50;
constexpr int maximumCycles = 100;
constexpr auto timeBudget = std::chrono::seconds(15);
constexpr int exitTimeoutMilliseconds = 10000;

TEST(QuickExit, EveryOneOfManyImmediateQuitsEnds) {
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    const QDir root(home.path());
    for (const char* folder : {"config", "data", "cache", "runtime", "tmp"})
        ASSERT_TRUE(root.mkpath(folder));
    QFile::setPermissions(root.filePath("runtime"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", root.filePath("config"));
    environment.insert("XDG_DATA_HOME", root.filePath("data"));
    environment.insert("XDG_CACHE_HOME", root.filePath("cache"));
    environment.insert("XDG_RUNTIME_DIR", root.filePath("runtime"));
    environment.insert("TMPDIR", root.filePath("tmp"));

    int hung = 0;
    int failed = 0;
    const auto started = std::chrono::steady_clock::now();
    int cycles = 0;
    for (; cycles < maximumCycles; ++cycles) {
        if (cycles >= minimumCycles && std::chrono::steady_clock::now() - started > timeBudget)
            break;
        QProcess run;
        run.setProcessEnvironment(environment);
        run.start(CORVANEL_BINARY_DIR "/src/corvanel",
                  {"--demo", "--headless", "--duration", "0.001"});
        ASSERT_TRUE(run.waitForStarted()) << run.errorString().toStdString();
        if (!run.waitForFinished(exitTimeoutMilliseconds)) {
            ++hung;
            run.kill();
            run.waitForFinished();
            continue;
        }
        if (run.exitStatus() != QProcess::NormalExit || run.exitCode() != 0) {
            ++failed;
            ADD_FAILURE() << "run " << cycles << " ended with " << run.exitCode() << ": "
                          << run.readAllStandardError().toStdString();
        }
    }
    const auto seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    EXPECT_EQ(hung, 0) << "of " << cycles << " runs";
    EXPECT_EQ(failed, 0);
    RecordProperty("cycles", cycles);
    RecordProperty("seconds", std::to_string(seconds));
}

}  // namespace
}  // namespace corvanel
