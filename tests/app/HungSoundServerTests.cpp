// Capture started on the application's own event loop against a sound server that has stopped
// answering (a private PulseAudio, frozen with SIGSTOP): the main thread keeps turning while the
// start waits for the server in the background, and the start then fails with the sound
// server's message within the connection's deadline. Linux only: macOS has no such server.
#if defined(__linux__)
#include <gtest/gtest.h>
#include <pulse/def.h>
#include <signal.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <string>

#include "GuiApplication.h"
#include "linux/PulseTestServer.h"
#include "platform/linux/PulseCaptureHost.h"
#include "platform/qt/QtMainExecutor.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimSettingsStore.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// A timer on the main thread: the longest time between two of its ticks is the longest the
// main thread went without turning.
class MainThreadWatch {
  public:
    static constexpr milliseconds interval{10};

    MainThreadWatch() {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            const Clock::time_point now = Clock::now();
            longest_ = std::max(longest_, now - last_);
            last_ = now;
        });
        timer_.start(interval);
    }

    Clock::duration longestGap() const { return std::max(longest_, Clock::now() - last_); }

  private:
    QTimer timer_;
    Clock::time_point last_ = Clock::now();
    Clock::duration longest_{0};
};

// Runs the event loop until `done` holds or `limit` has passed; whether it held.
template <typename Condition>
bool turnUntil(Condition done, Clock::duration limit) {
    const Clock::time_point end = Clock::now() + limit;
    while (!done() && Clock::now() < end)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return done();
}

long long inMilliseconds(Clock::duration duration) {
    return std::chrono::duration_cast<milliseconds>(duration).count();
}

TEST(HungSoundServer, CaptureStartKeepsTheMainThreadTurningAndFailsWithinTheDeadline) {
    testing::guiApplication();
    testing::PulseTestServer server;
    ASSERT_TRUE(server.failure().empty())
        << "The private PulseAudio server for this test did not start: " << server.failure();

    // The application's composition for capture from the sound server.
    const auto executor = std::make_shared<QtMainExecutor>();
    const auto audio = std::make_shared<SimAudioHardware>(executor);
    SimAudioHardware::DeviceSpec output;
    output.name = "Output";
    output.uid = "Output-UID";
    audio->setDefaultOutputDevice(audio->addDevice(output));
    PlatformPorts ports;
    ports.executor = executor;
    ports.audio = audio;
    ports.taps = std::make_shared<PulseCaptureHost>();
    ports.settings = std::make_shared<SimSettingsStore>();  // the menu image on: capture starts

    ASSERT_EQ(kill(server.pid(), SIGSTOP), 0);
    const MainThreadWatch watch;
    const Clock::time_point started = Clock::now();
    auto analyzer = SpectrumAnalyzer::create(ports);
    const bool failed = turnUntil([&] { return analyzer->statusMessage().has_value(); },
                                  PulseConnection::replyDeadline + std::chrono::seconds(5));
    const Clock::duration waited = Clock::now() - started;
    const Clock::duration longestGap = watch.longestGap();
    kill(server.pid(), SIGCONT);

    ::testing::Test::RecordProperty("longestMainThreadGapMs",
                                    std::to_string(inMilliseconds(longestGap)));
    ::testing::Test::RecordProperty("failedAfterMs", std::to_string(inMilliseconds(waited)));
    ASSERT_TRUE(failed);
    EXPECT_EQ(*analyzer->statusMessage(),
              "Could not create the audio tap (error " + std::to_string(PA_ERR_TIMEOUT) +
                  "). Check that a PulseAudio or PipeWire sound server runs for this session "
                  "(pactl info).");
    EXPECT_FALSE(analyzer->isCapturing());
    // Waiting on the server would stall the loop for the whole deadline; a turn a little late
    // on a busy machine is not that.
    EXPECT_LT(longestGap, milliseconds(250)) << inMilliseconds(longestGap) << " ms";
    EXPECT_GE(waited, PulseConnection::replyDeadline - milliseconds(100));
    EXPECT_LT(waited, PulseConnection::replyDeadline + std::chrono::seconds(2));

    // The server answers again: the next start captures, and the message goes.
    analyzer->meterWindowAppeared();
    EXPECT_TRUE(turnUntil([&] { return analyzer->isCapturing(); }, std::chrono::seconds(5)));
    EXPECT_FALSE(analyzer->statusMessage().has_value());

    analyzer.reset();
    executor->shutDown();
}

}  // namespace
}  // namespace corvanel
#endif
