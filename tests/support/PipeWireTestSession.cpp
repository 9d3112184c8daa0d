#include "PipeWireTestSession.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "ChildProcess.h"

namespace corvanel::testing {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// An ALSA sink on alsa-lib's "null" device, like a DAC that takes any rate and depth. It is
// never suspended, so an idle sink keeps the format it last ran.
std::string sinkObject(const std::string& name, const std::string& description, int priority) {
    return "    { factory = adapter\n"
           "        args = {\n"
           "            factory.name = api.alsa.pcm.sink\n"
           "            node.name = \"" +
           name +
           "\"\n"
           "            node.description = \"" +
           description +
           "\"\n"
           "            node.nick = \"" +
           description +
           "\"\n"
           "            media.class = \"Audio/Sink\"\n"
           "            api.alsa.path = \"null\"\n"
           "            node.suspend-on-idle = false\n"
           "            priority.session = " +
           std::to_string(priority) +
           "\n"
           "        }\n"
           "    }\n";
}

// The daemon: the modules a desktop's daemon has, minus the real-time one; clients get full
// access (module-access), as desktop programs do.
std::string daemonConfiguration() {
    return "context.properties = {\n"
           "    core.daemon = true\n"
           "    core.name = pipewire-0\n"
           "    support.dbus = false\n"
           "    link.max-buffers = 16\n"
           "    default.clock.rate = " +
           std::to_string(PipeWireTestSession::defaultRate) +
           "\n"
           "    default.clock.allowed-rates = [ " +
           std::to_string(PipeWireTestSession::defaultRate) +
           " ]\n"
           "}\n"
           "context.spa-libs = {\n"
           "    audio.convert.* = audioconvert/libspa-audioconvert\n"
           "    api.alsa.*      = alsa/libspa-alsa\n"
           "    support.*       = support/libspa-support\n"
           "}\n"
           "context.modules = [\n"
           "    { name = libpipewire-module-protocol-native }\n"
           "    { name = libpipewire-module-metadata }\n"
           "    { name = libpipewire-module-spa-node-factory }\n"
           "    { name = libpipewire-module-client-node }\n"
           "    { name = libpipewire-module-client-device }\n"
           "    { name = libpipewire-module-adapter }\n"
           "    { name = libpipewire-module-link-factory }\n"
           "    { name = libpipewire-module-session-manager }\n"
           "    { name = libpipewire-module-access args = { } }\n"
           "]\n"
           "context.objects = [\n"
           "    { factory = spa-node-factory\n"
           "        args = {\n"
           "            factory.name = support.node.driver\n"
           "            node.name = Dummy-Driver\n"
           "            node.group = pipewire.dummy\n"
           "            priority.driver = 20000\n"
           "        }\n"
           "    }\n" +
           sinkObject(PipeWireTestSession::firstSink, PipeWireTestSession::firstSinkDescription,
                      1000) +
           sinkObject(PipeWireTestSession::secondSink, PipeWireTestSession::secondSinkDescription,
                      900) +
           "]\n";
}

// WirePlumber with its default policy (linking, default nodes) and without the real-time module
// and the Bluetooth component.
const char* const sessionManagerConfiguration =
    "context.properties = {\n"
    "    log.level = 2\n"
    "    wireplumber.script-engine = lua-scripting\n"
    "}\n"
    "context.spa-libs = {\n"
    "    audio.convert.* = audioconvert/libspa-audioconvert\n"
    "    support.*       = support/libspa-support\n"
    "}\n"
    "context.modules = [\n"
    "    { name = libpipewire-module-protocol-native }\n"
    "    { name = libpipewire-module-client-node }\n"
    "    { name = libpipewire-module-client-device }\n"
    "    { name = libpipewire-module-adapter }\n"
    "    { name = libpipewire-module-metadata }\n"
    "    { name = libpipewire-module-session-manager }\n"
    "]\n"
    "wireplumber.components = [\n"
    "    { name = libwireplumber-module-lua-scripting, type = module }\n"
    "    { name = main.lua, type = config/lua }\n"
    "    { name = policy.lua, type = config/lua }\n"
    "]\n";

// Replaces the packaged main.lua.d/90-enable-all.lua: no ALSA, camera or video monitors (the
// test sinks are the only devices) and no suspending of idle sinks.
const char* const sessionManagerScripts =
    "load_module(\"metadata\")\n"
    "default_access.enable()\n"
    "device_defaults.enable()\n"
    "stream_defaults.enable()\n"
    "load_script(\"intended-roles.lua\")\n";

void writeLittleEndian(std::ofstream& file, std::uint32_t value, int bytes) {
    for (int index = 0; index < bytes; ++index)
        file.put(static_cast<char>((value >> (8 * index)) & 0xff));
}

// The text between `before` and the next quote after it in `text`, the first time it occurs.
std::optional<std::string> quotedAfter(const std::string& text, const std::string& before) {
    const std::size_t start = text.find(before);
    if (start == std::string::npos) return std::nullopt;
    const std::size_t valueStart = start + before.size();
    const std::size_t end = text.find('\'', valueStart);
    if (end == std::string::npos) return std::nullopt;
    return text.substr(valueStart, end - valueStart);
}

// The object of pw-dump's output (a top-level array entry) that contains `position`.
std::string enclosingObject(const std::string& dump, std::size_t position) {
    const std::size_t start = dump.rfind("\n  {", position);
    const std::size_t end = dump.find("\n  }", position);
    if (start == std::string::npos || end == std::string::npos) return {};
    return dump.substr(start, end - start);
}

int firstNumberAfter(const std::string& text, std::size_t position) {
    while (position < text.size() && (text[position] < '0' || text[position] > '9')) {
        if (text[position] == ']' || text[position] == '}') return 0;
        ++position;
    }
    return std::atoi(text.c_str() + position);
}

}  // namespace

