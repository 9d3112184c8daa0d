#include "platform/sim/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvanel {

namespace {

bool isTerminal(const std::string& path) {
    // Non-blocking, and without becoming the controlling terminal: this only looks.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool terminal = ::isatty(descriptor) == 1;
    ::close(descriptor);
    return terminal;
}

}  // namespace

std::optional<std::string> unsuitableInputReason(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    if (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)) return std::nullopt;
    if (S_ISDIR(status.st_mode)) return "Is a directory";
    if (S_ISCHR(status.st_mode) && isTerminal(path)) return std::nullopt;
    return "not a regular file, a FIFO or a terminal";
}

}  // namespace corvanel
