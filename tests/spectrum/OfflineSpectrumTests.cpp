#include "corvanel-tool/OfflineSpectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "SpectrumTestWorld.h"
#include "demo/MusicSynthesizer.h"

namespace corvanel {
namespace {

TEST(OfflineSpectrum, TicksEvery33MsOfAudioWithTheFilesRateAsTheTapRate) {
    auto tone = std::make_shared<testing::ToneSource>(44100);
    tone->frequency = 4000;  // band 31 (4060.8 Hz)
    tone->leftAmplitude = 0.5f;
    tone->rightAmplitude = 0.05f;
    OfflineSpectrum offline(tone);
    EXPECT_EQ(offline.analyzer().tapSampleRate(), 44100.0);

    SpectrumSnapshot values;
    for (int tick = 1; tick <= 30; ++tick) {
        values = offline.nextTick();
        ASSERT_NEAR(values.time, 0.033 * tick, 1e-9);
        if (tick <= 2) {
            // 4096 frames take 92.9 ms to arrive: nothing to transform before the third tick.
            EXPECT_EQ(*std::max_element(values.levels.begin(), values.levels.end()), 0.0f);
        }
    }
    const auto loudest = std::max_element(values.levels.begin(), values.levels.end());
    EXPECT_EQ(loudest - values.levels.begin(), 31);
    EXPECT_GT(*loudest, 0.8f);
    EXPECT_GT(values.leftLevel, values.rightLevel + 0.3f);
    EXPECT_EQ(values.peaks.size(), 40u);
}

TEST(OfflineSpectrum, ValuesAtAMomentMatchTickingThere) {
    OfflineSpectrum stepped(std::make_shared<MusicSynthesizer>(5, 48000));
    SpectrumSnapshot last;
    for (int tick = 0; tick < 60; ++tick)
        last = stepped.nextTick();

    OfflineSpectrum jumped(std::make_shared<MusicSynthesizer>(5, 48000));
    const SpectrumSnapshot at = jumped.valuesAt(2.0);  // 60 ticks make 1.98 s
    EXPECT_NEAR(at.time, 1.98, 1e-9);
    EXPECT_EQ(at.levels, last.levels);
    EXPECT_EQ(at.peaks, last.peaks);
    EXPECT_EQ(at.leftLevel, last.leftLevel);
    EXPECT_GT(at.leftLevel, 0.0f);
}

// A tone in which every 997th sample is not a number, and one stretch is infinite.
class DamagedTone final : public AudioSource {
  public:
    DamagedTone() { tone_.leftAmplitude = tone_.rightAmplitude = 0.5f; }
    double sampleRate() const override { return tone_.sampleRate(); }
    std::uint32_t channels() const override { return 2; }
    void render(float* interleaved, std::size_t frames) override {
        tone_.render(interleaved, frames);
        for (std::size_t i = 0; i < 2 * frames; ++i, ++sample_) {
            if (sample_ % 997 == 0) interleaved[i] = std::numeric_limits<float>::quiet_NaN();
            if (sample_ >= 40000 && sample_ < 40100)
                interleaved[i] = sample_ % 2 ? std::numeric_limits<float>::infinity()
                                             : -std::numeric_limits<float>::infinity();
        }
    }

  private:
    testing::ToneSource tone_;
    std::uint64_t sample_ = 0;
};

TEST(OfflineSpectrum, SamplesThatAreNotNumbersNeverReachThePublishedValues) {
    OfflineSpectrum offline(std::make_shared<DamagedTone>());
    const auto isLevel = [](float value) { return value >= 0.0f && value <= 1.0f; };
    SpectrumSnapshot values;
    for (int tick = 1; tick <= 45; ++tick) {
        values = offline.nextTick();
        ASSERT_TRUE(std::all_of(values.levels.begin(), values.levels.end(), isLevel)) << tick;
        ASSERT_TRUE(std::all_of(values.peaks.begin(), values.peaks.end(), isLevel)) << tick;
        ASSERT_TRUE(isLevel(values.leftLevel) && isLevel(values.rightLevel)) << tick;
    }
    // The damaged samples count as silence; the tone around them still shows (band 23, 1030.6 Hz).
    EXPECT_GT(values.levels[23], 0.8f);
}

// Silence, but for one 512-frame block of full-scale sound ending at `loudBlockEnd` frames.
class OneLoudBlock final : public AudioSource {
  public:
    explicit OneLoudBlock(std::uint64_t loudBlockEnd) : end_(loudBlockEnd) {}
    double sampleRate() const override { return 48000; }
    std::uint32_t channels() const override { return 2; }
    void render(float* interleaved, std::size_t frames) override {
        for (std::size_t i = 0; i < frames; ++i, ++frame_) {
            const float value = frame_ + 512 >= end_ && frame_ < end_ ? 0.5f : 0.0f;
            interleaved[2 * i] = interleaved[2 * i + 1] = value;
        }
    }

  private:
    std::uint64_t end_;
    std::uint64_t frame_ = 0;
};

TEST(OfflineSpectrum, ATickAtTheInstantABlockEndsSeesThatBlock) {
    // At 48 kHz, 99 blocks of 512 frames end at 1.056 s, the moment of the 32nd tick of 33 ms.
    OfflineSpectrum offline(std::make_shared<OneLoudBlock>(99 * 512));
    SpectrumSnapshot values;
    for (int tick = 1; tick <= 31; ++tick)
        values = offline.nextTick();
    EXPECT_EQ(values.leftLevel, 0.0f);
    values = offline.nextTick();
    EXPECT_NEAR(values.time, 1.056, 1e-9);
    EXPECT_GT(values.leftLevel, 0.3f);
}

}  // namespace
}  // namespace corvanel
