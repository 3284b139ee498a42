#include "shell/output/printer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

#include "shell/events/event_json.h"
#include "shell/output/pager.h"
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

const Argument* OutputNamed(const Function& function, const std::string& name)
{
    for (const Parameter& parameter : function.parameters) {
        if (parameter.direction == Direction::Out && parameter.argument.name == name) {
            return &parameter.argument;
        }
    }
    return nullptr;
}

std::string WordBesideOutput(const Function& function, const std::string& name, const Json& value)
{
    const Argument* const argument = OutputNamed(function, name);
    return argument != nullptr ? WordBeside(*argument, value) : "";
}

// The meaning of the result code, or the interface name if the result is an interface index.
std::string MeaningOf(const Function& function, uint32_t code)
{
    const std::string meaning = function.result.Of(code).text;
    return meaning.empty() && function.result.isIfIndex ? InterfaceName(code) : meaning;
}

// The symbolic names of the numbers in arguments, result and outputs.
Json WordsOf(const Function& function, const CallResult& result)
{
    Json words = Json::object();
    for (const auto& [parameter, direction] : function.parameters) {
        const Json& values = direction == Direction::In ? result.arguments : result.outputs;
        const std::string name(parameter.name);
        const auto value = values.find(name);
        if (value != values.end()) {
            if (const std::string word = WordBeside(parameter, *value); !word.empty()) {
                words[name] = word;
            }
        }
    }
    if (result.code && function.result.isIfIndex) {
        if (const std::string name = InterfaceName(*result.code); !name.empty()) {
            words["result"] = name;
        }
    }
    return words;
}

std::string InParentheses(const std::string& word)
{
    return word.empty() ? "" : " (" + EscapeControls(word) + ")";
}

// JSON leaves DEL and the C1 controls (U+0080 to U+009F) as they are. In JSON text they occur only
// inside strings, where an escape sequence may replace them.
std::string EscapeInJson(const std::string& text)
{
    std::string escaped;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte == 0x7F) {
            escaped += "\\u007f";
        } else if (byte == 0xC2 && next < 0xA0) {
            escaped += next < 0x90 ? "\\u008" : "\\u009";
            escaped += "0123456789abcdef"[next & 0x0F];
            ++i;
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

// Each line of a text of several lines.
std::string EscapeLines(const std::string& text)
{
    std::string escaped;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        escaped += (begin > 0 ? "\n" : "") + EscapeControls(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return escaped;
}

}  // namespace

void Printer::Print(const Function& function, const CallResult& result)
{
    if (!IsJson()) {
        PrintStale();
        PrintReadable(function, result);
        return;
    }
    Json line = {{"function", function.name},
                 {"arguments", result.arguments},
                 {"result", result.code ? Json(*result.code) : Json()},
                 {"meaning", result.code ? Json(function.result.Of(*result.code).text) : Json()},
                 {"good", function.VerdictOf(result) != Verdict::Failure},
                 {"outputs", result.outputs},
                 {"log", result.log}};
    if (Json words = WordsOf(function, result); !words.empty()) {
        line["words"] = std::move(words);
    }
    if (stale_) {
        line["stale"] = *stale_;
    }
    PrintLine(line);
}

void Printer::PrintStale()
{
    if (!stale_) {
        return;
    }
    if (IsJson()) {
        PrintLine({{"stale", *stale_}});
        return;
    }
    Flush();
    std::cerr << Coloured(YELLOW,
                          "stale: no server has been followed for " + OneLine(Json(*stale_)) + " s")
              << '\n';
}

void Printer::PrintReadable(const Function& function, const CallResult& result)
{
    size_t width = std::string_view("result").size();
    for (const auto& output : result.outputs.items()) {
        width = std::max(width, output.key().size());
    }
    if (result.code) {
        const char* colour = function.VerdictOf(result) != Verdict::Failure ? GREEN : RED;
        PrintPair("result",
                  Coloured(colour, CodeText(*result.code) +
                                       InParentheses(MeaningOf(function, *result.code))),
                  width);
    }
    for (const auto& output : result.outputs.items()) {
        PrintOutput(output.key(), output.value(),
                    WordBesideOutput(function, output.key(), output.value()), width);
    }
    PrintLog(result.log);
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
    if (!IsJson()) {
        std::ranges::for_each(lines, [this](const std::string& line) { PrintLogLine(line); });
    } else if (!lines.empty()) {
        PrintLine({{"log", lines}});
    }
}

void Printer::PrintLogLine(const std::string& line)
{
    Flush();
    std::cerr << Coloured(FAINT, "log  " + EscapeControls(line)) << '\n';
}

void Printer::PrintOutput(const std::string& name, const Json& output, const std::string& word,
                          size_t width)
{
    if (IsTable(output)) {
        PrintPair(name, std::to_string(output.size()), width);
        PrintRows(output);
    } else if (output.is_null()) {
        PrintPair(name, Coloured(FAINT, "(untouched)"), width);
    } else {
        PrintPair(name, OneLine(output) + InParentheses(word), width);
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
        output_ << TableText(rows);
    }
}

void Printer::PrintEvent(const Json& event)
{
    if (IsJson()) {
        PrintLine(event);
    } else if (event["event"] == "log") {
        PrintLogLine(event["line"]);
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
    if (IsJson()) {
        Json line = {{"error", message}};
        if (inputLine_ > 0) {
            line["line"] = inputLine_;
        }
        PrintLine(line);
        return;
    }
    Flush();
    const std::string place = inputLine_ > 0 ? "line " + std::to_string(inputLine_) + ": " : "";
    std::cerr << Coloured(RED, place + EscapeLines(message)) << '\n';
}

void Printer::PrintValue(const Json& value)
{
    output_ << EscapeInJson(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Printer::Page(const std::function<void()>& print)
{
    const Pager pager(output_);
    try {
        print();
        Flush();
    } catch (const OutputError&) {
        if (!pager.IsRunning()) {
            throw;
        }
    }
}

void Printer::PrintLine(const Json& value)
{
    PrintValue(value);
    output_ << '\n';
}

void Printer::Flush()
{
    errno = 0;
    if (!output_.flush()) {
        throw OutputError(std::string("standard output: ") +
                          (errno != 0 ? std::strerror(errno) : "closed by its reader"));
    }
}

std::string Printer::Coloured(const char* colour, const std::string& text) const
{
    return style_ == Style::Colour ? colour + text + "\033[0m" : text;
}

}  // namespace shell
