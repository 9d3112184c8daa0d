#include "platform/linux/pipewire/PipeWireOutput.h"

#include <utility>

#include "platform/linux/pipewire/PipeWireAudioHardware.h"
#include "platform/linux/pipewire/PipeWirePlaybackStreams.h"

namespace corvanel {

std::variant<PipeWireOutput, std::string> connectPipeWireOutput(
    std::shared_ptr<MainExecutor> executor, std::chrono::milliseconds timeout) {
    using pipewire::PipeWireConnection;
    const auto deadline = PipeWireConnection::Clock::now() + timeout;
    auto connected = PipeWireConnection::open("Corvanel", timeout);
    if (auto* failure = std::get_if<std::string>(&connected)) return std::move(*failure);

    auto graph = std::make_shared<pipewire::PipeWireGraph>();
    graph->connection = std::move(std::get<std::unique_ptr<PipeWireConnection>>(connected));
    graph->mirror = std::make_unique<pipewire::GraphMirror>(*graph->connection);
    if (!graph->mirror->waitForFirstSnapshot(deadline)) {
        const PipeWireConnection::Lock lock(*graph->connection);
        return graph->connection->waitFailure(timeout);
    }
    return PipeWireOutput{pipewire::PipeWireAudioHardware::create(graph, std::move(executor)),
                          std::make_shared<pipewire::PipeWirePlaybackStreams>(graph)};
}

}  // namespace corvanel
