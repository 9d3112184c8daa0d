#pragma once
// corvanel-tool subcommands register themselves here, one file each.
#include <string>
#include <vector>

namespace corvanel::tool {

struct ToolCommand {
    std::string name;
    std::string usage;  // one line: arguments after the name
    int (*run)(const std::vector<std::string>& arguments);
};

std::vector<ToolCommand>& registeredCommands();

struct RegisterCommand {
    explicit RegisterCommand(ToolCommand command);
};

}  // namespace corvanel::tool
