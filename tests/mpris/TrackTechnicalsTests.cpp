// What the followed player's track is: the track file's header as the Music app's technicals
// line and as the journal entry the log scan reads, merged as the engine merges them; and for
// tracks without a readable file, the player's playback stream, or nothing.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "MprisTestRig.h"
#include "TestAudioFiles.h"
#include "switching/LogScanner.h"
#include "switching/MusicController.h"
#include "switching/RateLabels.h"
#include "switching/SwitcherEngine.h"

namespace corvanel::testing {
namespace {

class TrackTechnicalsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(rig.failure(), "");
        rig.start();
    }

    // The technicals line once it is `expected` (the new track's metadata and header arrive
    // asynchronously), or what it is after waiting for that.
    std::string technicalsBecoming(const std::string& expected) {
        const auto current = [&] {
            return rig.script(MusicScripts::trackTechnicals).value_or("(no answer)");
        };
        waitFor([&] { return current() == expected; }, 3000);
        return current();
    }

    // What the engine's scan makes of the journal and the technicals: the detected label.
    std::string detected(double secondsBack = 10) {
        const ScanOutcome outcome = LogScanner::scanRecentLogs(*rig.ports.systemLog, secondsBack);
        std::optional<RateDetection> fromLog;
        if (const auto* found = std::get_if<ScanFound>(&outcome)) fromLog = found->detection;
        const auto technicals = MusicController::currentTrackTechnicals(*rig.ports.scripts);
        if (!technicals) return detectedText(fromLog);
        return detectedText(
            SwitcherEngine::trackDetection(*technicals, fromLog, rig.executor->wallNow()));
    }

    MprisTestRig rig;
};

TEST_F(TrackTechnicalsTest, AFilesHeaderGivesItsRateDepthOrBitRateAndKind) {
    const auto flac = rig.directory() / "hires.flac";
    const auto mp3 = rig.directory() / "lossy.mp3";
    const auto wav = rig.directory() / "cd.wav";
    ASSERT_TRUE(writeToneFile(flac, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000));
    ASSERT_TRUE(
        writeToneFile(mp3, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 44100, 1.0, 2, mp3At256kbps));
    ASSERT_TRUE(writeToneFile(wav, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100));
    // The MP3 really is 256 kbps: MPEG-1 Layer III, bit-rate index 13.
    std::ifstream mp3Bytes(mp3, std::ios::binary);
    char header[4] = {};
    ASSERT_TRUE(mp3Bytes.read(header, 4));
    ASSERT_EQ(static_cast<unsigned char>(header[0]), 0xFF);
    ASSERT_EQ(static_cast<unsigned char>(header[2]) >> 4, 13);

    const TestPlayerProcess player = rig.startPlayer(1, {"--open", flac.string(), "--play"});
    EXPECT_EQ(technicalsBecoming("96000||FLAC audio file"), "96000||FLAC audio file");
    // The journal entry of the start reads as the file's rate and depth ...
    const ScanOutcome outcome = LogScanner::scanRecentLogs(*rig.ports.systemLog, 10);
    ASSERT_TRUE(std::holds_alternative<ScanFound>(outcome));
    const RateDetection& entry = std::get<ScanFound>(outcome).detection;
    EXPECT_EQ(entry.sampleRate, 96000);
    EXPECT_EQ(entry.bitDepth, 24);
    EXPECT_EQ(entry.source, "File header");
    // ... and merged with the technicals, as the engine does: 96 kHz with its depth.
    EXPECT_EQ(detected(), "96 kHz · 24-bit");
    // Only the process the engine reads has a log.
    bool otherProcess = false;
    rig.ports.systemLog->enumerate("Spotify", 10,
                                   [&](std::string_view, WallTime) { otherProcess = true; });
    EXPECT_FALSE(otherProcess);

    rig.open(player, mp3);
    EXPECT_EQ(technicalsBecoming("44100|256|MPEG audio file"), "44100|256|MPEG audio file");
    // A compressed file's entry has no depth, so its bit rate shows.
    EXPECT_EQ(detected(), "44.1 kHz · 256 kbps");

    rig.open(player, wav);
    EXPECT_EQ(technicalsBecoming("44100||WAV audio file"), "44100||WAV audio file");
    EXPECT_EQ(detected(), "44.1 kHz · 16-bit");

    // Paused, the track is still known; stopped, nothing is (as the Music app answers).
    rig.playerCall(player, "Pause");
    ASSERT_TRUE(waitFor([&] { return rig.script(MusicScripts::playerState) == "paused"; }));
    EXPECT_EQ(rig.script(MusicScripts::trackTechnicals), "44100||WAV audio file");
    rig.playerCall(player, "Stop");
    ASSERT_TRUE(waitFor([&] { return rig.script(MusicScripts::playerState) == "stopped"; }));
    EXPECT_EQ(rig.script(MusicScripts::trackTechnicals), "");
}

