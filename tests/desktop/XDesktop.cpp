#include "XDesktop.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace corvanel::testing {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds startTimeout{15};

// Children inherit every descriptor opened without close-on-exec (the server's display pipe),
// and are stopped by the kernel should this process die without stopping them itself.
std::optional<pid_t> spawn(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) return std::nullopt;
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(127);
        // The children's chatter stays out of the test output.
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDOUT_FILENO);
        dup2(quiet, STDERR_FILENO);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    return pid;
}

void stop(pid_t& pid) {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (waitpid(pid, nullptr, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    pid = -1;
}

// The display number the server writes once it accepts connections, or nothing on timeout.
std::optional<std::string> readDisplayNumber(int fd) {
    std::string number;
    const auto deadline = Clock::now() + startTimeout;
    while (Clock::now() < deadline) {
        pollfd ready{fd, POLLIN, 0};
        if (poll(&ready, 1, 100) <= 0) continue;
        char c = 0;
        if (read(fd, &c, 1) != 1) return std::nullopt;
        if (c == '\n') return number.empty() ? std::nullopt : std::optional(number);
        number.push_back(c);
    }
    return std::nullopt;
}

// A window manager has taken over once the root window names its supporting window.
bool windowManagerRunning(xcb_connection_t* connection, xcb_window_t root) {
    static constexpr char name[] = "_NET_SUPPORTING_WM_CHECK";
    xcb_intern_atom_reply_t* atom = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr);
    if (!atom) return false;
    xcb_get_property_reply_t* property = xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1),
        nullptr);
    const bool running = property && xcb_get_property_value_length(property) > 0;
    std::free(property);
    std::free(atom);
    return running;
}

// The manager announces itself before it takes over the mapping of windows; it has once a probe
// window that asks to be mapped is reparented into its frame within `patience`.
bool probeWindowManaged(xcb_connection_t* connection, const xcb_screen_t& screen,
                        Clock::time_point deadline) {
    constexpr std::chrono::milliseconds patience{500};
    deadline = std::min(deadline, Clock::now() + patience);
    const xcb_window_t probe = xcb_generate_id(connection);
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, probe, screen.root, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, XCB_CW_EVENT_MASK,
                      &events);
    xcb_map_window(connection, probe);
    xcb_flush(connection);
    bool managed = false;
    while (!managed && Clock::now() < deadline) {
        xcb_generic_event_t* event = xcb_poll_for_event(connection);
        if (!event) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            continue;
        }
        managed = (event->response_type & 0x7f) == XCB_REPARENT_NOTIFY;
        std::free(event);
    }
    xcb_destroy_window(connection, probe);
    xcb_flush(connection);
    return managed;
}

bool waitForWindowManager(const std::string& display) {
    xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return false;
    }
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto deadline = Clock::now() + startTimeout;
    bool running = false;
    while (!running && Clock::now() < deadline) {
        running = windowManagerRunning(connection, screen.root);
        if (!running) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    bool managed = false;
    while (running && !managed && Clock::now() < deadline)
        managed = probeWindowManaged(connection, screen, deadline);
    running = managed;
    xcb_disconnect(connection);
    return running;
}

}  // namespace

std::variant<XDesktop, std::string> XDesktop::start() {
    XDesktop desktop;
    std::string pattern = (std::filesystem::temp_directory_path() / "corvanel-x-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return std::string("Could not make a private runtime directory");
    desktop.runtimeDirectory_ = pattern;

    int pipe[2];
    if (::pipe(pipe) != 0) return std::string("Could not make a pipe for the X server");
    const auto server = spawn({"Xvfb", "-displayfd", std::to_string(pipe[1]), "-nolisten", "tcp",
                               "-screen", "0", "1280x800x24", "-nolock"});
    close(pipe[1]);
    if (!server) {
        close(pipe[0]);
        return std::string("Could not start a process for Xvfb");
    }
    desktop.server_ = *server;
    const auto number = readDisplayNumber(pipe[0]);
    close(pipe[0]);
    if (!number)
        return std::string(
            "Xvfb did not report a display within 15 s (is it installed? make "
            "bootstrap installs it)");
    desktop.display_ = ":" + *number;

    setenv("DISPLAY", desktop.display_.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", desktop.runtimeDirectory_.c_str(), 1);
    const std::string config = (desktop.runtimeDirectory_ / "config").string();
    const auto manager = spawn({"env", "XDG_CONFIG_HOME=" + config,
                                "XDG_CACHE_HOME=" + (desktop.runtimeDirectory_ / "cache").string(),
                                "openbox", "--sm-disable"});
    if (!manager) return std::string("Could not start a process for openbox");
    desktop.windowManager_ = *manager;
    if (!waitForWindowManager(desktop.display_))
        return std::string(
            "openbox did not take over the display within 15 s (is it installed? "
            "make bootstrap installs it)");
    return desktop;
}

XDesktop::XDesktop(XDesktop&& other) noexcept
    : runtimeDirectory_(std::exchange(other.runtimeDirectory_, {})),
      display_(std::move(other.display_)),
      server_(std::exchange(other.server_, -1)),
      windowManager_(std::exchange(other.windowManager_, -1)) {}

XDesktop::~XDesktop() {
    stop(windowManager_);
    stop(server_);
    if (!runtimeDirectory_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(runtimeDirectory_, ignored);
    }
}

}  // namespace corvanel::testing
