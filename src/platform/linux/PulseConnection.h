#pragma once
// One connection to the PulseAudio server (or PipeWire's pulse server): a threaded main loop
// and a context, owned together. Calls from other threads take `Lock` and wait for the loop's
// callbacks with `wait()`; callbacks wake them with `signal()`.
#include <pulse/pulseaudio.h>

#include <memory>
#include <string>
#include <variant>

namespace corvanel {

class PulseConnection {
  public:
    // Connects to the server of this session (PULSE_SERVER when set) without starting one.
    // The connection, or the server's error code.
    static std::variant<std::unique_ptr<PulseConnection>, int> open(const std::string& clientName);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    class Lock {
      public:
        explicit Lock(PulseConnection& connection);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        pa_threaded_mainloop* mainloop_;
    };

    pa_context* context() const { return context_.get(); }
    // With the lock held: sleeps until a callback signals.
    void wait();
    // From a callback on the loop's thread.
    void signal();
    // The context's last error code (never 0 after a failure).
    int lastError() const;
    // With the lock held: runs `operation` to completion (its callback must signal).
    bool complete(pa_operation* operation);

  private:
    struct LoopDelete {
        void operator()(pa_threaded_mainloop* loop) const;
    };
    struct ContextDelete {
        void operator()(pa_context* context) const;
    };
    // Only `open` makes one.
    struct Key {};

  public:
    explicit PulseConnection(Key) {}

  private:
    std::unique_ptr<pa_threaded_mainloop, LoopDelete> mainloop_;
    std::unique_ptr<pa_context, ContextDelete> context_;
};

}  // namespace corvanel
