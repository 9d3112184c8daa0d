#include "ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

extern char** environ;

namespace corvanel::testing {

namespace {

std::vector<std::string> environmentWith(const std::vector<std::string>& extra) {
    std::vector<std::string> entries(extra);
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string key = text.substr(0, text.find('=') + 1);
        bool overridden = false;
        for (const std::string& added : extra)
            overridden = overridden || added.starts_with(key);
        if (!overridden) entries.push_back(text);
    }
    return entries;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

// Spawns the program with its output arranged by `arrange`; its process id, or -1.
pid_t spawn(const std::vector<std::string>& arguments,
            const std::vector<std::string>& extraEnvironment,
            const std::function<void(posix_spawn_file_actions_t&)>& arrange) {
    std::vector<std::string> argumentTexts = arguments;
    std::vector<std::string> environmentTexts = environmentWith(extraEnvironment);
    std::vector<char*> argv = pointers(argumentTexts);
    std::vector<char*> envp = pointers(environmentTexts);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    arrange(actions);
    pid_t pid = -1;
    const int result = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    return result == 0 ? pid : -1;
}

}  // namespace

pid_t startProgram(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& extraEnvironment, const std::string& logPath) {
    return spawn(arguments, extraEnvironment, [&logPath](posix_spawn_file_actions_t& actions) {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, logPath.c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0644);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    });
}

int runProgram(const std::vector<std::string>& arguments,
               const std::vector<std::string>& extraEnvironment) {
    const pid_t pid = startProgram(arguments, extraEnvironment, "/dev/null");
    if (pid < 0) return -1;
    int status = 0;
    if (waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::optional<std::string> programOutput(const std::vector<std::string>& arguments,
                                         const std::vector<std::string>& extraEnvironment,
                                         std::chrono::milliseconds timeout) {
    int ends[2];
    if (pipe(ends) != 0) return std::nullopt;
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    const pid_t pid =
        spawn(arguments, extraEnvironment, [&ends](posix_spawn_file_actions_t& actions) {
            posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
            posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        });
    close(ends[1]);
    if (pid < 0) {
        close(ends[0]);
        return std::nullopt;
    }

    std::string output;
    bool ended = false;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!ended) {
        const auto remaining = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (remaining.count() <= 0) break;
        pollfd readable{ends[0], POLLIN, 0};
        if (poll(&readable, 1, static_cast<int>(remaining.count())) <= 0) continue;
        char buffer[4096];
        const ssize_t count = read(ends[0], buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count > 0) {
            output.append(buffer, static_cast<std::size_t>(count));
        } else {
            ended = true;  // the end of the output: the program closed it or exited
        }
    }
    close(ends[0]);
    if (!ended) kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    if (!ended || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return output;
}

bool hasExited(pid_t pid) {
    int status = 0;
    return waitpid(pid, &status, WNOHANG) == pid;
}

void stopProgram(pid_t pid, std::chrono::milliseconds grace) {
    if (pid <= 0) return;
    kill(pid, SIGCONT);  // a stopped process cannot act on SIGTERM
    kill(pid, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + grace;
    while (std::chrono::steady_clock::now() < deadline) {
        if (hasExited(pid)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
}

bool acceptsConnections(const std::filesystem::path& socketPath) {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    if (descriptor < 0) return false;
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = socketPath.string();
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const bool connected =
        connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    close(descriptor);
    return connected;
}

std::string readTextFile(const std::filesystem::path& path) {
    std::ifstream stream(path);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::filesystem::path makePrivateDirectory(const std::string& prefix) {
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "XXXXXX")).string();
    if (mkdtemp(pattern.data()) == nullptr) return {};
    return pattern;
}

}  // namespace corvanel::testing
