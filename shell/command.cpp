#include "shell/command.h"

#include <algorithm>

namespace shell {
namespace {

std::vector<Command> Assemble()
{
    std::vector<Command> all;
    for (const auto& subject :
         {TableCommands, WriteCommands, FileCommands, EventCommands, HelpCommands}) {
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

}  // namespace shell
