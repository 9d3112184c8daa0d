#include "platform/sim/OfflineSpectrum.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "SpectrumTestWorld.h"
#include "platform/sim/MusicSynthesizer.h"

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

}  // namespace
}  // namespace corvanel
