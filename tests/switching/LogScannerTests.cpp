// The log recognisers (the Music app's three and the track header journal's) with their marker
// and number rules, and the newest-wins scan.
#include <gtest/gtest.h>

#include "platform/TrackHeaderMessage.h"
#include "platform/sim/SimSystemLog.h"
#include "switching/LogScanner.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

const WallTime t0 = WallTime{} + 1000s;

std::optional<RateDetection> parse(const std::string& message) {
    return LogScanner::parse(message, t0);
}

std::string capabilities(const std::string& rate, const std::string& depth) {
    return "[audioCapabilities] asbdSampleRate = " + rate + " kHz, sdBitDepth = " + depth +
           " bit, isLossless = 1";
}

TEST(AudioCapabilitiesRecogniser, ReadsRateInKilohertzAndDepth) {
    const auto found = parse(capabilities("44.1", "24"));
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (RateDetection{44100, 24, std::nullopt, "Apple Music", t0,
                                     capabilities("44.1", "24")}));
}

TEST(AudioCapabilitiesRecogniser, DepthIsOptionalAndMustBeAPlainInteger) {
    const auto noDepth = parse("audioCapabilities: asbdSampleRate = 44.1 kHz");
    ASSERT_TRUE(noDepth);
    EXPECT_EQ(noDepth->sampleRate, 44100);
    EXPECT_FALSE(noDepth->bitDepth);

    EXPECT_FALSE(parse("audioCapabilities asbdSampleRate = 44.1 kHz sdBitDepth = 24bit")->bitDepth);
    EXPECT_FALSE(parse(capabilities("48", "24.0"))->bitDepth);
    EXPECT_FALSE(parse(capabilities("48", ""))->bitDepth);
    EXPECT_EQ(parse(capabilities("48", " \t+24\t"))->bitDepth, 24);
}

TEST(AudioCapabilitiesRecogniser, ANumberThatIsNoBitDepthGivesNoDepth) {
    EXPECT_EQ(parse(capabilities("48", "1"))->bitDepth, 1);
    EXPECT_EQ(parse(capabilities("48", "64"))->bitDepth, 64);
    for (const char* depth : {"0", "-16", "65", "4294967320", "-9223372036854775808",
                              "9223372036854775807", "99999999999999999999999"}) {
        const auto found = parse(capabilities("48", depth));
        ASSERT_TRUE(found) << depth;
        EXPECT_EQ(found->sampleRate, 48000) << depth;
        EXPECT_FALSE(found->bitDepth) << depth;
    }
    EXPECT_FALSE(parse("ACAppleLosslessDecoder Input format: 2 ch, 96000 Hz, from -24-bit source")
                     ->bitDepth);
}

TEST(AudioCapabilitiesRecogniser, NormalisesAndChecksTheRate) {
    EXPECT_EQ(parse(capabilities("44100", "16"))->sampleRate, 44100);  // the unit is not read
    EXPECT_EQ(parse(capabilities("768", "16"))->sampleRate, 768000);
    EXPECT_EQ(parse(capabilities("32", "16"))->sampleRate, 32000);
    EXPECT_EQ(parse(capabilities(" 88.2\t", "16"))->sampleRate, 88200);
    EXPECT_EQ(parse(capabilities("44.0995", "16"))->sampleRate, 44100);  // rounds half away
    EXPECT_FALSE(parse(capabilities("768.1", "16")));
    EXPECT_FALSE(parse(capabilities("1000", "16")));
    EXPECT_FALSE(parse(capabilities("999.9", "16")));
    EXPECT_FALSE(parse(capabilities("31.999", "16")));
    EXPECT_FALSE(parse(capabilities("0.5", "16")));
    EXPECT_FALSE(parse(capabilities("44.1 Hz", "16")));
    EXPECT_FALSE(parse(capabilities("nan", "16")));
    EXPECT_FALSE(parse(capabilities("inf", "16")));
    EXPECT_FALSE(parse(capabilities("", "16")));
    EXPECT_FALSE(parse("audioCapabilities: asbdSampleRate = 44.1kHz"));
    EXPECT_FALSE(parse("asbdSampleRate = 44.1 kHz, no marker of the shape"));
}

TEST(AudioCapabilitiesRecogniser, AFailedRateLeavesTheMessageToTheOtherRecognisers) {
    const auto found =
        parse("audioCapabilities asbdSampleRate = 0.5 kHz; Creating AudioQueue sampleRate:48000");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->source, "AudioQueue");
    EXPECT_EQ(found->sampleRate, 48000);
}

