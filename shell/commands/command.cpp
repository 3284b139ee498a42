#include "shell/commands/command.h"

#include <algorithm>

namespace shell {
namespace {

std::vector<Command> Assemble()
{
    std::vector<Command> all;
    for (const auto& subject : {TableCommands, WriteCommands, FileCommands, EventCommands,
                                StatusCommands, HelpCommands}) {
        std::ranges::move(subject(), std::back_inserter(all));
    }
    return all;
}

}  // namespace

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = Assemble();
    return commands;
}

const Command* FindCommand(std::string_view name)
{
    const auto found = std::ranges::find(Commands(), name, &Command::name);
    return found != Commands().end() ? &*found : nullptr;
}

std::vector<std::string> CallableNames()
{
    std::vector<std::string> names;
    for (const Command& command : Commands()) {
        names.emplace_back(command.name);
    }
    for (const Function& function : Functions()) {
        names.emplace_back(function.name);
    }
    return names;
}

}  // namespace shell
