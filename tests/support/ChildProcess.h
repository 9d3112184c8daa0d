#pragma once
// Programs a test starts itself (servers, players, the application): spawned with extra
// environment entries, their output kept in a log, stopped by process id.
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace corvanel::testing {

// Runs a program with extra environment entries; its exit status, or -1 if it cannot start.
int runProgram(const std::vector<std::string>& arguments,
               const std::vector<std::string>& extraEnvironment);
// Runs a program to its end and returns what it wrote on its standard output; nothing when it
// could not start, failed (a non-zero exit status) or did not end within `timeout` (it is then
// killed).
std::optional<std::string> programOutput(
    const std::vector<std::string>& arguments, const std::vector<std::string>& extraEnvironment,
    std::chrono::milliseconds timeout = std::chrono::milliseconds(5000));
// Starts a program without waiting; its process id, or -1. Its output is appended to logPath.
pid_t startProgram(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& extraEnvironment, const std::string& logPath);
// Sends SIGTERM, waits up to `grace` for the exit, then SIGKILL; reaps the process either way.
void stopProgram(pid_t pid, std::chrono::milliseconds grace = std::chrono::milliseconds(2000));
// Whether the process has exited (and reaps it if so).
bool hasExited(pid_t pid);

// Whether a server accepts connections on the Unix socket at `socketPath`.
bool acceptsConnections(const std::filesystem::path& socketPath);

std::string readTextFile(const std::filesystem::path& path);
// A new private directory under the system's temporary folder: prefix + six random characters.
std::filesystem::path makePrivateDirectory(const std::string& prefix);

}  // namespace corvanel::testing
