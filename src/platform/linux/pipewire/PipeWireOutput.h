#pragma once
// Rate switching's contact with PipeWire: the default sink as the output device, and the
// playback streams by process. Composition connects once at start-up.
#include <chrono>
#include <memory>
#include <string>
#include <variant>

#include "platform/AudioHardware.h"
#include "platform/MainExecutor.h"
#include "platform/linux/PlaybackStreams.h"

namespace corvanel {

struct PipeWireOutput {
    // Devices are the audio sinks, the default device the default sink; its listeners run on
    // the executor given to connectPipeWireOutput. Gives back the forced rate when it goes.
    std::shared_ptr<AudioHardware> audio;
    std::shared_ptr<PlaybackStreams> playbackStreams;
};

// Connects to this session's PipeWire daemon (it never starts one) and reads the whole graph
// before it returns, so that the first reads are right; waits at most `timeout` in all. The
// output, or why there is none in the words a user reads, such as "PipeWire is not running".
std::variant<PipeWireOutput, std::string> connectPipeWireOutput(
    std::shared_ptr<MainExecutor> executor,
    std::chrono::milliseconds timeout = std::chrono::milliseconds(1000));

}  // namespace corvanel
