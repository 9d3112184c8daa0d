// Capture from a real PulseAudio server: a tone played into a null sink reaches the analyzer
// through the sink's monitor, the capture follows a change of the default sink, never records
// the microphone, and a missing or hung server fails the start with the usual message.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>

#include <signal.h>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>

#include "PulseTestServer.h"
#include "platform/linux/PulseCaptureHost.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimSettingsStore.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

using testing::PulseTestServer;

std::filesystem::path writeTone(const std::filesystem::path& directory, double frequency, int rate,
                                double seconds) {
    const std::filesystem::path path =
        directory / ("tone-" + std::to_string(static_cast<int>(frequency)) + ".wav");
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    const auto frames = static_cast<std::size_t>(seconds * rate);
    std::vector<float> samples(frames * 2);
    for (std::size_t n = 0; n < frames; ++n) {
        const auto value = static_cast<float>(
            0.5 * std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(n) / rate));
        samples[2 * n] = value;
        samples[2 * n + 1] = value;
    }
    sf_writef_float(file, samples.data(), static_cast<sf_count_t>(frames));
    sf_close(file);
    return path;
}

std::size_t bandOf(double frequency) {
    const auto& centers = SpectrumAnalyzer::bandCenters();
    const double step = std::pow(800.0, 0.5 / 39.0);
    for (std::size_t band = 0; band < centers.size(); ++band) {
        if (frequency >= centers[band] / step && frequency < centers[band] * step) return band;
    }
    return centers.size();
}

class PulseCaptureTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { server = std::make_unique<PulseTestServer>(); }
    static void TearDownTestSuite() { server.reset(); }

    void SetUp() override {
        // CI machines have PulseAudio installed: a server that cannot start is a failure.
        ASSERT_TRUE(server->failure().empty())
            << "The private PulseAudio server for this test did not start: " << server->failure();
        ASSERT_TRUE(server->setDefaultSink(PulseTestServer::firstSink));
        // A microphone-like default source that a capture must never pick up.
        ASSERT_TRUE(server->setDefaultSource(PulseTestServer::microphone));

        SimAudioHardware::DeviceSpec output;
        output.name = "Output";
        output.uid = "Output-UID";
        audio->setDefaultOutputDevice(audio->addDevice(output));
        ports.executor = executor;
        ports.audio = audio;
        ports.taps = host;
        ports.settings = std::make_shared<SimSettingsStore>();
    }

    // Lets real time pass while the analysis ticks along on the virtual clock.
    void runFor(double seconds) const {
        runUntil([] { return false; }, seconds);
    }

    // Ticks until `settled` holds for a second in a row (a loaded machine may start the player
    // late), or `limit` seconds have passed.
    template <typename Condition>
    void runUntil(Condition settled, double limit) const {
        const int ticks = static_cast<int>(limit / SpectrumAnalyzer::tickInterval.count());
        int settledTicks = 0;
        for (int i = 0; i < ticks && settledTicks < 30; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(33));
            executor->advanceBy(SpectrumAnalyzer::tickInterval);
            settledTicks = settled() ? settledTicks + 1 : 0;
        }
    }

    static std::size_t loudestBand(const SpectrumAnalyzer& analyzer) {
        const auto& levels = analyzer.levels();
        return static_cast<std::size_t>(std::max_element(levels.begin(), levels.end()) -
                                        levels.begin());
    }

    static void finish(pid_t player) {
        if (player <= 0) return;
        kill(player, SIGTERM);
        int status = 0;
        waitpid(player, &status, 0);
    }

    static inline std::unique_ptr<PulseTestServer> server;
    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::shared_ptr<SimAudioHardware> audio = std::make_shared<SimAudioHardware>(executor);
    std::shared_ptr<PulseCaptureHost> host = std::make_shared<PulseCaptureHost>();
    PlatformPorts ports;
};

