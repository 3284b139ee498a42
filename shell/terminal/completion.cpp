#include "shell/terminal/completion.h"

#include <algorithm>
#include <filesystem>

#include "shell/commands/command.h"
#include "shell/events/event_watch.h"
#include "shell/table_lookup.h"

namespace shell {
namespace {

using Names = std::vector<std::string>;

Names ValuesOfArgument(const Argument& argument)
{
    if (argument.table == "tables") {
        return TableNames();
    }
    const standin::Table* table = standin::FindTable(argument.table);
    Names values = table != nullptr ? ValuesOf(*table, argument.field) : Names();
    for (const NamedNumber& named : argument.names) {
        values.emplace_back(named.name);
    }
    return values;
}

// place: zero-based number of the argument.
Names ForFunction(const Function& function, size_t place)
{
    for (const Parameter& parameter : function.parameters) {
        if (parameter.TakesWord() && place-- == 0) {
            return ValuesOfArgument(parameter.argument);
        }
    }
    return {};
}

Names Files(const std::string& begun)
{
    const std::filesystem::path path(begun);
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    Names names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const auto name = (path.parent_path() / entry.path().filename()).string();
        names.push_back(name + (entry.is_directory(error) ? "/" : ""));
    }
    return names;
}

// FIELD=, or FIELD= followed by each value of the field.
Names Assignments(const std::string& tableName, const std::string& begun)
{
    const standin::Table* table = standin::FindTable(tableName);
    if (table == nullptr) {
        return {};
    }
    const size_t equals = begun.find('=');
    Names names;
    if (equals == std::string::npos) {
        for (const std::string& field : FieldNames(*table)) {
            names.push_back(field + "=");
        }
    } else {
        for (const std::string& value : ValuesOf(*table, begun.substr(0, equals))) {
            names.push_back(begun.substr(0, equals + 1) + value);
        }
    }
    return names;
}

Names Split(const std::string& text, char mark)
{
    Names parts;
    size_t begin = 0;
    for (size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(mark, begin);
        parts.push_back(text.substr(begin, end - begin));
    }
    return parts;
}

// Candidates after "show TABLE".
Names ForSelection(const Names& words, const std::string& begun)
{
    const standin::Table* table = standin::FindTable(words[1]);
    if (table != nullptr && (words.back() == "columns" || words.back() == "sort")) {
        return FieldNames(*table);
    }
    Names names = Assignments(words[1], begun);
    names.insert(names.end(), {"columns", "sort", "limit", "lines"});
    return names;
}

Names ForWatch(const std::string& begun)
{
    const auto prefixed = [](const std::string& prefix, Names names) {
        std::ranges::for_each(names, [&](std::string& name) { name.insert(0, prefix); });
        return names;
    };
    if (begun.starts_with("event=")) {
        return prefixed("event=", EventNames());
    }
    if (begun.starts_with("interface=")) {
        return prefixed("interface=", ValuesOf(*standin::FindTable("if_base"), "if_name"));
    }
    return {"on", "off", "event=", "interface="};
}

// Candidates are derived from the argument names in the help text.
Names ForCommand(const Command& command, const Names& words, const std::string& begun)
{
    const std::string arguments(command.arguments);
    if (command.name == "show" && words.size() > 1) {
        return ForSelection(words, begun);
    }
    const Names places = Split(arguments, ' ');
    std::string place = places[std::min(words.size() - 1, places.size() - 1)];
    std::erase_if(place, [](char c) { return c == '[' || c == ']' || c == '.'; });
    if (command.name == "watch") {
        return ForWatch(begun);
    }
    if (command.name == "monitor" && words.size() > 1) {
        return Assignments(words[1], begun);
    }
    if (place == "TABLE" || place == "TABLE|off") {
        return TableNames();
    }
    if (place == "FIELD=VALUE") {
        return Assignments(words[1], begun);
    }
    if (place == "FILE") {
        return Files(begun);
    }
    if (place == "NAME") {
        return CallableNames();
    }
    return place.find('|') != std::string::npos ? Split(place, '|') : Names();
}

Names Possible(const Names& words, const std::string& begun)
{
    if (words.empty()) {
        return CallableNames();
    }
    if (const Command* command = FindCommand(words[0])) {
        return ForCommand(*command, words, begun);
    }
    const Function* function = FindFunction(words[0]);
    return function != nullptr ? ForFunction(*function, words.size() - 1) : Names();
}

// Quotes the candidate if it would otherwise be split into several words.
std::string Quoted(const std::string& word)
{
    return word.find_first_of(" \t#") == std::string::npos ? word : "'" + word + "'";
}

}  // namespace

Completion Complete(std::string_view line)
{
    const size_t begin = line.find_last_of(" \t") + 1;
    Completion completion{std::string(line.substr(begin)), {}};
    Names words;
    try {
        words = SplitLine(line.substr(0, begin));
    } catch (const UsageError&) {
        return completion;
    }
    for (const std::string& name : Possible(words, completion.begun)) {
        if (Quoted(name).starts_with(completion.begun)) {
            completion.candidates.push_back(Quoted(name));
        }
    }
    return completion;
}

}  // namespace shell
