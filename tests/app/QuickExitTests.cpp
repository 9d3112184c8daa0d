// Quitting at once after start-up, many times over: every run ends, none hangs in its teardown
// (the start-up scan's result may still be on its way when the application object goes).
#include <gtest/gtest.h>

#include <QProcess>
#include <chrono>

#include "PrivateHome.h"

namespace corvanel {
namespace {

// At least the minimum, and more while the time budget lasts (sanitizer builds run slower).
constexpr int minimumCycles = 50;
constexpr int maximumCycles = 100;
constexpr auto timeBudget = std::chrono::seconds(15);
constexpr int exitTimeoutMilliseconds = 10000;

TEST(QuickExit, EveryOneOfManyImmediateQuitsEnds) {
    const testing::PrivateHome home;
    ASSERT_TRUE(home.isValid());
    const QProcessEnvironment environment = home.environment();

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
