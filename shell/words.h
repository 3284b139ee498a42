// Splits a line of input into words.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace shell {

// Thrown if a line can't be parsed.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Words are separated by blanks. Blanks within quotes, "..." or '...', belong to the word; within
// "..." a backslash escapes the next character. JSON is kept unchanged: {"a": 1} is one word, and
// so is list=[{"a": 1}]. "#" at the start of a word begins a comment. Throws UsageError for an
// unclosed quote or bracket.
std::vector<std::string> SplitLine(std::string_view line);

// The arguments of a command, taken one after another.
class Words {
public:
    explicit Words(std::span<const std::string> words) : words_(words) {}

    bool Empty() const { return words_.empty(); }
    const std::string& Front() const { return words_.front(); }

    // Throws UsageError if no word is left; what names the missing argument.
    std::string Take(std::string_view what);
    // Takes all remaining words, joined by blanks.
    std::string TakeRest();
    std::span<const std::string> TakeAll();
    // Throws UsageError if a word is left.
    void ExpectEnd() const;

private:
    std::span<const std::string> words_;
};

}  // namespace shell
