// The shell's built-in commands, as opposed to the library's functions.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/shell.h"

namespace shell {

struct Command {
    std::string_view name;
    std::string_view arguments;  // in the notation of the help text
    std::string_view does;
    std::function<Status(Shell&, Words&)> run;
    bool readsTables = false;  // prints data of the source, which may be stale
};

const std::vector<Command>& Commands();
// Returns null if there is no command of that name.
const Command* FindCommand(std::string_view name);

// Returns the names of all commands and functions.
std::vector<std::string> CallableNames();

// The tables of commands, one per source file.
std::vector<Command> HelpCommands();
std::vector<Command> StatusCommands();
std::vector<Command> TableCommands();
std::vector<Command> WriteCommands();
std::vector<Command> FileCommands();
std::vector<Command> EventCommands();

}  // namespace shell
