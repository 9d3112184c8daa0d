#pragma once
// What the capture callback needs, fixed when it is installed so that nothing is re-read from
// the device per block, and the callback itself: one pass over the tap's first buffer into the
// ring.
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/AudioTypes.h"
#include "platform/ProcessTapHost.h"
#include "spectrum/SampleRingBuffer.h"

namespace corvanel {

struct CaptureContext {
    bool interleaved = true;
    std::int64_t channels = 1;
    std::shared_ptr<SampleRingBuffer> ring;
    std::uint32_t tapBuffer = 0;  // where the tap's first buffer is in the delivered list

    static constexpr std::int64_t bytesPerSample = 4;

    // Interleaved unless the format says otherwise; a format without channels counts as mono.
    static CaptureContext forFormat(const AudioStreamBasicDescription& format,
                                    std::shared_ptr<SampleRingBuffer> ring,
                                    std::uint32_t tapBuffer);
};

// Where the tap's first buffer is among an aggregate device's input buffers (their channel
// counts, in order). The aggregate lists its sub-device's own inputs (a microphone, a line input)
// before the tap's, so the tap's buffers are the last ones: one for an interleaved format, one
// per channel otherwise. Nothing when the last buffers do not have the tap's shape.
std::optional<std::uint32_t> tapBufferIndex(const std::vector<std::uint32_t>& inputBufferChannels,
                                            const AudioStreamBasicDescription& tapFormat);

// Runs on the capture thread for every delivered block; touches nothing but the ring.
void deliverCapturedBlock(const CaptureContext& context, const AudioBufferView* buffers,
                          std::uint32_t count);

}  // namespace corvanel