TEST_F(PulseCaptureTest, AToneInTheDefaultSinkShowsInItsBand) {
    const auto tone = writeTone(server->directory(), 2000, 48000, 12);
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    ASSERT_FALSE(analyzer->statusMessage().has_value()) << *analyzer->statusMessage();
    ASSERT_TRUE(analyzer->isCapturing());
    EXPECT_EQ(analyzer->tapSampleRate(), 48000.0);
    EXPECT_EQ(host->currentMonitor(), std::string(PulseTestServer::firstSink) + ".monitor");

    const pid_t player = server->play(tone, PulseTestServer::firstSink);
    ASSERT_GT(player, 0);
    runUntil([&] { return analyzer->levels()[bandOf(2000)] > 0.7f; }, 10.0);
    finish(player);

    EXPECT_EQ(loudestBand(*analyzer), bandOf(2000));
    EXPECT_GT(analyzer->levels()[bandOf(2000)], 0.7f);
    EXPECT_LT(analyzer->levels()[bandOf(2000) + 4], 0.3f);
    EXPECT_GT(analyzer->leftLevel(), 0.5f);
    EXPECT_GT(analyzer->rightLevel(), 0.5f);

    analyzer->setMenuBarEnabled(false);
    EXPECT_FALSE(analyzer->isCapturing());
    executor->runUntilIdle();  // the recording is removed in the background
    EXPECT_TRUE(host->currentMonitor().empty());
}

TEST_F(PulseCaptureTest, CaptureMovesWithTheDefaultSink) {
    const auto tone = writeTone(server->directory(), 3000, 44100, 12);
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    ASSERT_TRUE(analyzer->isCapturing());

    ASSERT_TRUE(server->setDefaultSink(PulseTestServer::secondSink));
    const pid_t player = server->play(tone, PulseTestServer::secondSink);
    ASSERT_GT(player, 0);
    runUntil([&] { return analyzer->levels()[bandOf(3000)] > 0.7f; }, 10.0);
    finish(player);

    EXPECT_EQ(host->currentMonitor(), std::string(PulseTestServer::secondSink) + ".monitor");
    // The stream kept its format; the server resamples the new sink for it.
    EXPECT_EQ(analyzer->tapSampleRate(), 48000.0);
    EXPECT_EQ(loudestBand(*analyzer), bandOf(3000));
    EXPECT_GT(analyzer->levels()[bandOf(3000)], 0.7f);
}

TEST_F(PulseCaptureTest, SilenceInTheSinkKeepsTheMetersDown) {
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    ASSERT_TRUE(analyzer->isCapturing());
    runFor(1.0);
    // A null sink's monitor delivers digital silence while nothing plays.
    EXPECT_LT(*std::max_element(analyzer->levels().begin(), analyzer->levels().end()), 0.05f);
    EXPECT_LT(analyzer->leftLevel(), 0.01f);
}

TEST_F(PulseCaptureTest, TheCapturedSinkGoingAwayNeverRecordsTheMicrophone) {
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    ASSERT_TRUE(analyzer->isCapturing());

    // With every sink gone the server rescues a record stream onto the default source, which is
    // the microphone's tone.
    ASSERT_TRUE(server->unloadModule("module-null-sink"));
    const std::size_t microphoneBand = bandOf(PulseTestServer::microphoneTone);
    float loudestMicrophone = 0;
    runUntil(
        [&] {
            loudestMicrophone = std::max(loudestMicrophone, analyzer->levels()[microphoneBand]);
            return false;
        },
        2.0);
    EXPECT_LT(loudestMicrophone, 0.3f);
    EXPECT_EQ(analyzer->statusMessage(),
              "No default output device available for the spectrum tap.");

    // An output comes back: capture carries on with what it plays. (The suite's sinks are all
    // restored for the tests after this one.)
    const std::string sink = PulseTestServer::firstSink;
    ASSERT_TRUE(server->loadSink(PulseTestServer::secondSink, 44100));
    ASSERT_TRUE(server->loadSink(sink, 48000));
    ASSERT_TRUE(server->setDefaultSink(sink));
    const auto tone = writeTone(server->directory(), 2500, 48000, 12);
    const pid_t player = server->play(tone, sink);
    ASSERT_GT(player, 0);
    runUntil([&] { return analyzer->levels()[bandOf(2500)] > 0.7f; }, 10.0);
    finish(player);
    EXPECT_EQ(host->currentMonitor(), sink + ".monitor");
    EXPECT_EQ(loudestBand(*analyzer), bandOf(2500));
    EXPECT_LT(analyzer->levels()[microphoneBand], 0.3f);
    EXPECT_FALSE(analyzer->statusMessage().has_value());
}

