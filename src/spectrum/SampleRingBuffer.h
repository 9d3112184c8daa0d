#pragma once
// The hand-over point between the capture callback (writer, capture thread) and the analysis
// tick (reader, main thread): the most recent 8192 mono samples of the output mix, the RMS of
// the left and right channel of the last write, and when that write finished. One lock guards
// everything and every operation takes it exactly once; writes never allocate.
#include <array>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "platform/Clock.h"

namespace corvanel {

struct ChannelRMS {
    float left = 0;
    float right = 0;
};

class SampleRingBuffer {
  public:
    static constexpr std::int64_t capacity = 8192;
    // The clock that stamps `lastWrite`; the analyzer passes its executor's monotonic clock so
    // that it compares like with like. Called from the capture thread under the lock.
    using Clock = std::function<MonoTime()>;

    explicit SampleRingBuffer(Clock clock);

    void writeInterleaved(const float* samples, std::int64_t frames, std::int64_t channels);
    void writeMono(const float* samples, std::int64_t frames);

    // The n most recent samples, oldest first, or nothing when the ring cannot supply them.
    std::optional<std::vector<float>> latest(std::int64_t count) const;
    // The same into caller-owned storage (the analysis tick reuses one buffer); false when the
    // ring cannot supply `out.size()` samples.
    bool copyLatest(std::span<float> out) const;

    struct LevelSnapshot {
        ChannelRMS channelRMS;
        MonoTime lastWrite;
    };
    // channelRMS and lastWrite of the same write, read under the lock.
    LevelSnapshot levelSnapshot() const;

  private:
    static constexpr std::int64_t mask = capacity - 1;
    static_assert((capacity & mask) == 0, "the index arithmetic relies on a power of two");

    bool copyLatestLocked(std::span<float> out) const;
    void finishWrite(std::int64_t frames, float sumLeft, float sumRight);

    mutable std::mutex lock_;
    std::array<float, capacity> buffer_{};
    std::int64_t writeIndex_ = 0;
    std::int64_t filled_ = 0;
    ChannelRMS channelRMS_;
    MonoTime lastWrite_ = MonoTime::min();
    Clock clock_;
};

}  // namespace corvanel
