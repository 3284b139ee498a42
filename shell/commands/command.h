// The shell's own commands, beside the library's functions.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/shell.h"

namespace shell {

struct Command {
    std::string_view name;
    std::string_view arguments;  // as help writes them
    std::string_view does;
    std::function<Status(Shell&, Words&)> run;
};

const std::vector<Command>& Commands();
// Null where there is none of that name.
const Command* FindCommand(std::string_view name);

// Names of all commands and functions.
std::vector<std::string> CallableNames();

// By subject.
std::vector<Command> HelpCommands();
std::vector<Command> TableCommands();
std::vector<Command> WriteCommands();
std::vector<Command> FileCommands();
std::vector<Command> EventCommands();

}  // namespace shell
