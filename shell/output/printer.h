// What people and programs get to see of a call or a command.
#pragma once

#include <iosfwd>
#include <string>

#include "shell/functions/function.h"

namespace shell {

class Printer {
public:
    enum class Style : uint8_t { Plain, Colour, JsonLines };

    Printer(std::ostream& output, Style style) : output_(output), style_(style) {}

    bool IsJson() const { return style_ == Style::JsonLines; }
    void SetStyle(Style style) { style_ = style; }

    // As JSON: one object on one line.
    void Print(const Function& function, const CallResult& answer);
    // As JSON: the array on one line; else a table.
    void PrintRows(const Json& rows);
    // "2 rows deleted"; as JSON: {"done": "deleted", "rows": 2}.
    void PrintDone(const char* done, size_t rows);
    // As JSON: {"log": [...]}. Nothing for no lines.
    void PrintLog(const std::vector<std::string>& lines);
    // As events/event.h has it; else as a text.
    void PrintEvent(const Json& event);
    // As JSON: {"text": ...}.
    void PrintText(const std::string& text);
    // As it stands, in every style.
    void PrintRaw(const std::string& text);
    void PrintError(const std::string& message);

private:
    void PrintReadable(const Function& function, const CallResult& answer);
    void PrintOutput(const std::string& name, const Json& output, size_t width);
    void PrintPair(const std::string& name, const std::string& text, size_t width);
    void PrintLine(const Json& value);
    std::string Coloured(const char* colour, const std::string& text) const;

    std::ostream& output_;
    Style style_;
};

}  // namespace shell
