#include "spectrum/SampleRingBuffer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvanel {

SampleRingBuffer::SampleRingBuffer(Clock clock) : clock_(std::move(clock)) {}

void SampleRingBuffer::writeInterleaved(const float* samples, std::int64_t frames,
                                        std::int64_t channels) {
    if (frames < 1 || channels < 1) return;
    std::lock_guard guard(lock_);
    float sumLeft = 0.0f;
    float sumRight = 0.0f;
    for (std::int64_t frame = 0; frame < frames; ++frame) {
        const float* sample = samples + frame * channels;
        float mix = 0.0f;
        for (std::int64_t channel = 0; channel < channels; ++channel)
            mix += sample[channel];
        const float left = sample[0];
        const float right = channels > 1 ? sample[1] : left;
        buffer_[static_cast<std::size_t>(writeIndex_)] = mix / static_cast<float>(channels);
        writeIndex_ = (writeIndex_ + 1) & mask;
        sumLeft += left * left;
        sumRight += right * right;
    }
    finishWrite(frames, sumLeft, sumRight);
}

void SampleRingBuffer::writeMono(const float* samples, std::int64_t frames) {
    if (frames < 1) return;
    std::lock_guard guard(lock_);
    float sum = 0.0f;
    for (std::int64_t frame = 0; frame < frames; ++frame) {
        const float sample = samples[frame];
        buffer_[static_cast<std::size_t>(writeIndex_)] = sample;
        writeIndex_ = (writeIndex_ + 1) & mask;
        sum += sample * sample;
    }
    finishWrite(frames, sum, sum);
}

void SampleRingBuffer::finishWrite(std::int64_t frames, float sumLeft, float sumRight) {
    filled_ = std::min(filled_ + frames, capacity);
    const auto count = static_cast<float>(frames);
    channelRMS_ = {std::sqrt(sumLeft / count), std::sqrt(sumRight / count)};
    lastWrite_ = clock_();
}

std::optional<std::vector<float>> SampleRingBuffer::latest(std::int64_t count) const {
    if (count < 0 || count > capacity) return std::nullopt;
    std::vector<float> result(static_cast<std::size_t>(count));
    if (!copyLatest(result)) return std::nullopt;
    return result;
}

bool SampleRingBuffer::copyLatest(std::span<float> out) const {
    std::lock_guard guard(lock_);
    return copyLatestLocked(out);
}

bool SampleRingBuffer::copyLatestLocked(std::span<float> out) const {
    const auto count = static_cast<std::int64_t>(out.size());
    if (count > capacity || filled_ < count) return false;
    const std::int64_t start = (writeIndex_ - count + capacity) & mask;
    // At most two runs: from start to the end of the storage, then from its beginning.
    const std::int64_t firstRun = std::min(count, capacity - start);
    std::copy_n(buffer_.begin() + start, firstRun, out.begin());
    std::copy_n(buffer_.begin(), count - firstRun, out.begin() + firstRun);
    return true;
}

SampleRingBuffer::LevelSnapshot SampleRingBuffer::levelSnapshot() const {
    std::lock_guard guard(lock_);
    return {channelRMS_, lastWrite_};
}

}  // namespace corvanel
