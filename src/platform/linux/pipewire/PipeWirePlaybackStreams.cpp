#include "platform/linux/pipewire/PipeWirePlaybackStreams.h"

#include <utility>

namespace corvanel::pipewire {

PipeWirePlaybackStreams::PipeWirePlaybackStreams(std::shared_ptr<PipeWireGraph> graph)
    : graph_(std::move(graph)) {}

std::optional<PlaybackStreamFormat> PipeWirePlaybackStreams::streamOfProcess(
    std::int64_t processID) const {
    const std::shared_ptr<const GraphSnapshot> graph = graph_->mirror->snapshot();
    // Streams are in the order they were created: the newest match is the last.
    for (auto stream = graph->streams.rbegin(); stream != graph->streams.rend(); ++stream) {
        if (stream->processID != processID || !stream->format) continue;
        return PlaybackStreamFormat{static_cast<double>(stream->format->rate),
                                    stream->format->sampleFormat};
    }
    return std::nullopt;
}

}  // namespace corvanel::pipewire