PipeWireTestSession::PipeWireTestSession() {
    const auto started = Clock::now();
    if (!bus_.failure().empty()) {
        failure_ = "the session bus did not start: " + bus_.failure();
        return;
    }
    directory_ = makePrivateDirectory("corvanel-pipewire-");
    if (directory_.empty()) {
        failure_ = "could not make a temporary directory for the PipeWire session";
        return;
    }
    for (const char* folder : {"runtime", "home", "config/wireplumber/main.lua.d", "state"})
        std::filesystem::create_directories(directory_ / folder);
    std::filesystem::permissions(directory_ / "runtime", std::filesystem::perms::owner_all);
    writeConfiguration();
    writeSilence();

    // This process's own clients (the code under test) go to this session too.
    if (const char* previous = std::getenv("PIPEWIRE_RUNTIME_DIR"))
        previousRuntimeDirectory_ = previous;
    if (const char* previous = std::getenv("PIPEWIRE_REMOTE")) previousRemote_ = previous;
    setenv("PIPEWIRE_RUNTIME_DIR", (directory_ / "runtime").c_str(), 1);
    setenv("PIPEWIRE_REMOTE", "pipewire-0", 1);

    start();
    startTime_ = std::chrono::duration_cast<milliseconds>(Clock::now() - started);
}

void PipeWireTestSession::writeConfiguration() const {
    std::ofstream(directory_ / "pipewire.conf") << daemonConfiguration();
    std::ofstream(directory_ / "wireplumber.conf") << sessionManagerConfiguration;
    std::ofstream(directory_ / "config/wireplumber/main.lua.d/90-enable-all.lua")
        << sessionManagerScripts;
}

