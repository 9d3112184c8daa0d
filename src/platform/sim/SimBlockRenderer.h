#pragma once
// Turns a source's interleaved frames into the buffer list a tap of a given format delivers:
// one interleaved buffer, or one buffer per channel for a non-interleaved format. Storage is
// sized once, so rendering a block allocates nothing.
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/AudioTypes.h"
#include "platform/ProcessTapHost.h"
#include "platform/sim/AudioSource.h"

namespace corvanel {

class SimBlockRenderer {
  public:
    SimBlockRenderer(std::shared_ptr<AudioSource> source, const AudioStreamBasicDescription& format,
                     std::uint32_t frames);
    // The buffer list points into this object's storage: moving keeps it valid, copying would not.
    SimBlockRenderer(SimBlockRenderer&&) = default;
    SimBlockRenderer& operator=(SimBlockRenderer&&) = default;
    SimBlockRenderer(const SimBlockRenderer&) = delete;
    SimBlockRenderer& operator=(const SimBlockRenderer&) = delete;

    std::span<const AudioBufferView> render();
    // The buffer list `render()` fills, without rendering.
    std::span<const AudioBufferView> buffers() const { return buffers_; }

  private:
    // Channel c of the format takes the source's channel c, or its last one when it has fewer.
    float sourceSample(std::size_t frame, std::uint32_t channel) const;

    std::shared_ptr<AudioSource> source_;
    std::uint32_t frames_;
    std::uint32_t formatChannels_;
    std::uint32_t bufferChannels_;  // channels the delivered samples carry (at least one)
    bool interleaved_;
    std::vector<float> sourceBlock_;
    std::vector<float> samples_;
    std::vector<AudioBufferView> buffers_;
};

}  // namespace corvanel
