#pragma once
// One connection to the PipeWire daemon of this session: a thread loop, a context and a core,
// owned together. Calls from other threads hold `Lock`; waits for the daemon always have a
// deadline, since a stopped daemon keeps its socket open and never answers.
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "platform/linux/pipewire/PipeWireHandles.h"

namespace corvanel::pipewire {

class PipeWireConnection {
  public:
    using Clock = std::chrono::steady_clock;

    // Connects without starting a daemon, and waits at most `timeout` for the daemon's first
    // answer. The connection, or why there is none in the words a user reads.
    static std::variant<std::unique_ptr<PipeWireConnection>, std::string> open(
        const std::string& clientName, std::chrono::milliseconds timeout);
    ~PipeWireConnection();
    PipeWireConnection(const PipeWireConnection&) = delete;
    PipeWireConnection& operator=(const PipeWireConnection&) = delete;

    class Lock {
      public:
        explicit Lock(const PipeWireConnection& connection) : lock_(connection.loop()) {}

      private:
        LoopLock lock_;
    };

    pw_thread_loop* loop() const { return loop_.get(); }
    pw_core* core() const { return core_.get(); }

    // With the lock held: sleeps until a callback calls signal() or `deadline` passes; false
    // once it has passed.
    bool waitUntil(Clock::time_point deadline) const;
    // With the lock held: waits until the daemon has handled everything sent before; false when
    // the deadline passed or the connection broke first.
    bool roundTrip(Clock::time_point deadline);
    // With the lock held: whether the daemon has gone (it quit, crashed or closed the
    // connection).
    bool broken() const { return broken_; }
    // With the lock held: why a wait for the daemon that ended after `timeout` came to nothing,
    // in the words a user reads.
    std::string waitFailure(std::chrono::milliseconds timeout) const;
    // From the loop's thread: wakes every waiter.
    void signal() const;

  private:
    static void onDone(void* data, std::uint32_t id, int seq);
    static void onError(void* data, std::uint32_t id, int seq, int result, const char* message);

    // Only `open` makes one.
    struct Key {};

  public:
    explicit PipeWireConnection(Key) {}

  private:
    ThreadLoopHandle loop_;
    ContextHandle context_;
    CoreHandle core_;
    ListenerHook coreListener_;
    int awaitedSync_ = -1;
    bool awaitedSyncDone_ = false;
    bool broken_ = false;
};

}  // namespace corvanel::pipewire
