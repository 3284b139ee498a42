// Commands about the shell itself: help, json, quit.
#include <algorithm>
#include <cctype>

#include "shell/commands/command.h"
#include "shell/nearest_name.h"
#include "shell/terminal/completion.h"

namespace shell {
namespace {

std::string FormText(const Argument& argument)
{
    std::string text = argument.form == Form::Ipv4  ? "an IPv4 address"
                       : argument.form == Form::Mac ? "a MAC address"
                                                    : "";
    if (!argument.table.empty() && !argument.field.empty()) {
        text += (text.empty() ? "" : ", ") + std::string(argument.table) + "." +
                std::string(argument.field);
    }
    if (!argument.fallback.empty() && argument.fallback != NULL_WORD) {
        text += (text.empty() ? "" : ", ") + ("default " + std::string(argument.fallback));
    }
    return text;
}

std::string ArgumentLines(const Function& function)
{
    std::string text;
    for (const Parameter& parameter : function.parameters) {
        if (parameter.argument.ignored) {
            continue;
        }
        std::string line = parameter.direction == Direction::In ? "  in   " : "  out  ";
        line += parameter.argument.name;
        line.resize(std::max<size_t>(line.size() + 2, 22), ' ');
        line += FormText(parameter.argument);
        text += line.erase(line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string FunctionHelp(const Function& function)
{
    std::string text = std::string(function.name) + " " + function.Usage() + "\n  " +
                       std::string(function.purpose) + "\n";
    text += ArgumentLines(function);
    text += "  result  " + function.result.Help() + "\n";
    if (!function.tables.empty()) {
        text += "  reads   " + std::string(function.tables) + "\n";
    }
    return text;
}

std::string CommandHelp(const Command& command)
{
    return std::string(command.name) + (command.arguments.empty() ? "" : " ") +
           std::string(command.arguments) + "\n  " + std::string(command.does) + "\n";
}

// Returns the first sentence of the text.
std::string Short(std::string_view does)
{
    return std::string(does.substr(0, does.find_first_of(":;,.")));
}

std::string Overview()
{
    std::string text = "Commands; help NAME describes one:\n";
    for (const Command& command : Commands()) {
        std::string line = "  " + std::string(command.name) + " " + std::string(command.arguments);
        line.resize(std::max<size_t>(line.size() + 2, 36), ' ');
        text += line + Short(command.does) + "\n";
    }
    return text +
           "\nA function is called by its name with its inputs: IF_INTF_GetIfNameByIfIndex 2\n"
           "  functions         lists all of them; functions vlan: those related to VLANs\n"
           "  help FUNCTION     describes its arguments, its result and its outputs\n";
}

Status Help(Shell& shell, Words& words)
{
    if (words.Empty()) {
        shell.Out().PrintText(Overview());
        return Status::Success;
    }
    const std::string topic = words.Take("topic");
    words.ExpectEnd();
    if (const Command* command = FindCommand(topic)) {
        shell.Out().PrintText(CommandHelp(*command));
    } else if (const Function* function = FindFunction(topic)) {
        shell.Out().PrintText(FunctionHelp(*function));
    } else {
        throw UsageError(UnknownName("function or command", topic, CallableNames()));
    }
    return Status::Success;
}

bool Mentions(std::string_view text, std::string_view word)
{
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    const auto same = [=](char one, char other) { return lower(one) == lower(other); };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

Status ShowFunctions(Shell& shell, Words& words)
{
    const std::string word = words.TakeRest();
    Json rows = Json::array();
    for (const Function& function : Functions()) {
        if (Mentions(function.name, word) || Mentions(function.purpose, word) ||
            Mentions(function.tables, word)) {
            rows.push_back({{"function", function.name},
                            {"arguments", function.Usage()},
                            {"purpose", function.purpose}});
        }
    }
    shell.Out().PrintRows(rows);
    return Status::Success;
}

Status ListCompletions(Shell& shell, Words& words)
{
    std::string text;
    for (const std::string& candidate : Complete(words.TakeRest()).candidates) {
        text += candidate + "\n";
    }
    shell.Out().PrintText(text);
    return Status::Success;
}

Status Quit(Shell& shell, Words& /*words*/)
{
    shell.End();
    return Status::Success;
}

}  // namespace

// clang-format off
std::vector<Command> HelpCommands()
{
    return {
        {"functions", "[WORD]", "Lists the library's functions, or those related to a word.", ShowFunctions},
        {"help", "[NAME]", "Describes a command or a function.", Help},
        {"complete", "'LINE'", "Lists the completions of an unfinished line, like Tab at the prompt.", ListCompletions},
        {"quit", "", "Ends the shell.", Quit},
        {"exit", "", "Ends the shell.", Quit},
        {"?", "[NAME]", "The same as help.", Help},
    };
}
// clang-format on

}  // namespace shell
