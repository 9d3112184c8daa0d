#include "spectrum/CaptureCallback.h"

#include <utility>

namespace corvanel {

CaptureContext CaptureContext::forFormat(const AudioStreamBasicDescription& format,
                                         std::shared_ptr<SampleRingBuffer> ring) {
    return {(format.mFormatFlags & kAudioFormatFlagIsNonInterleaved) == 0,
            format.mChannelsPerFrame == 0 ? 1 : static_cast<std::int64_t>(format.mChannelsPerFrame),
            std::move(ring)};
}

void deliverCapturedBlock(const CaptureContext& context, const AudioBufferView* buffers,
                          std::uint32_t count) {
    if (count == 0 || buffers == nullptr) return;
    const AudioBufferView& first = buffers[0];
    if (first.data == nullptr) return;
    const auto* samples = static_cast<const float*>(first.data);
    const auto bytes = static_cast<std::int64_t>(first.dataByteSize);
    if (context.interleaved && context.channels >= 2) {
        const std::int64_t frames = bytes / (CaptureContext::bytesPerSample * context.channels);
        context.ring->writeInterleaved(samples, frames, context.channels);
    } else {
        // A non-interleaved stream feeds its first channel only.
        context.ring->writeMono(samples, bytes / CaptureContext::bytesPerSample);
    }
}

}  // namespace corvanel
