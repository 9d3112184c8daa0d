// The simulated capture sources: the synthesizer is repeatable and moves every meter, files
// play looped at their own rate, and real-time pacing delivers on a thread of its own.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <thread>

#include "demo/MusicSynthesizer.h"
#include "platform/sim/AudioFileSource.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimProcessTapHost.h"
#include "spectrum/BandSpectrum.h"

namespace corvanel {
namespace {

std::vector<float> renderFrames(AudioSource& source, std::size_t frames) {
    std::vector<float> samples(frames * source.channels());
    source.render(samples.data(), frames);
    return samples;
}

TEST(MusicSynthesizer, TheSameSeedGivesTheSameMusic) {
    MusicSynthesizer first(7);
    MusicSynthesizer again(7);
    MusicSynthesizer other(8);
    const auto a = renderFrames(first, 96000);
    EXPECT_EQ(a, renderFrames(again, 96000));
    EXPECT_NE(a, renderFrames(other, 96000));
    EXPECT_TRUE(std::all_of(a.begin(), a.end(), [](float s) { return std::abs(s) < 1.0f; }));
}

TEST(MusicSynthesizer, EveryBandAndBothSidesMove) {
    MusicSynthesizer synth(3, 48000);
    BandSpectrum spectrum;
    BandSpectrum::Targets loudest{};
    BandSpectrum::Targets quietest;
    quietest.fill(1.0f);
    double leftSquares = 0;
    double rightSquares = 0;
    double difference = 0;
    for (int block = 0; block < 96; ++block) {  // about 8 s, a few bars
        const auto samples = renderFrames(synth, 4096);
        for (std::size_t n = 0; n < 4096; ++n) {
            const float left = samples[2 * n];
            const float right = samples[2 * n + 1];
            spectrum.input()[n] = (left + right) / 2;
            leftSquares += left * left;
            rightSquares += right * right;
            difference += std::abs(left - right);
        }
        const BandSpectrum::Targets targets = spectrum.computeTargets(48000);
        for (std::size_t band = 0; band < targets.size(); ++band) {
            loudest[band] = std::max(loudest[band], targets[band]);
            quietest[band] = std::min(quietest[band], targets[band]);
        }
    }
    for (std::size_t band = 0; band < loudest.size(); ++band) {
        EXPECT_GT(loudest[band], 0.25f) << "band " << band;
        EXPECT_GT(loudest[band] - quietest[band], 0.05f) << "band " << band << " never changes";
    }
    EXPECT_GT(difference / (96.0 * 4096), 0.01);
    const double leftRMS = std::sqrt(leftSquares / (96.0 * 4096));
    const double rightRMS = std::sqrt(rightSquares / (96.0 * 4096));
    EXPECT_GT(leftRMS, 0.03);
    EXPECT_GT(rightRMS, 0.03);
}

class AudioFileSourceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        directory =
            std::filesystem::temp_directory_path() /
            ("corvanel-audio-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(directory);
    }
    void TearDown() override { std::filesystem::remove_all(directory); }

    std::string writeWav(const std::vector<float>& interleaved, int channels, int rate) {
        const std::string path = (directory / "clip.wav").string();
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = channels;
        info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        EXPECT_NE(file, nullptr);
        sf_writef_float(file, interleaved.data(),
                        static_cast<sf_count_t>(interleaved.size()) / channels);
        sf_close(file);
        return path;
    }

