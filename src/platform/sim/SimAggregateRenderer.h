#pragma once
// The buffer list an aggregate device's IO procedure receives: the input streams of its output
// device (a microphone, a line input; one interleaved buffer each) first, then the tap's buffers.
// Storage is sized once, so rendering a block allocates nothing.
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/AudioTypes.h"
#include "platform/ProcessTapHost.h"
#include "platform/sim/AudioSource.h"
#include "platform/sim/SimBlockRenderer.h"

namespace corvanel {

class SimAggregateRenderer {
  public:
    SimAggregateRenderer(const std::vector<std::shared_ptr<AudioSource>>& deviceInputs,
                         std::shared_ptr<AudioSource> tapSource,
                         const AudioStreamBasicDescription& tapFormat, std::uint32_t frames);

    std::span<const AudioBufferView> render();
    // The channel count of each buffer, in order: the aggregate's input stream configuration.
    std::vector<std::uint32_t> bufferChannels() const;

  private:
    std::vector<SimBlockRenderer> renderers_;
    std::vector<AudioBufferView> buffers_;  // views into the renderers' storage, which moves along
};

}  // namespace corvanel
