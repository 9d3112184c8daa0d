// Demo mode end to end on virtual time: the playlist drives the real engine through the
// simulated Music app, log and DAC, and every track's format is detected and switched to.
#include <gtest/gtest.h>

#include <QTemporaryFile>

#include "AppTestRig.h"
#include "app/ActivityPrinter.h"
#include "app/AppOptions.h"
#include "demo/DemoPlayer.h"
#include "switching/LogScanner.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using testing::activityTexts;

TEST(DemoPlaylistTest, EveryDecoderMessageIsReadByTheRecognisersAsItsTrack) {
    for (const DemoTrack& track : demoPlaylist(Seconds{10})) {
        ASSERT_FALSE(track.decoderMessages.empty()) << track.title;
        for (const DemoLogMessage& message : track.decoderMessages) {
            const auto detection = LogScanner::parse(message.text, WallTime{});
            ASSERT_TRUE(detection) << message.text;
            EXPECT_EQ(detection->sampleRate, std::stod(track.technicals.sampleRate))
                << message.text;
        }
    }
    EXPECT_EQ(LogScanner::parse(audioCapabilitiesMessage(88.2, 24), WallTime{})->bitDepth, 24);
    EXPECT_EQ(LogScanner::parse(losslessDecoderMessage(44100, 16), WallTime{})->source,
              "Lossless decoder");
    EXPECT_EQ(LogScanner::parse(audioQueueMessage(48000), WallTime{})->source, "AudioQueue");
}

class DemoModeTest : public ::testing::Test {
  protected:
    DemoModeTest() {
        rig.mac.music->setRunning(false);
        rig.start();
        player = DemoPlayer::create(
            {rig.mac.executor, rig.mac.music, rig.mac.log, rig.mac.notifications},
            demoPlaylist(Seconds{trackSeconds}));
    }

    static constexpr double trackSeconds = 10;
    testing::AppTestRig rig;
    std::shared_ptr<DemoPlayer> player;
};

TEST_F(DemoModeTest, ThePlaylistSwitchesTheDacToEachTracksRateAndRepeats) {
    std::vector<double> rates;
    std::vector<std::size_t> started;
    player->onTrackStarted = [&](std::size_t index) { started.push_back(index); };
    player->start(Seconds{1});
    for (int track = 0; track < 5; ++track) {
        rig.mac.executor->advanceBy(Seconds{trackSeconds});
        rates.push_back(rig.mac.audio->nominalRate(rig.dac));
    }
    EXPECT_EQ(rates, (std::vector<double>{44100, 96000, 48000, 192000, 88200}));
    rig.mac.executor->advanceBy(Seconds{trackSeconds});
    EXPECT_EQ(started, (std::vector<std::size_t>{0, 1, 2, 3, 4, 0}));

    std::vector<std::string> detected;
    for (const std::string& text : activityTexts(rig.engine->activity()))
        if (text.starts_with("Detected ")) detected.insert(detected.begin(), text);
    // The 96 kHz track's depth reaches the log after the first scan: the app's bit rate first.
    const std::vector<std::string> expected{
        "Detected 96 kHz / 4608 kbps (Apple Lossless audio file)",
        "Detected 96 kHz / 24-bit (Apple Lossless audio file)",
        "Detected 48 kHz / 256 kbps (Apple Music AAC audio file)",
        "Detected 192 kHz / 24-bit (Apple Lossless audio file)",
        "Detected 88.2 kHz / 24-bit (Apple Lossless audio file)",
        "Detected 44.1 kHz / 16-bit (Apple Lossless audio file)"};
    ASSERT_GE(detected.size(), expected.size());
    EXPECT_EQ(
        std::vector<std::string>(detected.end() - std::ptrdiff_t(expected.size()), detected.end()),
        expected);
}

TEST_F(DemoModeTest, StoppingEndsThePlaylist) {
    player->start(Seconds{0});
    rig.mac.executor->advanceBy(1s);
    ASSERT_EQ(player->currentTrack(), 0u);
    player->stop();
    rig.mac.executor->advanceBy(Seconds{3 * trackSeconds});
    EXPECT_EQ(player->currentTrack(), 0u);
    EXPECT_EQ(rig.mac.audio->nominalRate(rig.dac), 44100);
}

TEST_F(DemoModeTest, ThePrinterWritesEachActivityLineOnceOldestFirst) {
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    std::FILE* out = std::fopen(file.fileName().toLocal8Bit().constData(), "w");
    ASSERT_NE(out, nullptr);
    {
        ActivityPrinter printer(rig.engine, out);
        player->start(Seconds{0});
        rig.mac.executor->advanceBy(Seconds{2.5 * trackSeconds});
    }
    std::fclose(out);
    QStringList printed = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    QStringList expected;
    for (auto line = rig.engine->activity().rbegin(); line != rig.engine->activity().rend(); ++line)
        expected << QString::fromStdString(*line);
    EXPECT_EQ(printed, expected);
}

TEST(AppOptionsTest, DemoHeadlessAndAudioChoices) {
    const auto parsed = parseOptions({"corvanel", "--demo", "--headless", "--duration", "7.5",
                                      "--snapshots", "shots", "--audio", "song.flac"});
    ASSERT_TRUE(std::holds_alternative<AppOptions>(parsed));
    const AppOptions& options = std::get<AppOptions>(parsed);
    EXPECT_TRUE(options.demo);
    EXPECT_TRUE(options.headless);
    EXPECT_EQ(options.durationSeconds, 7.5);
    EXPECT_EQ(options.snapshotDirectory, QString("shots"));
    EXPECT_EQ(options.audio, AudioSourceChoice::file);
    EXPECT_EQ(options.audioFile, "song.flac");

    const auto pulse = parseOptions({"corvanel", "--capture", "pulse"});
    ASSERT_TRUE(std::holds_alternative<AppOptions>(pulse));
    EXPECT_EQ(std::get<AppOptions>(pulse).audio, AudioSourceChoice::pulse);
}

TEST(AppOptionsTest, MistakesAreNamed) {
    const auto message = [](const QStringList& arguments) {
        const auto parsed = parseOptions(arguments);
        return std::holds_alternative<QString>(parsed) ? std::get<QString>(parsed) : QString();
    };
    EXPECT_TRUE(message({"corvanel", "--duration", "soon"}).contains("--duration"));
    EXPECT_TRUE(message({"corvanel", "--duration", "-3"}).contains("from 0.001 to 2147483"));
    EXPECT_TRUE(message({"corvanel", "--capture", "jack"}).contains("synth or pulse"));
    EXPECT_TRUE(message({"corvanel", "--capture", "pulse", "--audio", "a.wav"})
                    .contains("cannot be used together"));
    EXPECT_TRUE(message({"corvanel", "--bogus"}).contains("bogus"));
}

}  // namespace
}  // namespace corvanel
