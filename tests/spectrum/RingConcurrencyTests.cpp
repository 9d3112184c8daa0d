#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "spectrum/SampleRingBuffer.h"

namespace corvanel {
namespace {

// A capture thread writes a running count in 512-frame blocks while the main thread reads;
// every read must be one unbroken run of the count (no torn or half-written block), and the
// levels of a snapshot must belong to the write stamped with it.
TEST(SampleRingBufferConcurrency, ReaderNeverSeesAHalfWrittenBlock) {
    std::atomic<std::int64_t> ticks{0};
    SampleRingBuffer ring([&ticks] { return MonoTime{} + std::chrono::nanoseconds(ticks.load()); });
    constexpr std::int64_t frames = 512;
    constexpr int blocks = 3000;
    constexpr float wrap = 1 << 20;  // counts stay exact in a float

    std::thread writer([&] {
        std::vector<float> block(frames * 2);
        float count = 0;
        for (int b = 0; b < blocks; ++b) {
            for (std::int64_t f = 0; f < frames; ++f) {
                block[static_cast<std::size_t>(2 * f)] = count;
                block[static_cast<std::size_t>(2 * f + 1)] = count;
                count = count + 1 == wrap ? 0 : count + 1;
            }
            ticks.fetch_add(1);
            ring.writeInterleaved(block.data(), frames, 2);
        }
    });

    // Failures are gathered rather than asserted, so the writer is always joined.
    std::string failure;
    int checkedReads = 0;
    std::vector<float> out(4096);
    while (checkedReads < 2000 && failure.empty()) {
        if (!ring.copyLatest(out)) continue;
        for (std::size_t i = 1; i < out.size() && failure.empty(); ++i) {
            const float expected = out[i - 1] + 1 == wrap ? 0 : out[i - 1] + 1;
            if (out[i] != expected) failure = "torn read at " + std::to_string(i);
        }
        const SampleRingBuffer::LevelSnapshot snapshot = ring.levelSnapshot();
        if (!(snapshot.channelRMS.left > 0.0f) ||
            snapshot.channelRMS.left != snapshot.channelRMS.right)
            failure = "levels of another write than the samples";
        ++checkedReads;
    }
    writer.join();
    ASSERT_EQ(failure, "");
    EXPECT_EQ(ring.levelSnapshot().lastWrite, MonoTime{} + std::chrono::nanoseconds(blocks));
}

}  // namespace
}  // namespace corvanel