    std::filesystem::path directory;
};

TEST_F(AudioFileSourceTest, PlaysAtTheFilesRateAndLoops) {
    const std::string path = writeWav({0.1f, -0.1f, 0.2f, -0.2f, 0.3f, -0.3f}, 2, 22050);
    auto opened = AudioFileSource::open(path);
    ASSERT_TRUE(std::holds_alternative<std::unique_ptr<AudioFileSource>>(opened));
    auto& source = *std::get<std::unique_ptr<AudioFileSource>>(opened);
    EXPECT_EQ(source.sampleRate(), 22050.0);
    EXPECT_EQ(source.channels(), 2u);
    EXPECT_EQ(source.frameCount(), 3);
    EXPECT_EQ(renderFrames(source, 5), (std::vector<float>{0.1f, -0.1f, 0.2f, -0.2f, 0.3f, -0.3f,
                                                           0.1f, -0.1f, 0.2f, -0.2f}));
}

TEST_F(AudioFileSourceTest, UnreadableFilesSayWhichAndWhy) {
    const std::string missing = (directory / "missing.flac").string();
    auto opened = AudioFileSource::open(missing);
    ASSERT_TRUE(std::holds_alternative<std::string>(opened));
    EXPECT_NE(std::get<std::string>(opened).find("Cannot read the audio file \"" + missing + "\""),
              std::string::npos);

    const std::string text = (directory / "notes.wav").string();
    std::ofstream(text) << "not audio at all";
    opened = AudioFileSource::open(text);
    ASSERT_TRUE(std::holds_alternative<std::string>(opened));
    EXPECT_NE(std::get<std::string>(opened).find(text), std::string::npos);

    const std::string empty = writeWav({}, 2, 44100);
    opened = AudioFileSource::open(empty);
    ASSERT_TRUE(std::holds_alternative<std::string>(opened));
    EXPECT_NE(std::get<std::string>(opened).find("holds no audio"), std::string::npos);
}

TEST(SimProcessTapHostPacing, RealTimeBlocksArriveOnTheCaptureThreadUntilStopped) {
    SimProcessTapHost host(std::make_shared<MusicSynthesizer>(1, 48000));
    AudioObjectID tap = 0;
    AudioObjectID device = 0;
    IOProcID proc = 0;
    ASSERT_EQ(host.createProcessTap({}, tap), kNoErr);
    ASSERT_EQ(host.createAggregateDevice({}, device), kNoErr);

    std::atomic<int> blocks{0};
    std::atomic<bool> offMainThread{true};
    std::atomic<std::uint32_t> bytes{0};
    const std::thread::id main = std::this_thread::get_id();
    ASSERT_EQ(host.createIOProcID(
                  device,
                  [&](const AudioBufferView* buffers, std::uint32_t count) {
                      if (std::this_thread::get_id() == main) offMainThread = false;
                      if (count == 1) bytes = buffers[0].dataByteSize;
                      ++blocks;
                  },
                  proc),
              kNoErr);
    ASSERT_EQ(host.deviceStart(device, proc), kNoErr);
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    ASSERT_EQ(host.deviceStop(device, proc), kNoErr);
    const int delivered = blocks;
    // 512 frames at 48 kHz is 10.7 ms a block: about 23 in 250 ms, on a shared machine fewer.
    EXPECT_GE(delivered, 5);
    EXPECT_LE(delivered, 30);
    EXPECT_TRUE(offMainThread);
    EXPECT_EQ(bytes.load(), 512u * 2 * 4);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(blocks.load(), delivered);

    // Started again and then simply destroyed: the thread goes with the callback.
    ASSERT_EQ(host.deviceStart(device, proc), kNoErr);
    EXPECT_EQ(host.destroyIOProcID(device, proc), kNoErr);
    EXPECT_FALSE(host.isDelivering());
}

TEST(SimProcessTapHostPacing, ManualBlocksFollowTheFormat) {
    SimProcessTapHost host(std::make_shared<MusicSynthesizer>(1, 48000),
                           SimProcessTapHost::Pacing::manual);
    host.setFormat(SimProcessTapHost::floatFormat(48000, 2, false));
    host.setBlockFrames(256);
    AudioObjectID tap = 0;
    AudioObjectID device = 0;
    IOProcID proc = 0;
    ASSERT_EQ(host.createProcessTap({}, tap), kNoErr);
    ASSERT_EQ(host.createAggregateDevice({}, device), kNoErr);
    std::vector<std::uint32_t> sizes;
    ASSERT_EQ(host.createIOProcID(
                  device,
                  [&](const AudioBufferView* buffers, std::uint32_t count) {
                      for (std::uint32_t i = 0; i < count; ++i)
                          sizes.push_back(buffers[i].dataByteSize);
                  },
                  proc),
              kNoErr);
    EXPECT_FALSE(host.deliverBlock());  // not started yet
    ASSERT_EQ(host.deviceStart(device, proc), kNoErr);
    EXPECT_TRUE(host.deliverBlock());
    EXPECT_EQ(sizes, (std::vector<std::uint32_t>{1024, 1024}));
    EXPECT_EQ(host.destroyProcessTap(tap + 1000), kAudioHardwareBadObjectError);
}

}  // namespace
}  // namespace corvanel
