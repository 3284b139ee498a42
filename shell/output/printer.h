// Prints results, rows, events and errors as plain text or as JSON.
//
// As plain text, results and events go to the output, errors and log lines to standard error. As
// JSON, each item is one object or array on a line of the output; docs/shell.md describes them.
#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>

#include "shell/functions/function.h"

namespace shell {

// Thrown if the output can't be written: the disk is full, or the reader closed the pipe.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Printer {
public:
    enum class Style : uint8_t { Plain, Colour, JsonLines };

    Printer(std::ostream& output, Style style) : output_(output), style_(style) {}

    bool IsJson() const { return style_ == Style::JsonLines; }

    // The number of the input line that errors refer to; 0: input is not a file.
    void SetInputLine(size_t number) { inputLine_ = number; }

    // Number of seconds for which the data have been stale; no value: the data are current.
    void SetStale(std::optional<double> seconds) { stale_ = seconds; }
    // Prints that the following result is from stale data, or nothing if the data are current. As
    // JSON {"stale": SECONDS}.
    void PrintStale();

    // As JSON, the object has "stale" if the data are.
    void Print(const Function& function, const CallResult& result);
    // A table; as JSON the array.
    void PrintRows(const Json& rows);
    // "2 rows deleted"; as JSON {"done": "deleted", "rows": 2}.
    void PrintDone(const char* done, size_t rows);
    // As JSON {"log": [...]}; nothing if there are no lines.
    void PrintLog(const std::vector<std::string>& lines);
    void PrintEvent(const Json& event);
    // As JSON {"text": ...}.
    void PrintText(const std::string& text);
    // Prints the text unchanged in every style.
    void PrintRaw(const std::string& text);
    // Prints JSON without a line feed.
    void PrintValue(const Json& value);
    // Through a pager, if the output is a terminal. A pager that is closed early ends the printing.
    void Page(const std::function<void()>& print);
    // As JSON {"error": ...}, with "line" for a line of a file.
    void PrintError(const std::string& message);

    // Flushes the output. Throws OutputError.
    void Flush();

private:
    void PrintReadable(const Function& function, const CallResult& result);
    void PrintOutput(const std::string& name, const Json& output, const std::string& word,
                     size_t width);
    void PrintPair(const std::string& name, const std::string& text, size_t width);
    void PrintLine(const Json& value);
    void PrintLogLine(const std::string& line);
    std::string Coloured(const char* colour, const std::string& text) const;

    std::ostream& output_;
    Style style_;
    size_t inputLine_ = 0;
    std::optional<double> stale_;
};

}  // namespace shell
