#pragma once
// A private PipeWire session for one test: its own session bus, a PipeWire daemon and
// WirePlumber under a private runtime directory, with two sinks that behave like DACs (ALSA sinks
// on alsa-lib's "null" device: S16 to S32, F32 and F64 at any rate; asleep until something
// first plays, then open even when idle).
// No real-time module, no device monitors, nothing from the user's own configuration. While it
// lives, this process's PipeWire clients connect to it; everything is stopped by process id when
// it goes.
//
// The helpers act as a user or another program would, with PipeWire's own tools, and read the
// daemon's state the same way — never through Corvanel's code.
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "DBusTestBus.h"

namespace corvanel::testing {

class PipeWireTestSession {
  public:
    // The default sink at the start.
    static constexpr const char* firstSink = "corvanel_dac_a";
    static constexpr const char* firstSinkDescription = "Test DAC A";
    static constexpr const char* secondSink = "corvanel_dac_b";
    static constexpr const char* secondSinkDescription = "Test DAC B";
    // The graph's default clock rate (clock.rate), as Debian ships it.
    static constexpr int defaultRate = 48000;

    // Starts the bus, the daemon and WirePlumber, and returns once WirePlumber has chosen the
    // default sink (or failed: see failure()).
    PipeWireTestSession();
    // Stops WirePlumber, the daemon and the bus by process id and removes the private files.
    ~PipeWireTestSession();
    PipeWireTestSession(const PipeWireTestSession&) = delete;
    PipeWireTestSession& operator=(const PipeWireTestSession&) = delete;

    // Empty when the session runs; otherwise why not, with the daemons' logs.
    const std::string& failure() const { return failure_; }
    // How long the start took.
    std::chrono::milliseconds startTime() const { return startTime_; }
    // The environment entries that point a program at this session (PipeWire and the bus).
    std::vector<std::string> clientEnvironment() const;
    // The session's bus, for programs that need one (media players, the player adapter).
    const DBusTestBus& bus() const { return bus_; }
    pid_t daemonPid() const { return daemon_; }
    pid_t sessionManagerPid() const { return sessionManager_; }

    // The user picks the default output, as a desktop's sound settings do
    // (default.configured.audio.sink), and this waits until WirePlumber has made it the default
    // (default.audio.sink); false when it did not within 5 s.
    bool setDefaultSink(const std::string& name) const;
    // The default sink WirePlumber reports now; empty when there is none.
    std::string defaultSink() const;
    // Another program forces the graph's rate (clock.force-rate; 0 releases it).
    bool forceRateAsAnotherProgram(int rate) const;
    // The settings metadata's clock.force-rate now; absent when it cannot be read.
    std::optional<int> forcedRate() const;
    // The rate the sink runs at: the rate of its negotiated Format in pw-dump; 0 while it runs
    // none (suspended) or when there is no such sink.
    int sinkRate(const std::string& name) const;
    // Waits until sinkRate(name) is `rate`; false when it was not within `timeout`.
    bool waitForSinkRate(const std::string& name, int rate,
                         std::chrono::milliseconds timeout = std::chrono::milliseconds(3000)) const;
    // Plays silence into the sink with pw-play, as a player would, which keeps the sink's driver
    // running; the player's process id (stop it with stopProgram), -1 when it did not start. It
    // ends by itself after 30 s.
    pid_t playSilence(const std::string& sink) const;
    // Adds another DAC-like sink while the session runs, and waits until it is in the graph.
    bool addSink(const std::string& name, const std::string& description) const;
    // Removes a sink, as when a DAC is unplugged.
    bool removeSink(const std::string& name) const;

  private:
    void start();
    void writeConfiguration() const;
    void writeSilence() const;
    std::optional<std::string> metadataValue(const std::string& metadata,
                                             const std::string& key) const;
    std::optional<std::string> run(const std::vector<std::string>& arguments) const;

    DBusTestBus bus_;  // first in, last out: WirePlumber needs it until it has stopped
    std::filesystem::path directory_;
    pid_t daemon_ = -1;
    pid_t sessionManager_ = -1;
    std::string failure_;
    std::chrono::milliseconds startTime_{0};
    std::optional<std::string> previousRuntimeDirectory_;
    std::optional<std::string> previousRemote_;
};

}  // namespace corvanel::testing
