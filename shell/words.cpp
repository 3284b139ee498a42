#include "shell/words.h"

#include <algorithm>
#include <utility>

#include "sources/json/json_extent.h"

namespace shell {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";

// Length of the JSON object or array at the start of the text.
size_t JsonLength(std::string_view text)
{
    sources::JsonExtent extent;
    for (size_t i = 0; i < text.size(); ++i) {
        if (extent.Next(text[i])) {
            return i + 1;
        }
    }
    throw UsageError(std::string("missing closing bracket for ") + text.front());
}

// Takes a quoted text from the start of the line.
std::string TakeQuoted(std::string_view& line)
{
    const char quote = line.front();
    std::string text;
    for (size_t i = 1; i < line.size(); ++i) {
        if (line[i] == quote) {
            line.remove_prefix(i + 1);
            return text;
        }
        if (line[i] == '\\' && quote == '"' && i + 1 < line.size()) {
            ++i;
        }
        text += line[i];
    }
    throw UsageError(std::string("missing closing ") + quote);
}

std::string Take(std::string_view& line, size_t count)
{
    std::string text(line.substr(0, count));
    line.remove_prefix(count);
    return text;
}

std::string TakeWord(std::string_view& line)
{
    std::string word;
    while (!line.empty() && BLANKS.find(line.front()) == std::string_view::npos) {
        const char front = line.front();
        if (front == '"' || front == '\'') {
            word += TakeQuoted(line);
        } else {
            word += Take(line, front == '{' || front == '[' ? JsonLength(line) : 1);
        }
    }
    return word;
}

}  // namespace

std::vector<std::string> SplitLine(std::string_view line)
{
    std::vector<std::string> words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (line.empty() || line.front() == '#') {
            return words;
        }
        words.push_back(TakeWord(line));
    }
}

std::string Words::Take(std::string_view what)
{
    if (words_.empty()) {
        throw UsageError("missing argument: " + std::string(what));
    }
    const std::string& word = words_.front();
    words_ = words_.subspan(1);
    return word;
}

std::string Words::TakeRest()
{
    std::string text;
    for (const std::string& word : std::exchange(words_, {})) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::span<const std::string> Words::TakeAll()
{
    return std::exchange(words_, {});
}

void Words::ExpectEnd() const
{
    if (!words_.empty()) {
        throw UsageError("unexpected argument \"" + words_.front() + "\"");
    }
}

}  // namespace shell
