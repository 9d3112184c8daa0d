#pragma once
// The playback streams of the PipeWire graph, by the process that plays them.
#include <memory>

#include "platform/linux/PlaybackStreams.h"
#include "platform/linux/pipewire/PipeWireGraph.h"

namespace corvanel::pipewire {

class PipeWirePlaybackStreams final : public PlaybackStreams {
  public:
    explicit PipeWirePlaybackStreams(std::shared_ptr<PipeWireGraph> graph);

    // The newest of the process's streams that has a format: one still being set up has none.
    std::optional<PlaybackStreamFormat> streamOfProcess(std::int64_t processID) const override;

  private:
    std::shared_ptr<PipeWireGraph> graph_;
};

}  // namespace corvanel::pipewire
