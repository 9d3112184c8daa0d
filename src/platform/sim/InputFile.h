#pragma once
// Which paths the tools read input from: regular files, FIFOs (which wait for their writer, as
// pipes do) and terminals. Anything else (a directory, a device such as a disk or /dev/zero, a
// socket) is refused before it is opened, so it never blocks or streams forever.
#include <optional>
#include <string>

namespace corvanel {

// Why `path` is not an input to read (in words that follow "cannot read PATH: "), or nothing when
// it is one or does not exist (opening it then says why).
std::optional<std::string> unsuitableInputReason(const std::string& path);

}  // namespace corvanel
