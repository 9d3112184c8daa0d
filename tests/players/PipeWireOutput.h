#pragma once
// The test player's sound: one PipeWire playback stream in the playing track's own rate and
// sample format, looping the decoded track, as a music player's output would be. Opening a new
// track replaces the stream (players reopen their output when the format changes); pausing
// deactivates it. Without a PipeWire server there is no output and the player plays silently.
#include <cstdint>
#include <memory>

#include "CallJournal.h"
#include "DecodedTrack.h"

struct pw_context;
struct pw_core;
struct pw_stream;
struct pw_thread_loop;

class PipeWireOutput {
  public:
    // Connects to the PipeWire server of this environment; nothing when there is none.
    static std::unique_ptr<PipeWireOutput> connect(CallJournal& journal);
    ~PipeWireOutput();
    PipeWireOutput(const PipeWireOutput&) = delete;
    PipeWireOutput& operator=(const PipeWireOutput&) = delete;

    // A new stream for `track` from `frame` on, active or not; no track closes the stream.
    void open(std::shared_ptr<const DecodedTrack> track, std::int64_t frame, bool active);
    void setActive(bool active);
    void seek(std::int64_t frame);

    struct LoopDeleter {
        void operator()(pw_thread_loop* loop) const;
    };
    struct ContextDeleter {
        void operator()(pw_context* context) const;
    };
    // Takes over a running loop and a connected core (`connect` makes them).
    PipeWireOutput(CallJournal& journal, std::unique_ptr<pw_thread_loop, LoopDeleter> loop,
                   std::unique_ptr<pw_context, ContextDeleter> context, pw_core* core);

  private:
    class Lock;

    void closeStream();
    void fill(struct pw_buffer* buffer);
    friend struct PipeWireCallbacks;

    CallJournal& journal_;
    std::unique_ptr<pw_thread_loop, LoopDeleter> loop_;
    std::unique_ptr<pw_context, ContextDeleter> context_;
    pw_core* core_;
    // The stream and what it plays: touched only with the loop locked (the stream's callbacks
    // run on the loop's thread).
    pw_stream* stream_ = nullptr;
    std::unique_ptr<struct spa_hook> listener_;
    std::shared_ptr<const DecodedTrack> track_;
    std::size_t cursor_ = 0;
};