TEST(AudioCapabilitiesRecogniser, TheClosingMarkerIsSearchedAfterTheOpeningOne) {
    // " kHz" before the rate marker does not count; the first one after it does.
    const auto found =
        parse("audioCapabilities 48 kHz hint, asbdSampleRate = 96 kHz (was 44.1 kHz)");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->sampleRate, 96000);
    // The depth marker is searched from the start of the message.
    EXPECT_EQ(parse("sdBitDepth = 32 bit audioCapabilities asbdSampleRate = 96 kHz")->bitDepth, 32);
}

constexpr const char* lossless =
    "ACAppleLosslessDecoder::Init Input format: 2 ch, 96000 Hz, from 24-bit source";

TEST(LosslessDecoderRecogniser, ReadsRateAndDepth) {
    const auto found = parse(lossless);
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (RateDetection{96000, 24, std::nullopt, "Lossless decoder", t0, lossless}));
}

TEST(LosslessDecoderRecogniser, NeedsBothWordsAndItsMarkers) {
    EXPECT_FALSE(parse("ACAppleLosslessDecoder::Init 2 ch, 96000 Hz, from 24-bit source"));
    EXPECT_FALSE(parse("Decoder Input format: 2 ch, 96000 Hz, from 24-bit source"));
    EXPECT_FALSE(parse("ACAppleLosslessDecoder Input format: 2 ch 96000 Hz"));
    EXPECT_FALSE(parse("ACAppleLosslessDecoder Input format: 2 ch, 96000Hz"));
    const auto noDepth = parse("ACAppleLosslessDecoder Input format: 2 ch, 44100 Hz, 16 bits");
    ASSERT_TRUE(noDepth);
    EXPECT_FALSE(noDepth->bitDepth);
    EXPECT_EQ(
        parse("ACAppleLosslessDecoder Input format: 2 ch, 192 Hz from 24-bit source")->sampleRate,
        192000);
}

TEST(AudioQueueRecogniser, TakesTheNumberRightAfterTheColon) {
    const auto found = parse("Creating AudioQueue 0x7f8 with sampleRate:48000.0, channels:2");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->sampleRate, 48000);
    EXPECT_EQ(found->source, "AudioQueue");
    EXPECT_FALSE(found->bitDepth);
    EXPECT_FALSE(found->bitRateKbps);

    EXPECT_FALSE(parse("Creating AudioQueue with sampleRate: 48000.0"));
    EXPECT_FALSE(parse("Creating AudioQueue with samplerate:48000.0"));
    EXPECT_FALSE(parse("Creating AudioQueue with sampleRate:48.000.0"));
    EXPECT_FALSE(parse("AudioQueue created, sampleRate:48000"));
    EXPECT_EQ(parse("Creating AudioQueue sampleRate:44.1")->sampleRate, 44100);
}

TEST(AudioQueueRecogniser, AnyNumericCharacterBelongsToTheNumber) {
    // A superscript two or an Arabic-Indic digit is numeric: the run takes it and then
    // fails to parse, rather than stopping early at an ASCII prefix.
    EXPECT_FALSE(parse("Creating AudioQueue sampleRate:48000\u00B2 channels"));
    EXPECT_FALSE(parse("Creating AudioQueue sampleRate:4800\u0660"));
    EXPECT_FALSE(parse("Creating AudioQueue sampleRate:48000\u00BD"));
    // Letters, signs and invalid bytes end the run.
    EXPECT_EQ(parse("Creating AudioQueue sampleRate:48000Hz")->sampleRate, 48000);
    EXPECT_EQ(parse("Creating AudioQueue sampleRate:48000\u00E9")->sampleRate, 48000);
    EXPECT_EQ(parse(std::string("Creating AudioQueue sampleRate:48000\xFF"))->sampleRate, 48000);
    // An overlong form of "1" (two, three or four bytes) is not the digit: the run ends before it.
    for (const char* overlong : {"\xC0\xB1", "\xE0\x80\xB1", "\xF0\x80\x80\xB1"})
        EXPECT_EQ(
            parse(std::string("Creating AudioQueue sampleRate:44") + overlong + " ch")->sampleRate,
            44000)
            << overlong;
}

