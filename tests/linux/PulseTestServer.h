#pragma once
// A private PulseAudio server for one test suite: two null sinks (what applications "play"
// into, with a monitor to record), a sine source standing in for a microphone that hears a
// steady tone, its own runtime directory and socket, started by the test and killed when it
// ends. Like a desktop's server it rescues the streams of a sink that goes away onto other
// devices. PULSE_SERVER points this process's clients at it.
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace corvanel::testing {

class PulseTestServer {
  public:
    static constexpr const char* firstSink = "corvanel_first";        // 48 kHz, the default
    static constexpr const char* secondSink = "corvanel_second";      // 44.1 kHz
    static constexpr const char* microphone = "corvanel_microphone";  // a source, not a monitor
    static constexpr double microphoneTone = 437.0;

    PulseTestServer();
    ~PulseTestServer();
    PulseTestServer(const PulseTestServer&) = delete;
    PulseTestServer& operator=(const PulseTestServer&) = delete;

    // Empty when the server runs; otherwise why not, with its log.
    const std::string& failure() const { return failure_; }
    const std::string& serverAddress() const { return address_; }
    std::vector<std::string> clientEnvironment() const;

    // Plays a WAV file into `sink` (paplay) and returns at once; the process ends by itself.
    pid_t play(const std::filesystem::path& file, const std::string& sink) const;
    bool setDefaultSink(const std::string& sink) const;
    bool setDefaultSource(const std::string& source) const;
    // Adds a null sink while the server runs.
    bool loadSink(const std::string& name, int rate) const;
    // Unloads every module of that name.
    bool unloadModule(const std::string& name) const;
    pid_t pid() const { return server_; }
    // Kills the server, as a crash would, and starts a new one on the same socket.
    bool restart();
    std::filesystem::path directory() const { return directory_; }

  private:
    void start();
    void stop();

    std::filesystem::path directory_;
    std::string address_;
    std::string previousServer_;
    bool hadPreviousServer_ = false;
    pid_t server_ = -1;
    std::string failure_;
};

}  // namespace corvanel::testing
