#pragma once
// What the capture callback needs, fixed when it is installed so that nothing is re-read from
// the device per block, and the callback itself: one pass over the first buffer into the ring.
#include <cstdint>
#include <memory>

#include "platform/AudioTypes.h"
#include "platform/ProcessTapHost.h"
#include "spectrum/SampleRingBuffer.h"

namespace corvanel {

struct CaptureContext {
    bool interleaved = true;
    std::int64_t channels = 1;
    std::shared_ptr<SampleRingBuffer> ring;

    static constexpr std::int64_t bytesPerSample = 4;

    // Interleaved unless the format says otherwise; a format without channels counts as mono.
    static CaptureContext forFormat(const AudioStreamBasicDescription& format,
                                    std::shared_ptr<SampleRingBuffer> ring);
};

// Runs on the capture thread for every delivered block; touches nothing but the ring.
void deliverCapturedBlock(const CaptureContext& context, const AudioBufferView* buffers,
                          std::uint32_t count);

}  // namespace corvanel
