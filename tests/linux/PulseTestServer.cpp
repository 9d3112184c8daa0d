#include "PulseTestServer.h"

#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>
#include <variant>

#include "ChildProcess.h"
#include "platform/linux/PulseConnection.h"

namespace corvanel::testing {

PulseTestServer::PulseTestServer() {
    directory_ = makePrivateDirectory("corvanel-pulse-");
    if (directory_.empty()) {
        failure_ = "could not make a temporary directory for the PulseAudio server";
        return;
    }
    std::filesystem::create_directories(directory_ / "runtime");
    std::filesystem::permissions(directory_ / "runtime", std::filesystem::perms::owner_all);
    std::filesystem::create_directories(directory_ / "home");
    const std::string socket = (directory_ / "pulse.sock").string();
    address_ = "unix:" + socket;

    if (const char* previous = std::getenv("PULSE_SERVER")) {
        hadPreviousServer_ = true;
        previousServer_ = previous;
    }
    setenv("PULSE_SERVER", address_.c_str(), 1);
    start();
}

void PulseTestServer::start() {
    const std::string socket = address_.substr(std::string("unix:").size());
    // -n: no default configuration, only the modules named here. Root needs no --system for a
    // private per-test server: it only warns. No autospawn, no idle exit, no shared memory
    // (containers often lack it), no realtime scheduling requests.
    const std::vector<std::string> arguments = {
        "pulseaudio",
        "-n",
        "--daemonize=no",
        "--exit-idle-time=-1",
        "--disallow-exit",
        "--use-pid-file=no",
        "--disable-shm=yes",
        "--realtime=no",
        "--high-priority=no",
        "--log-target=stderr",
        "-L",
        std::string("module-null-sink sink_name=") + firstSink + " rate=48000",
        "-L",
        std::string("module-null-sink sink_name=") + secondSink + " rate=44100",
        "-L",
        std::string("module-sine-source source_name=") + microphone +
            " rate=48000 frequency=" + std::to_string(static_cast<int>(microphoneTone)),
        "-L",
        "module-rescue-streams",
        "-L",
        "module-native-protocol-unix auth-anonymous=1 socket=" + socket};
    const std::string log = (directory_ / "server.log").string();
    server_ = startProgram(arguments, clientEnvironment(), log);
    if (server_ < 0) {
        failure_ = "could not start pulseaudio (is it installed? scripts/bootstrap installs it)";
        return;
    }

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(server_, &status, WNOHANG) == server_) {
            server_ = -1;
            failure_ = "pulseaudio exited while starting:\n" + readTextFile(log);
            return;
        }
        if (std::holds_alternative<std::unique_ptr<PulseConnection>>(
                PulseConnection::open("Corvanel test probe")))
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    failure_ = "pulseaudio did not accept connections within 15 s:\n" + readTextFile(log);
}

bool PulseTestServer::restart() {
    stop();
    failure_.clear();
    start();
    return failure_.empty();
}

void PulseTestServer::stop() {
    if (server_ <= 0) return;
    kill(server_, SIGKILL);
    int status = 0;
    waitpid(server_, &status, 0);
    server_ = -1;
}

PulseTestServer::~PulseTestServer() {
    stop();
    if (hadPreviousServer_) {
        setenv("PULSE_SERVER", previousServer_.c_str(), 1);
    } else {
        unsetenv("PULSE_SERVER");
    }
    std::error_code ignored;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
}

std::vector<std::string> PulseTestServer::clientEnvironment() const {
    return {"XDG_RUNTIME_DIR=" + (directory_ / "runtime").string(),
            "HOME=" + (directory_ / "home").string(), "PULSE_SERVER=" + address_};
}

pid_t PulseTestServer::play(const std::filesystem::path& file, const std::string& sink) const {
    return startProgram({"paplay", "--device=" + sink, file.string()}, clientEnvironment(),
                        (directory_ / "paplay.log").string());
}

bool PulseTestServer::setDefaultSink(const std::string& sink) const {
    return runProgram({"pactl", "set-default-sink", sink}, clientEnvironment()) == 0;
}

bool PulseTestServer::setDefaultSource(const std::string& source) const {
    return runProgram({"pactl", "set-default-source", source}, clientEnvironment()) == 0;
}

bool PulseTestServer::loadSink(const std::string& name, int rate) const {
    return runProgram({"pactl", "load-module", "module-null-sink", "sink_name=" + name,
                       "rate=" + std::to_string(rate)},
                      clientEnvironment()) == 0;
}

bool PulseTestServer::unloadModule(const std::string& name) const {
    return runProgram({"pactl", "unload-module", name}, clientEnvironment()) == 0;
}

}  // namespace corvanel::testing
