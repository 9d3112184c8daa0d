#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "CorvanelIdentity.h"
#include "ToolCommand.h"

namespace corvanel::tool {

std::vector<ToolCommand>& registeredCommands() {
    static std::vector<ToolCommand> commands;
    return commands;
}

RegisterCommand::RegisterCommand(ToolCommand command) {
    registeredCommands().push_back(std::move(command));
}

namespace {

int printUsage(std::FILE* stream) {
    std::fprintf(stream,
                 "usage: corvanel-tool COMMAND [ARGUMENTS]\n"
                 "       corvanel-tool --help | --version\n\ncommands:\n");
    auto commands = registeredCommands();
    std::sort(commands.begin(), commands.end(),
              [](const ToolCommand& a, const ToolCommand& b) { return a.name < b.name; });
    for (const ToolCommand& command : commands) {
        std::fprintf(stream, "  %s %s\n", command.name.c_str(), command.usage.c_str());
    }
    return stream == stdout ? 0 : 2;
}

}  // namespace
}  // namespace corvanel::tool

int main(int argc, char** argv) {
    using namespace corvanel::tool;
    if (argc < 2) return printUsage(stderr);
    const std::string name = argv[1];
    if (name == "help" || name == "--help" || name == "-h") return printUsage(stdout);
    if (name == "--version") {
        std::printf("corvanel-tool %s\n", corvanel::projectVersion);
        return 0;
    }
    for (const ToolCommand& command : registeredCommands()) {
        if (command.name == name)
            return command.run(std::vector<std::string>(argv + 2, argv + argc));
    }
    std::fprintf(stderr, "corvanel-tool: unknown command \"%s\"\n\n", name.c_str());
    return printUsage(stderr);
}