TEST_F(PulseCaptureTest, ARestartedServerIsSaidAndThenHeardAgain) {
    const auto before = writeTone(server->directory(), 2000, 48000, 12);
    const auto after = writeTone(server->directory(), 3000, 48000, 12);
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    ASSERT_TRUE(analyzer->isCapturing());
    const pid_t first = server->play(before, PulseTestServer::firstSink);
    runUntil([&] { return analyzer->levels()[bandOf(2000)] > 0.7f; }, 10.0);
    ASSERT_EQ(loudestBand(*analyzer), bandOf(2000));

    ASSERT_TRUE(server->restart()) << server->failure();
    finish(first);
    runUntil([&] { return analyzer->statusMessage().has_value(); }, 3.0);
    const std::string lost = "Could not keep audio capture running (error ";
    ASSERT_TRUE(analyzer->statusMessage().has_value());
    EXPECT_EQ(analyzer->statusMessage()->substr(0, lost.size()), lost);
    EXPECT_TRUE(analyzer->statusMessage()->ends_with(
        "Check that a PulseAudio or PipeWire sound server runs for this session (pactl info)."));

    // The new server's default sink is the first one again; the meters come back by themselves.
    ASSERT_TRUE(server->setDefaultSink(PulseTestServer::firstSink));
    ASSERT_TRUE(server->setDefaultSource(PulseTestServer::microphone));
    const pid_t second = server->play(after, PulseTestServer::firstSink);
    runUntil([&] { return analyzer->levels()[bandOf(3000)] > 0.7f; }, 10.0);
    finish(second);
    EXPECT_EQ(loudestBand(*analyzer), bandOf(3000));
    EXPECT_FALSE(analyzer->statusMessage().has_value());
}

TEST_F(PulseCaptureTest, AServerThatStopsAnsweringFailsTheStartWithinTheDeadline) {
    ASSERT_EQ(kill(server->pid(), SIGSTOP), 0);
    const auto started = std::chrono::steady_clock::now();
    PulseCaptureHost hungHost;
    AudioObjectID tap = kAudioObjectUnknown;
    const OSStatus status = hungHost.createProcessTap(TapDescription{}, tap);
    const auto waited = std::chrono::steady_clock::now() - started;
    kill(server->pid(), SIGCONT);

    EXPECT_EQ(status, PA_ERR_TIMEOUT);
    EXPECT_LT(waited, PulseConnection::replyDeadline + std::chrono::seconds(2));
    EXPECT_GE(waited, PulseConnection::replyDeadline - std::chrono::milliseconds(100));
}

TEST(PulseCaptureWithoutServer, TheStartFailsWithTheTapStepAndItsErrorCode) {
    const char* previous = std::getenv("PULSE_SERVER");
    const std::string saved = previous ? previous : "";
    const auto missing = std::filesystem::temp_directory_path() / "corvanel-no-such-server.sock";
    setenv("PULSE_SERVER", ("unix:" + missing.string()).c_str(), 1);

    auto executor = std::make_shared<VirtualTimeExecutor>();
    PlatformPorts ports;
    ports.executor = executor;
    ports.audio = std::make_shared<SimAudioHardware>(executor);
    ports.taps = std::make_shared<PulseCaptureHost>();
    ports.settings = std::make_shared<SimSettingsStore>();
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();

    const std::string expected =
        "Could not create the audio tap (error " + std::to_string(PA_ERR_CONNECTIONREFUSED) +
        "). Check that a PulseAudio or PipeWire sound server runs for this session (pactl info).";
    EXPECT_EQ(analyzer->statusMessage(), expected);
    EXPECT_FALSE(analyzer->isCapturing());

    if (previous) {
        setenv("PULSE_SERVER", saved.c_str(), 1);
    } else {
        unsetenv("PULSE_SERVER");
    }
}

}  // namespace
}  // namespace corvanel
