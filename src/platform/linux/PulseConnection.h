#pragma once
// One connection to the PulseAudio server (or PipeWire's pulse server): a threaded main loop
// and a context, owned together. Calls from other threads take `Lock` and wait for the loop's
// callbacks with `wait()`; callbacks wake them with `signal()`.
#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
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

    // How long a wait for the server may take. A hung or stopped server keeps its socket open
    // and never answers; without a limit the caller would wait for libpulse's own 30 s.
    static constexpr std::chrono::seconds replyDeadline{3};

    // With the lock held, for as long as it lives: marks when `replyDeadline` has passed, and
    // wakes `wait()` then.
    class Deadline {
      public:
        explicit Deadline(PulseConnection& connection);
        ~Deadline();
        Deadline(const Deadline&) = delete;
        Deadline& operator=(const Deadline&) = delete;
        bool passed() const { return passed_; }

      private:
        static void onTime(pa_mainloop_api*, pa_time_event*, const struct timeval*, void* userdata);
        PulseConnection& connection_;
        pa_time_event* event_ = nullptr;
        bool passed_ = false;
    };

    pa_context* context() const { return context_.get(); }
    // With the lock held: sleeps until a callback signals.
    void wait();
    // From a callback on the loop's thread.
    void signal();
    // With the lock held: `handler` is told, on the loop's thread, when a ready connection is
    // lost (the server quit or crashed), with the error code.
    void setLostHandler(std::function<void(int error)> handler);
    // The context's last error code (never 0 after a failure); PA_ERR_TIMEOUT after a wait
    // that ran out of time.
    int lastError() const;
    // With the lock held: runs `operation` to completion (its callback must signal), within
    // the reply deadline; false when it failed or ran out of time.
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
    static void onContextState(pa_context* context, void* userdata);

  public:
    explicit PulseConnection(Key) {}

  private:
    std::unique_ptr<pa_threaded_mainloop, LoopDelete> mainloop_;
    std::unique_ptr<pa_context, ContextDelete> context_;
    bool timedOut_ = false;
    bool wasReady_ = false;
    std::function<void(int error)> lostHandler_;
};

}  // namespace corvanel
