#include "spectrum/SampleRingBuffer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace corvanel {
namespace {

// A clock the test moves by hand.
struct ManualClock {
    MonoTime now = MonoTime{} + std::chrono::seconds(10);
    SampleRingBuffer::Clock function() {
        return [this] { return now; };
    }
};

std::vector<float> ramp(std::int64_t count, float start = 1.0f) {
    std::vector<float> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), start);
    return values;
}

class SampleRingBufferTest : public ::testing::Test {
  protected:
    ManualClock clock;
    SampleRingBuffer ring{clock.function()};
};

TEST_F(SampleRingBufferTest, FreshRingSuppliesOnlyTheEmptyRead) {
    EXPECT_FALSE(ring.latest(4096).has_value());
    EXPECT_FALSE(ring.latest(1).has_value());
    ASSERT_TRUE(ring.latest(0).has_value());
    EXPECT_TRUE(ring.latest(0)->empty());
    EXPECT_EQ(ring.levelSnapshot().lastWrite, MonoTime::min());
}

TEST_F(SampleRingBufferTest, ReadsNeedEnoughSamplesAndEndWithTheNewest) {
    const std::vector<float> first = ramp(4095);
    ring.writeMono(first.data(), 4095);
    EXPECT_FALSE(ring.latest(4096).has_value());

    const float last = -7.0f;
    ring.writeMono(&last, 1);
    const auto samples = ring.latest(4096);
    ASSERT_TRUE(samples.has_value());
    ASSERT_EQ(samples->size(), 4096u);
    EXPECT_EQ(samples->front(), 1.0f);
    EXPECT_EQ(samples->at(4094), 4095.0f);
    EXPECT_EQ(samples->back(), last);
}

TEST_F(SampleRingBufferTest, NeverSuppliesMoreThanItsCapacity) {
    const std::vector<float> full = ramp(8192);
    ring.writeMono(full.data(), 8192);
    EXPECT_FALSE(ring.latest(8193).has_value());
    EXPECT_FALSE(ring.latest(-1).has_value());
    const auto whole = ring.latest(8192);
    ASSERT_TRUE(whole.has_value());
    EXPECT_EQ(*whole, full);
}

TEST_F(SampleRingBufferTest, WrapsAroundAndReadsAcrossTheSeam) {
    // 6000 + 6000 frames: the second write wraps, and the newest 5000 straddle the seam.
    const std::vector<float> first = ramp(6000, 1.0f);
    const std::vector<float> second = ramp(6000, 10001.0f);
    ring.writeMono(first.data(), 6000);
    ring.writeMono(second.data(), 6000);

    const auto newest = ring.latest(5000);
    ASSERT_TRUE(newest.has_value());
    EXPECT_EQ(*newest, std::vector<float>(second.end() - 5000, second.end()));

    const auto whole = ring.latest(8192);
    ASSERT_TRUE(whole.has_value());
    std::vector<float> expected(first.end() - 2192, first.end());
    expected.insert(expected.end(), second.begin(), second.end());
    EXPECT_EQ(*whole, expected);
}

TEST_F(SampleRingBufferTest, AnOversizedWriteKeepsItsLastCapacitySamplesInOrder) {
    const std::vector<float> block = ramp(10000);
    ring.writeMono(block.data(), 10000);
    const auto whole = ring.latest(8192);
    ASSERT_TRUE(whole.has_value());
    EXPECT_EQ(*whole, std::vector<float>(block.end() - 8192, block.end()));
    // filled stays at the capacity: a further one-sample write still reads 8192.
    const float more = 0.5f;
    ring.writeMono(&more, 1);
    EXPECT_EQ(ring.latest(8192)->back(), 0.5f);
}

TEST_F(SampleRingBufferTest, CopyIntoCallerStorageMatchesLatest) {
    const std::vector<float> block = ramp(9000);
    ring.writeMono(block.data(), 9000);
    std::vector<float> out(4096);
    ASSERT_TRUE(ring.copyLatest(out));
    EXPECT_EQ(out, *ring.latest(4096));
    std::vector<float> tooMany(8193);
    EXPECT_FALSE(ring.copyLatest(tooMany));
}

