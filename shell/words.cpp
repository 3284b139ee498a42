#include "shell/words.h"

#include <algorithm>
#include <utility>

namespace shell {
namespace {

constexpr std::string_view blanks = " \t\r\n";

// Takes one character of a quoted text off the line; quote: what closes it.
char TakeQuoted(std::string_view& line, char quote)
{
    if (line.size() > 1 && line.front() == '\\' && quote == '"')
        line.remove_prefix(1);
    const char character = line.front();
    line.remove_prefix(1);
    return character;
}

std::string TakeWord(std::string_view& line)
{
    std::string word;
    char        quote = '\0';
    while (!line.empty() &&
           (quote != '\0' || blanks.find(line.front()) == std::string_view::npos)) {
        const char front = line.front();
        if (front == quote || (quote == '\0' && (front == '"' || front == '\''))) {
            quote = quote == '\0' ? front : '\0';
            line.remove_prefix(1);
        } else {
            word += TakeQuoted(line, quote);
        }
    }
    if (quote != '\0')
        throw UsageError(std::string("a closing ") + quote + " is missing");
    return word;
}

}  // namespace

std::vector<std::string> SplitLine(std::string_view line)
{
    std::vector<std::string> words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty() || line.front() == '#')
            return words;
        words.push_back(TakeWord(line));
    }
}

std::string Words::Take(std::string_view what)
{
    if (words_.empty())
        throw UsageError(std::string(what) + " is missing");
    const std::string& word = words_.front();
    words_                  = words_.subspan(1);
    return word;
}

std::string Words::TakeRest()
{
    std::string text;
    for (const std::string& word : std::exchange(words_, {}))
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::span<const std::string> Words::TakeAll()
{
    return std::exchange(words_, {});
}

void Words::ExpectEnd() const
{
    if (!words_.empty())
        throw UsageError("\"" + words_.front() + "\" is one word too many");
}

}  // namespace shell