TEST(TrackFileHeaderRecogniser, ReadsTheJournalsRateAndDepth) {
    const std::string flac = TrackHeaderMessage::compose(96000, 24, "FLAC audio file");
    const auto found = parse(flac);
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (RateDetection{96000, 24, std::nullopt, "File header", t0, flac}));

    // A compressed file's entry carries no depth: the rate alone.
    const auto mp3 = parse(TrackHeaderMessage::compose(44100, std::nullopt, "MPEG audio file"));
    ASSERT_TRUE(mp3);
    EXPECT_EQ(mp3->sampleRate, 44100);
    EXPECT_FALSE(mp3->bitDepth);
    EXPECT_FALSE(mp3->bitRateKbps);
}

TEST(TrackFileHeaderRecogniser, FollowsTheSameRateAndDepthRules) {
    const auto header = [](const std::string& rate, const std::string& depth) {
        return parse("Track file header: rate = " + rate + " Hz, depth = " + depth + " bit");
    };
    EXPECT_EQ(header(" 88200\t", "24")->sampleRate, 88200);
    EXPECT_EQ(header("44.1", "16")->sampleRate, 44100);  // below 1000 it is read as kHz
    EXPECT_EQ(header("768000", "32")->sampleRate, 768000);
    EXPECT_FALSE(header("768001", "24"));
    EXPECT_FALSE(header("22050", "16"));
    EXPECT_FALSE(header("96000.0.0", "24"));
    EXPECT_FALSE(parse("Track file header: rate = 96000Hz, depth = 24 bit"));
    EXPECT_FALSE(parse("Track header: rate = 96000 Hz, depth = 24 bit"));

    EXPECT_EQ(header("48000", "+24")->bitDepth, 24);
    for (const char* depth : {"24.0", "0", "65", "", "twenty"})
        EXPECT_FALSE(header("48000", depth)->bitDepth) << depth;
}

TEST(TrackFileHeaderRecogniser, ComesAfterTheMusicAppsShapes) {
    const auto found =
        parse("Track file header: rate = 96000 Hz; Creating AudioQueue sampleRate:48000");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->source, "AudioQueue");
    EXPECT_EQ(found->sampleRate, 48000);
    // A failed journal rate leaves nothing behind it to try.
    EXPECT_FALSE(parse("Track file header: rate = 8000 Hz, depth = 24 bit"));
}

class LogScanTest : public ::testing::Test {
  protected:
    WallTime at(double seconds) const {
        return t0 + std::chrono::duration_cast<WallTime::duration>(Seconds{seconds});
    }
    // The log ends at t0 + 100 s.
    std::shared_ptr<SimSystemLog> log = std::make_shared<SimSystemLog>([] { return t0 + 100s; });
};

TEST_F(LogScanTest, TheNewestUsableMessageWinsAndTheLaterOfEqualTimes) {
    log->add("Music", capabilities("44.1", "16"), at(95));
    log->add("Music", "Creating AudioQueue sampleRate:96000", at(90));  // older, written later
    log->add("Music", "unrelated", at(99));
    ScanOutcome outcome = LogScanner::scanRecentLogs(*log, 20);
    ASSERT_TRUE(std::holds_alternative<ScanFound>(outcome));
    EXPECT_EQ(std::get<ScanFound>(outcome).detection.sampleRate, 44100);

    log->add("Music", lossless, at(97));
    log->add("Music", "Creating AudioQueue sampleRate:88200", at(97));
    outcome = LogScanner::scanRecentLogs(*log, 20);
    EXPECT_EQ(std::get<ScanFound>(outcome).detection.sampleRate, 88200);
}

TEST_F(LogScanTest, OnlyTheMusicProcessWithinTheSpanCounts) {
    log->add("Music", lossless, at(70));
    log->add("MusicHelper", "Creating AudioQueue sampleRate:48000", at(99));
    log->add("Spotify", "Creating AudioQueue sampleRate:48000", at(99));
    EXPECT_TRUE(std::holds_alternative<ScanNothing>(LogScanner::scanRecentLogs(*log, 20)));
    EXPECT_TRUE(std::holds_alternative<ScanFound>(LogScanner::scanRecentLogs(*log, 30)));
}

TEST_F(LogScanTest, AnUnreadableLogGivesTheAdministratorMessage) {
    log->add("Music", lossless, at(99));
    log->failWith("Operation not permitted");
    EXPECT_EQ(LogScanner::scanRecentLogs(*log, 10),
              ScanOutcome{ScanFailed{"Could not read the system log (Operation not permitted). "
                                     "Your account must be an administrator."}});
}

}  // namespace
}  // namespace corvanel