TEST_F(SampleRingBufferTest, StereoFramesMixToTheirAverageAndMeasureEachSide) {
    const std::vector<float> frames = {0.5f, -0.5f, 1.0f, 1.0f};
    ring.writeInterleaved(frames.data(), 2, 2);
    const std::vector<float> stored = *ring.latest(2);
    EXPECT_EQ(stored, (std::vector<float>{0.0f, 1.0f}));

    std::vector<float> constant;
    for (int i = 0; i < 64; ++i) {
        constant.push_back(0.5f);
        constant.push_back(0.25f);
    }
    ring.writeInterleaved(constant.data(), 64, 2);
    const ChannelRMS rms = ring.levelSnapshot().channelRMS;
    EXPECT_FLOAT_EQ(rms.left, 0.5f);
    EXPECT_FLOAT_EQ(rms.right, 0.25f);
}

TEST_F(SampleRingBufferTest, ExtraChannelsJoinTheMixButNotTheLevels) {
    // Six channels: the mix is the average of all six; only the first two are measured.
    const std::vector<float> frame = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f};
    ring.writeInterleaved(frame.data(), 1, 6);
    EXPECT_FLOAT_EQ(ring.latest(1)->front(), (0.1f + 0.2f + 0.3f + 0.4f + 0.5f + 0.6f) / 6.0f);
    const ChannelRMS rms = ring.levelSnapshot().channelRMS;
    EXPECT_FLOAT_EQ(rms.left, 0.1f);
    EXPECT_FLOAT_EQ(rms.right, 0.2f);
}

TEST_F(SampleRingBufferTest, OneChannelInterleavedAndMonoWritesMeasureBothSidesAlike) {
    const std::vector<float> half(100, 0.5f);
    ring.writeMono(half.data(), 100);
    EXPECT_FLOAT_EQ(ring.levelSnapshot().channelRMS.left, 0.5f);
    EXPECT_FLOAT_EQ(ring.levelSnapshot().channelRMS.right, 0.5f);

    const std::vector<float> alternating = {0.6f, -0.6f, 0.6f, -0.6f};
    ring.writeInterleaved(alternating.data(), 4, 1);
    EXPECT_FLOAT_EQ(ring.levelSnapshot().channelRMS.left, 0.6f);
    EXPECT_FLOAT_EQ(ring.levelSnapshot().channelRMS.right, 0.6f);
    EXPECT_EQ(*ring.latest(4), alternating);
}

TEST_F(SampleRingBufferTest, LevelsBelongToTheMostRecentWriteAndItsTime) {
    const std::vector<float> loud(10, 1.0f);
    ring.writeMono(loud.data(), 10);
    EXPECT_EQ(ring.levelSnapshot().lastWrite, clock.now);

    clock.now += std::chrono::milliseconds(50);
    const std::vector<float> quiet(10, 0.1f);
    ring.writeMono(quiet.data(), 10);
    const SampleRingBuffer::LevelSnapshot snapshot = ring.levelSnapshot();
    EXPECT_FLOAT_EQ(snapshot.channelRMS.left, 0.1f);
    EXPECT_EQ(snapshot.lastWrite, clock.now);
}

TEST_F(SampleRingBufferTest, EmptyWritesChangeNothing) {
    const std::vector<float> block(8, 0.25f);
    ring.writeMono(block.data(), 8);
    const MonoTime written = clock.now;
    clock.now += std::chrono::seconds(1);

    ring.writeMono(block.data(), 0);
    ring.writeInterleaved(block.data(), 0, 2);
    ring.writeInterleaved(block.data(), 4, 0);
    EXPECT_EQ(ring.levelSnapshot().lastWrite, written);
    EXPECT_FLOAT_EQ(ring.levelSnapshot().channelRMS.left, 0.25f);
    EXPECT_FALSE(ring.latest(9).has_value());
    EXPECT_EQ(*ring.latest(8), block);
}

}  // namespace
}  // namespace corvanel
