// From a player's track change to PipeWire running the sink at the new track's rate: the real
// application (without --demo) follows the project's test player on a private PipeWire session,
// alternating a 96 kHz/24-bit FLAC and a 44.1 kHz/16-bit WAV. The time runs from the player's
// Open call to the sink's negotiated rate changing, as the graph reports it. Linux only.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <variant>

#include "ChildProcess.h"
#include "PipeWireTestSession.h"
#include "TestAudioFiles.h"
#include "platform/linux/pipewire/PipeWireOutput.h"
#include "platform/qt/QtMainExecutor.h"
#include "switching/PropertyReads.h"

namespace {

using corvanel::testing::PipeWireTestSession;

struct Rig {
    PipeWireTestSession session;
    std::filesystem::path directory = corvanel::testing::makePrivateDirectory("corvanel-bench-");
    std::shared_ptr<corvanel::QtMainExecutor> executor =
        std::make_shared<corvanel::QtMainExecutor>();
    std::shared_ptr<corvanel::AudioHardware> graph;
    pid_t player = -1;
    pid_t app = -1;
    std::filesystem::path tracks[2];
    int next = 0;

    ~Rig() {
        corvanel::testing::stopProgram(app);
        corvanel::testing::stopProgram(player);
        graph.reset();
        executor->shutDown();
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }

    // The default sink's rate as the graph shows it now.
    double sinkRate() const {
        using namespace corvanel;
        const auto device = readPropertyValue<AudioObjectID>(
            *graph, kAudioObjectSystemObject,
            globalAddress(kAudioHardwarePropertyDefaultOutputDevice));
        if (!device) return 0;
        return readPropertyValue<double>(*graph, *device,
                                         globalAddress(kAudioDevicePropertyNominalSampleRate))
            .value_or(0.0);
    }

    void open(const std::filesystem::path& track) const {
        std::string bytes;
        for (const unsigned char character : track.string())
            bytes += (bytes.empty() ? "" : ",") + std::to_string(character);
        const std::string destination = "--dest=org.mpris.MediaPlayer2.corvaneltest1";
        const auto environment = session.clientEnvironment();
        corvanel::testing::runProgram(
            {"dbus-send", "--session", "--print-reply", destination, "/org/mpris/MediaPlayer2",
             "org.corvanel.TestPlayer.Open", "array:byte:" + bytes},
            environment);
        corvanel::testing::runProgram(
            {"dbus-send", "--session", "--print-reply", destination, "/org/mpris/MediaPlayer2",
             "org.mpris.MediaPlayer2.Player.Play"},
            environment);
    }

    bool waitForRate(double rate, int milliseconds) const {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < milliseconds) {
            if (sinkRate() == rate) return true;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        return false;
    }

    std::string start() {
        if (!session.failure().empty()) return session.failure();
        auto connected = corvanel::connectPipeWireOutput(executor);
        if (auto* message = std::get_if<std::string>(&connected)) return *message;
        graph = std::get<corvanel::PipeWireOutput>(connected).audio;

        using corvanel::testing::writeToneFile;
        tracks[0] = directory / "hires.flac";
        tracks[1] = directory / "cd.wav";
        writeToneFile(tracks[0], SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000, 3.0);
        writeToneFile(tracks[1], SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 3.0);
        std::ofstream(directory / "settings.json") << "{ \"spectrumEnabled\": false }\n";

        auto environment = session.clientEnvironment();
        environment.push_back("HOME=" + directory.string());
        environment.push_back("QT_QPA_PLATFORM=offscreen");
        player =
            corvanel::testing::startProgram({CORVANEL_TEST_PLAYER, "--instance", "1", "--journal",
                                             (directory / "player.journal").string()},
                                            environment, (directory / "player.log").string());
        app =
            corvanel::testing::startProgram({CORVANEL_APP, "--headless", "--duration", "600",
                                             "--settings", (directory / "settings.json").string()},
                                            environment, (directory / "app.log").string());
        // Ready once the application has switched for a first track.
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 10000) {
            open(tracks[1]);
            if (waitForRate(44100, 1500)) return {};
        }
        return "the application never switched for the first track";
    }
};

std::unique_ptr<Rig> rig;

void TrackChangeToSinkRate(benchmark::State& state) {
    for (auto _ : state) {
        const std::filesystem::path& track = rig->tracks[rig->next % 2];
        const double rate = rig->next % 2 == 0 ? 96000 : 44100;
        ++rig->next;
        const auto start = std::chrono::steady_clock::now();
        rig->open(track);
        if (!rig->waitForRate(rate, 10000)) {
            state.SkipWithError("the sink never reached the track's rate");
            break;
        }
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        // Let the track's later scans find nothing new before the next change.
        QElapsedTimer settle;
        settle.start();
        while (settle.elapsed() < 300)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}
BENCHMARK(TrackChangeToSinkRate)
    ->Iterations(1)
    ->Repetitions(20)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->ReportAggregatesOnly(true)
    ->ComputeStatistics("max", [](const std::vector<double>& values) {
        return *std::max_element(values.begin(), values.end());
    });

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    rig = std::make_unique<Rig>();
    if (const std::string failure = rig->start(); !failure.empty()) {
        std::fprintf(stderr, "bench_track_change: %s\n", failure.c_str());
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    rig.reset();
    benchmark::Shutdown();
    return 0;
}