void PipeWireTestSession::writeSilence() const {
    // 30 s of 16-bit mono silence at 8 kHz in a WAV file.
    constexpr std::uint32_t rate = 8000;
    constexpr std::uint32_t dataBytes = rate * 2 * 30;
    std::ofstream file(directory_ / "silence.wav", std::ios::binary);
    file << "RIFF";
    writeLittleEndian(file, 36 + dataBytes, 4);
    file << "WAVEfmt ";
    writeLittleEndian(file, 16, 4);        // the format chunk's size
    writeLittleEndian(file, 1, 2);         // linear PCM
    writeLittleEndian(file, 1, 2);         // one channel
    writeLittleEndian(file, rate, 4);      // frames per second
    writeLittleEndian(file, rate * 2, 4);  // bytes per second
    writeLittleEndian(file, 2, 2);         // bytes per frame
    writeLittleEndian(file, 16, 2);        // bits per sample
    file << "data";
    writeLittleEndian(file, dataBytes, 4);
    const std::string zeros(dataBytes, '\0');
    file.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
}

void PipeWireTestSession::start() {
    std::vector<std::string> environment = clientEnvironment();
    environment.push_back("HOME=" + (directory_ / "home").string());
    environment.push_back("XDG_CONFIG_HOME=" + (directory_ / "config").string());
    environment.push_back("XDG_STATE_HOME=" + (directory_ / "state").string());
    const std::string daemonLog = (directory_ / "pipewire.log").string();
    const std::string sessionManagerLog = (directory_ / "wireplumber.log").string();
    const auto logs = [&] {
        return "\npipewire:\n" + readTextFile(daemonLog) + "\nwireplumber:\n" +
               readTextFile(sessionManagerLog);
    };
    // A process that has ended is reaped here and forgotten, so its id is never signalled.
    const auto ended = [](pid_t& pid) {
        if (!hasExited(pid)) return false;
        pid = -1;
        return true;
    };
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    daemon_ = startProgram({"pipewire", "-c", (directory_ / "pipewire.conf").string()}, environment,
                           daemonLog);
    if (daemon_ < 0) {
        failure_ = "could not start pipewire (scripts/bootstrap installs it)";
        return;
    }
    // WirePlumber gives up when it finds no daemon: it starts once the daemon listens.
    while (!acceptsConnections(directory_ / "runtime" / "pipewire-0")) {
        if (ended(daemon_) || Clock::now() >= deadline) {
            failure_ = "pipewire did not start" + logs();
            return;
        }
        std::this_thread::sleep_for(milliseconds(2));
    }
    sessionManager_ =
        startProgram({"wireplumber", "-c", (directory_ / "wireplumber.conf").string()}, environment,
                     sessionManagerLog);
    if (sessionManager_ < 0) {
        failure_ = "could not start wireplumber (scripts/bootstrap installs it)";
        return;
    }
    while (Clock::now() < deadline) {
        if (ended(daemon_) || ended(sessionManager_)) {
            failure_ = "pipewire or wireplumber exited while starting" + logs();
            return;
        }
        if (defaultSink() == firstSink) return;
        std::this_thread::sleep_for(milliseconds(10));
    }
    failure_ = "WirePlumber did not choose a default sink within 10 s" + logs();
}

PipeWireTestSession::~PipeWireTestSession() {
    stopProgram(sessionManager_);
    stopProgram(daemon_);
    if (previousRuntimeDirectory_) {
        setenv("PIPEWIRE_RUNTIME_DIR", previousRuntimeDirectory_->c_str(), 1);
    } else {
        unsetenv("PIPEWIRE_RUNTIME_DIR");
    }
    if (previousRemote_) {
        setenv("PIPEWIRE_REMOTE", previousRemote_->c_str(), 1);
    } else {
        unsetenv("PIPEWIRE_REMOTE");
    }
    std::error_code ignored;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
}

std::vector<std::string> PipeWireTestSession::clientEnvironment() const {
    std::vector<std::string> environment = bus_.clientEnvironment();
    environment.push_back("XDG_RUNTIME_DIR=" + (directory_ / "runtime").string());
    environment.push_back("PIPEWIRE_RUNTIME_DIR=" + (directory_ / "runtime").string());
    environment.push_back("PIPEWIRE_REMOTE=pipewire-0");
    return environment;
}