TEST_F(TrackTechnicalsTest, OddTracksFallBackToTheStreamOrToNothing) {
    const auto flac = rig.directory() / "real.flac";
    const auto text = rig.directory() / "text.flac";
    const auto fifo = rig.directory() / "pipe.flac";
    // A file name that is not UTF-8, as file systems allow.
    const auto oddName = rig.directory() / std::string("\xff\xfe odd.flac");
    ASSERT_TRUE(writeToneFile(flac, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 48000));
    ASSERT_TRUE(writeToneFile(oddName, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 88200));
    std::ofstream(text) << "not audio at all\n";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);

    const TestPlayerProcess player = rig.startPlayer(1, {"--open", flac.string(), "--play"});
    ASSERT_EQ(technicalsBecoming("48000||FLAC audio file"), "48000||FLAC audio file");
    const QString fileUrl = QStringLiteral("file://");
    const QString realUrl = fileUrl + QString::fromStdString(flac.string());
    int tracks = 0;
    const auto setTrack = [&](const QString& url, const QString& title) {
        rig.control(player, "SetMetadata",
                    {QStringLiteral("/odd/track/%1").arg(++tracks), url, title});
    };
    // The technicals of an odd track, after a real one, so each answer is the odd track's.
    const auto oddTrack = [&](const QString& url, const QString& title,
                              const std::string& expected) {
        setTrack(realUrl, QStringLiteral("real"));
        EXPECT_EQ(technicalsBecoming("48000||FLAC audio file"), "48000||FLAC audio file");
        setTrack(url, title);
        return technicalsBecoming(expected);
    };

    // With the player's stream on the sound server known, its rate stands in, without a depth
    // (the stream's format is the player's choice, not the file's).
    rig.streams->streams[player.pid] = PlaybackStreamFormat{44100, "S32LE"};
    const std::string stream = "44100||Audio stream";
    EXPECT_EQ(oddTrack(QString(), QStringLiteral("no URL"), stream), stream);
    const QString missing =
        fileUrl + QString::fromStdString((rig.directory() / "missing.flac").string());
    EXPECT_EQ(oddTrack(missing, QStringLiteral("missing"), stream), stream);
    EXPECT_EQ(
        oddTrack(fileUrl + QString::fromStdString(text.string()), QStringLiteral("text"), stream),
        stream);
    // A FIFO is never opened: its writer might never come.
    EXPECT_EQ(
        oddTrack(fileUrl + QString::fromStdString(fifo.string()), QStringLiteral("fifo"), stream),
        stream);
    EXPECT_EQ(
        oddTrack(QStringLiteral("https://radio.example/stream"), QStringLiteral("radio"), stream),
        stream);
    EXPECT_EQ(oddTrack(QString(), QString(1 << 20, QLatin1Char('x')), stream), stream);
    // Without a stream, or with one at no rate a track has, there are no technicals.
    rig.streams->streams[player.pid] = PlaybackStreamFormat{4000, "S16LE"};
    EXPECT_EQ(oddTrack(missing, QStringLiteral("missing"), ""), "");
    rig.streams->streams.clear();
    EXPECT_EQ(oddTrack(missing, QStringLiteral("missing"), ""), "");

    // A huge title beside a real file, and a file name that is no UTF-8: the file is read.
    setTrack(realUrl, QString(1 << 20, QChar(0x00E9)));
    EXPECT_EQ(technicalsBecoming("48000||FLAC audio file"), "48000||FLAC audio file");
    rig.open(player, oddName);
    EXPECT_EQ(technicalsBecoming("88200||FLAC audio file"), "88200||FLAC audio file");
    EXPECT_EQ(detected(), "88.2 kHz · 24-bit");
    // The player is still followed and answering through all of it.
    EXPECT_EQ(rig.script(MusicScripts::playerState), "playing");
}

}  // namespace
}  // namespace corvanel::testing
