#include "shell/output/printer.h"

#include <algorithm>
#include <iostream>

#include "shell/events/event_json.h"
#include "shell/output/json_text.h"
#include "shell/table_lookup.h"

namespace shell {
namespace {

constexpr const char* GREEN = "\033[32m";
constexpr const char* RED = "\033[31m";
constexpr const char* YELLOW = "\033[33m";
constexpr const char* FAINT = "\033[2m";

bool IsTable(const Json& value)
{
    return value.is_array() && !value.empty() && value[0].is_object();
}

bool IsGood(const Function& function, const CallResult& answer)
{
    return !answer.code || function.result.Of(*answer.code).good;
}

bool IsIfIndex(const Function& function, const std::string& name)
{
    return std::ranges::any_of(function.parameters, [&](const Parameter& parameter) {
        return parameter.argument.name == name && parameter.argument.field == "if_index";
    });
}

}  // namespace

void Printer::Print(const Function& function, const CallResult& answer)
{
    if (!IsJson()) {
        PrintReadable(function, answer);
        return;
    }
    PrintLine({{"function", function.name},
               {"arguments", answer.arguments},
               {"result", answer.code ? Json(*answer.code) : Json()},
               {"meaning", answer.code ? Json(function.result.Of(*answer.code).text) : Json()},
               {"good", IsGood(function, answer)},
               {"outputs", answer.outputs},
               {"log", answer.log}});
}

void Printer::PrintReadable(const Function& function, const CallResult& answer)
{
    size_t width = std::string_view("result").size();
    for (const auto& output : answer.outputs.items()) {
        width = std::max(width, output.key().size());
    }
    if (answer.code) {
        const char* colour = IsGood(function, answer) ? GREEN : RED;
        const std::string meaning = function.result.Of(*answer.code).text;
        const std::string shown = meaning.empty() ? "" : " (" + meaning + ")";
        PrintPair("result", Coloured(colour, CodeText(*answer.code) + shown), width);
    }
    for (const auto& output : answer.outputs.items()) {
        if (IsIfIndex(function, output.key()) && output.value().is_number()) {
            PrintOutput(output.key(), WithInterfaceName(output.value()), width);
        } else {
            PrintOutput(output.key(), output.value(), width);
        }
    }
    for (const std::string& line : answer.log) {
        PrintPair("log", Coloured(FAINT, line), width);
    }
}

void Printer::PrintDone(const char* done, size_t rows)
{
    if (IsJson()) {
        PrintLine({{"done", done}, {"rows", rows}});
    } else {
        output_ << rows << (rows == 1 ? " row " : " rows ") << done << '\n';
    }
}

void Printer::PrintLog(const std::vector<std::string>& lines)
{
    if (IsJson() && !lines.empty()) {
        PrintLine({{"log", lines}});
    } else {
        for (const std::string& line : lines) {
            PrintPair("log", Coloured(FAINT, line), std::string_view("log").size());
        }
    }
}

void Printer::PrintOutput(const std::string& name, const Json& output, size_t width)
{
    if (IsTable(output)) {
        PrintPair(name, std::to_string(output.size()), width);
        PrintRows(output);
    } else if (output.is_null()) {
        PrintPair(name, Coloured(FAINT, "(untouched)"), width);
    } else {
        PrintPair(name, OneLine(output), width);
    }
}

void Printer::PrintPair(const std::string& name, const std::string& text, size_t width)
{
    output_ << name << std::string(width - std::min(width, name.size()) + 2, ' ') << text << '\n';
}

void Printer::PrintRows(const Json& rows)
{
    if (IsJson()) {
        PrintLine(rows);
    } else {
        output_ << TextTable(rows);
    }
}

void Printer::PrintEvent(const Json& event)
{
    if (IsJson()) {
        PrintLine(event);
    } else {
        output_ << Coloured(YELLOW, EventText(event)) << '\n';
    }
}

void Printer::PrintText(const std::string& text)
{
    if (IsJson()) {
        PrintLine({{"text", text}});
    } else {
        output_ << text;
    }
}

void Printer::PrintRaw(const std::string& text)
{
    output_ << text;
}

void Printer::PrintError(const std::string& message)
{
    output_.flush();
    if (IsJson()) {
        PrintLine({{"error", message}});
    } else {
        std::cerr << Coloured(RED, message) << '\n';
    }
}

void Printer::PrintLine(const Json& value)
{
    output_ << value.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

std::string Printer::Coloured(const char* colour, const std::string& text) const
{
    return style_ == Style::Colour ? colour + text + "\033[0m" : text;
}

}  // namespace shell