std::optional<std::string> PipeWireTestSession::run(
    const std::vector<std::string>& arguments) const {
    return programOutput(arguments, clientEnvironment(), milliseconds(3000));
}

std::optional<std::string> PipeWireTestSession::metadataValue(const std::string& metadata,
                                                              const std::string& key) const {
    // pw-metadata prints: update: id:0 key:'<key>' value:'<value>' type:'<type>'
    const auto output = run({"pw-metadata", "-n", metadata, "0", key});
    if (!output) return std::nullopt;
    return quotedAfter(*output, "key:'" + key + "' value:'");
}

std::string PipeWireTestSession::defaultSink() const {
    // The value is {"name":"<node name>"}.
    const auto value = metadataValue("default", "default.audio.sink");
    if (!value) return {};
    const std::string marker = "\"name\":\"";
    const std::size_t start = value->find(marker);
    if (start == std::string::npos) return {};
    const std::size_t end = value->find('"', start + marker.size());
    return value->substr(start + marker.size(), end - start - marker.size());
}

bool PipeWireTestSession::setDefaultSink(const std::string& name) const {
    if (!run({"pw-metadata", "-n", "default", "0", "default.configured.audio.sink",
              "{ \"name\": \"" + name + "\" }", "Spa:String:JSON"}))
        return false;
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (Clock::now() < deadline) {
        if (defaultSink() == name) return true;
        std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
}

bool PipeWireTestSession::forceRateAsAnotherProgram(int rate) const {
    return run({"pw-metadata", "-n", "settings", "0", "clock.force-rate", std::to_string(rate)})
        .has_value();
}

std::optional<int> PipeWireTestSession::forcedRate() const {
    const auto value = metadataValue("settings", "clock.force-rate");
    if (!value) return std::nullopt;
    return std::atoi(value->c_str());
}

int PipeWireTestSession::sinkRate(const std::string& name) const {
    const auto dump = run({"pw-dump", "-N"});
    if (!dump) return 0;
    const std::size_t named = dump->find("\"node.name\": \"" + name + "\"");
    if (named == std::string::npos) return 0;
    const std::string node = enclosingObject(*dump, named);
    // "Format": [ { ..., "rate": 96000, ... } ], or [ ] while the sink is suspended.
    const std::size_t format = node.find("\"Format\": [");
    if (format == std::string::npos) return 0;
    const std::size_t rate = node.find("\"rate\":", format);
    const std::size_t listEnd = node.find(']', format);
    if (rate == std::string::npos || (listEnd != std::string::npos && listEnd < rate)) return 0;
    return firstNumberAfter(node, rate + 7);
}

bool PipeWireTestSession::waitForSinkRate(const std::string& name, int rate,
                                          std::chrono::milliseconds timeout) const {
    const auto deadline = Clock::now() + timeout;
    while (Clock::now() < deadline) {
        if (sinkRate(name) == rate) return true;
        std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
}

pid_t PipeWireTestSession::playSilence(const std::string& sink) const {
    return startProgram({"pw-play", "--target", sink, (directory_ / "silence.wav").string()},
                        clientEnvironment(), (directory_ / "pw-play.log").string());
}

bool PipeWireTestSession::addSink(const std::string& name, const std::string& description) const {
    // object.linger keeps the node after pw-cli has gone. A bare null would read as JSON null.
    const std::string properties = "{ factory.name=api.alsa.pcm.sink node.name=\"" + name +
                                   "\" node.description=\"" + description +
                                   "\" media.class=Audio/Sink api.alsa.path=\"null\" "
                                   "node.suspend-on-idle=false object.linger=true }";
    if (!run({"pw-cli", "create-node", "adapter", properties})) return false;
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (Clock::now() < deadline) {
        const auto dump = run({"pw-dump", "-N"});
        if (dump && dump->find("\"node.name\": \"" + name + "\"") != std::string::npos) return true;
        std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
}

bool PipeWireTestSession::removeSink(const std::string& name) const {
    return run({"pw-cli", "destroy", name}).has_value();
}

}  // namespace corvanel::testing
