#include "spectrum/CaptureCallback.h"

#include <algorithm>
#include <utility>

namespace corvanel {

namespace {

bool isInterleaved(const AudioStreamBasicDescription& format) {
    return (format.mFormatFlags & kAudioFormatFlagIsNonInterleaved) == 0;
}

}  // namespace

CaptureContext CaptureContext::forFormat(const AudioStreamBasicDescription& format,
                                         std::shared_ptr<SampleRingBuffer> ring,
                                         std::uint32_t tapBuffer) {
    return {isInterleaved(format),
            format.mChannelsPerFrame == 0 ? 1 : static_cast<std::int64_t>(format.mChannelsPerFrame),
            std::move(ring), tapBuffer};
}

std::optional<std::uint32_t> tapBufferIndex(const std::vector<std::uint32_t>& inputBufferChannels,
                                            const AudioStreamBasicDescription& tapFormat) {
    const bool interleaved = isInterleaved(tapFormat);
    const std::size_t tapBuffers =
        interleaved ? 1 : std::max<std::size_t>(1, tapFormat.mChannelsPerFrame);
    if (inputBufferChannels.size() < tapBuffers) return std::nullopt;
    const std::size_t first = inputBufferChannels.size() - tapBuffers;
    const std::uint32_t channelsPerBuffer = interleaved ? tapFormat.mChannelsPerFrame : 1;
    const bool tapShaped = std::all_of(
        inputBufferChannels.begin() + static_cast<std::ptrdiff_t>(first), inputBufferChannels.end(),
        [channelsPerBuffer](std::uint32_t channels) { return channels == channelsPerBuffer; });
    if (!tapShaped) return std::nullopt;
    return static_cast<std::uint32_t>(first);
}

void deliverCapturedBlock(const CaptureContext& context, const AudioBufferView* buffers,
                          std::uint32_t count) {
    // The device's own inputs come before the tap's buffer: they are never read.
    if (buffers == nullptr || count <= context.tapBuffer) return;
    const AudioBufferView& first = buffers[context.tapBuffer];
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
