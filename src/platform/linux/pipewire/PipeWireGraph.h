#pragma once
// One connection to the PipeWire daemon with the mirror of its graph: what the output-device
// adapter and the playback-stream reader share. The mirror goes before its connection.
#include <memory>

#include "platform/linux/pipewire/GraphMirror.h"
#include "platform/linux/pipewire/PipeWireConnection.h"

namespace corvanel::pipewire {

struct PipeWireGraph {
    std::unique_ptr<PipeWireConnection> connection;
    std::unique_ptr<GraphMirror> mirror;  // declared after the connection: released before it
};

}  // namespace corvanel::pipewire
