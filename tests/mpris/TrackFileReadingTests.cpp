// Reading a track's format from its file without a player: the URL to a path, the MPEG frame
// header behind an MP3's bit rate, the header reader's kinds and depths, and the journal the
// log scan reads.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <vector>

#include "ChildProcess.h"
#include "TestAudioFiles.h"
#include "platform/linux/mpris/LocalFileUrl.h"
#include "platform/linux/mpris/MpegAudioHeader.h"
#include "platform/linux/mpris/TrackFileHeader.h"
#include "platform/linux/mpris/TrackHeaderJournal.h"

namespace corvanel::testing {
namespace {

using namespace std::chrono_literals;

TEST(LocalFileUrl, DecodesFileUrlsToTheBytesOfTheName) {
    EXPECT_EQ(localPathOfUrl("file:///music/a%20b.flac"), "/music/a b.flac");
    EXPECT_EQ(localPathOfUrl("FILE://localhost/x.wav"), "/x.wav");
    EXPECT_EQ(localPathOfUrl("file:///%FF%fe.mp3"), std::string("/\xff\xfe.mp3"));
    EXPECT_EQ(localPathOfUrl("file:///a%23b.mp3#fragment"), "/a#b.mp3");
    EXPECT_EQ(localPathOfUrl("file:///caf\xc3\xa9.flac"), "/caf\xc3\xa9.flac");
    for (const char* notLocal :
         {"", "file:", "file://", "http://host/x.mp3", "file://server/x.mp3", "file:///bad%2",
          "file:///bad%zz", "file:///nul%00.mp3", "/plain/path.flac", "file://localhostx/y"})
        EXPECT_FALSE(localPathOfUrl(notLocal)) << notLocal;
}

// An MPEG-1 Layer III frame header: 44.1 kHz, stereo, bit-rate index `index`.
std::vector<std::uint8_t> mpegFrame(int index, std::size_t length, bool mono = false) {
    std::vector<std::uint8_t> frame(length, 0);
    frame[0] = 0xFF;
    frame[1] = 0xFB;
    frame[2] = static_cast<std::uint8_t>(index << 4);
    frame[3] = mono ? 0xC4 : 0x64;
    return frame;
}

void append(std::vector<std::uint8_t>& to, const std::vector<std::uint8_t>& bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void putBigEndian(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

TEST(MpegAudioHeader, ReadsTheFirstRealFrame) {
    // 128 kbps at 44.1 kHz: frames of 417 bytes.
    std::vector<std::uint8_t> stream;
    append(stream, {0x00, 0xFF, 0xFB, 0x12, 0x34});  // junk with a false sync
    append(stream, mpegFrame(9, 417));
    append(stream, mpegFrame(9, 417));
    EXPECT_EQ(mpegBitRateKbps(stream, stream.size()), 128);
    // A lone frame (nothing after it to check against) is taken as it is.
    EXPECT_EQ(mpegBitRateKbps(mpegFrame(14, 40), 40), 320);
    // Reserved and free-format headers are no frames.
    EXPECT_FALSE(mpegBitRateKbps(mpegFrame(15, 40), 40));
    EXPECT_FALSE(mpegBitRateKbps(mpegFrame(0, 40), 40));
    EXPECT_FALSE(mpegBitRateKbps(std::vector<std::uint8_t>{0xFF, 0xFB}, 2));
    EXPECT_FALSE(mpegBitRateKbps(std::vector<std::uint8_t>(1000, 0x20), 1000));
}

TEST(MpegAudioHeader, AVariableRateFileStatesItsAverage) {
    // A Xing header after a stereo MPEG-1 frame's 32 bytes of side information: 1000 frames
    // of 1152 samples at 44.1 kHz (26.12 s) in 600000 bytes is 183.75 kbps.
    std::vector<std::uint8_t> xing = mpegFrame(9, 417);
    const std::uint8_t tag[] = {'X', 'i', 'n', 'g'};
    std::copy(std::begin(tag), std::end(tag), xing.begin() + 36);
    putBigEndian(xing, 40, 3);  // frames and bytes present
    putBigEndian(xing, 44, 1000);
    putBigEndian(xing, 48, 600000);
    EXPECT_EQ(mpegBitRateKbps(xing, 417), 184);
    // Without a byte count, the length of the audio stands in.
    putBigEndian(xing, 40, 1);
    EXPECT_EQ(mpegBitRateKbps(xing, 300000), 92);
    // LAME's "Info" marks a constant-rate file: the frame's own rate.
    const std::uint8_t info[] = {'I', 'n', 'f', 'o'};
    std::copy(std::begin(info), std::end(info), xing.begin() + 36);
    EXPECT_EQ(mpegBitRateKbps(xing, 300000), 128);

    // A VBRI header 32 bytes after the frame header: bytes, then frames.
    std::vector<std::uint8_t> vbri = mpegFrame(9, 417);
    const std::uint8_t vbriTag[] = {'V', 'B', 'R', 'I'};
    std::copy(std::begin(vbriTag), std::end(vbriTag), vbri.begin() + 36);
    putBigEndian(vbri, 46, 600000);
    putBigEndian(vbri, 50, 1000);
    EXPECT_EQ(mpegBitRateKbps(vbri, 417), 184);
}

TEST(MpegAudioHeader, AnId3TagIsSkippedByItsSynchsafeSize) {
    // 0x00 0x00 0x02 0x01 in seven-bit bytes is 257; the footer flag adds ten more.
    const std::vector<std::uint8_t> tag{'I', 'D', '3', 4, 0, 0x10, 0, 0, 2, 1};
    EXPECT_EQ(id3v2TagLength(tag), 10u + 257u + 10u);
    std::vector<std::uint8_t> noFooter = tag;
    noFooter[5] = 0;
    EXPECT_EQ(id3v2TagLength(noFooter), 267u);
    std::vector<std::uint8_t> broken = tag;
    broken[7] = 0x80;  // not synchsafe
    EXPECT_EQ(id3v2TagLength(broken), 0u);
    EXPECT_EQ(id3v2TagLength(mpegFrame(9, 10)), 0u);
}

class TrackFileHeaderTest : public ::testing::Test {
  protected:
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    std::filesystem::path directory = makePrivateDirectory("corvanel-headers-");
};

TEST_F(TrackFileHeaderTest, GivesTheDepthOfPcmAndLosslessFilesAndTheBitRateOfCompressedOnes) {
    struct Case {
        const char* name;
        int format;
        int rate;
        TrackFileFormat expected;
    };
    const Case cases[] = {
        {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000, {96000, 24, {}, "FLAC audio file"}},
        {"b.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, {44100, 16, {}, "WAV audio file"}},
        {"c.wav", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT, 192000, {192000, 32, {}, "WAV audio file"}},
        {"d.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_32, 48000, {48000, 32, {}, "AIFF audio file"}},
        {"e.caf",
         SF_FORMAT_CAF | SF_FORMAT_ALAC_20,
         88200,
         {88200, 20, {}, "Apple Lossless audio file"}},
    };
    for (const Case& c : cases) {
        const auto path = directory / c.name;
        ASSERT_TRUE(writeToneFile(path, c.format, c.rate, 0.2)) << c.name;
        EXPECT_EQ(readTrackFileHeader(path.string()), c.expected) << c.name;
    }

    const auto mp3 = directory / "f.mp3";
    ASSERT_TRUE(
        writeToneFile(mp3, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 48000, 1.0, 2, mp3At256kbps));
    EXPECT_EQ(readTrackFileHeader(mp3.string()),
              (TrackFileFormat{48000, {}, 256, "MPEG audio file"}));
    // An ID3 tag in front of the audio (written by the test: libsndfile writes none).
    const auto tagged = directory / "g.mp3";
    {
        std::ofstream out(tagged, std::ios::binary);
        const char tag[10] = {'I', 'D', '3', 3, 0, 0, 0, 0, 1, 0};  // 128 bytes of tag body
        out.write(tag, 10);
        out << std::string(128, '\0') << std::ifstream(mp3, std::ios::binary).rdbuf();
    }
    const auto taggedFormat = readTrackFileHeader(tagged.string());
    ASSERT_TRUE(taggedFormat);
    EXPECT_EQ(taggedFormat->bitRateKbps, 256);

    // Ogg Vorbis has no frame header to read: the file's average over its length.
    const auto ogg = directory / "h.ogg";
    ASSERT_TRUE(writeToneFile(ogg, SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 2.0));
    const auto vorbis = readTrackFileHeader(ogg.string());
    ASSERT_TRUE(vorbis);
    EXPECT_EQ(vorbis->kind, "Ogg Vorbis audio file");
    EXPECT_FALSE(vorbis->bitDepth);
    EXPECT_EQ(vorbis->bitRateKbps,
              std::llround(static_cast<double>(std::filesystem::file_size(ogg)) * 8 / 2.0 / 1000));
}

TEST_F(TrackFileHeaderTest, AnythingButAReadableAudioFileHasNoHeader) {
    std::ofstream(directory / "text.flac") << "not audio\n";
    std::ofstream(directory / "empty.wav");
    ASSERT_EQ(mkfifo((directory / "pipe.wav").c_str(), 0600), 0);
    for (const char* name : {"text.flac", "empty.wav", "pipe.wav", "missing.flac", ""})
        EXPECT_FALSE(readTrackFileHeader((directory / name).string())) << name;
    EXPECT_FALSE(readTrackFileHeader(""));
}

TEST(TrackHeaderJournal, AnswersForItsProcessWithinTheSpanOldestFirst) {
    const WallTime now = WallTime{} + 10000s;
    TrackHeaderJournal journal("Music", [now] { return now; });
    journal.record("newest", now - 1s);
    journal.record("older", now - 5s);
    journal.record("too old", now - 30s);
    journal.record("same time, later", now - 1s);
    std::vector<std::string> seen;
    const auto visit = [&seen](std::string_view message, WallTime) { seen.emplace_back(message); };
    EXPECT_FALSE(journal.enumerate("Music", 10, visit));
    EXPECT_EQ(seen, (std::vector<std::string>{"older", "newest", "same time, later"}));
    seen.clear();
    EXPECT_FALSE(journal.enumerate("Spotify", 60, visit));
    EXPECT_TRUE(seen.empty());

    // Only the newest entries are kept.
    for (std::size_t i = 0; i < TrackHeaderJournal::capacity; ++i)
        journal.record("filler", now - 2s);
    EXPECT_FALSE(journal.enumerate("Music", 60, visit));
    EXPECT_EQ(seen.size(), TrackHeaderJournal::capacity);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "filler"),
              static_cast<long>(TrackHeaderJournal::capacity));
}

}  // namespace
}  // namespace corvanel::testing
