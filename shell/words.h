// A line of input, as words.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace shell {

// A line that can't be carried out as it stands.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Words stand between blanks. Quotes, "..." or '...', keep blanks together; within "..." a
// backslash keeps the next character as it is. JSON stays as it stands: {"a": 1} is one word, and
// so is list=[{"a": 1}]. "#" begins a comment where a word could begin. Throws UsageError where
// something is not closed.
std::vector<std::string> SplitLine(std::string_view line);

// The words of a call, taken one after another.
class Words {
public:
    explicit Words(std::span<const std::string> words) : words_(words) {}

    bool Empty() const { return words_.empty(); }
    const std::string& Front() const { return words_.front(); }

    // Throws UsageError where there is no word any more; what: what is missing.
    std::string Take(std::string_view what);
    // All that are left, a blank between two.
    std::string TakeRest();
    std::span<const std::string> TakeAll();
    // Throws UsageError where a word is left.
    void ExpectEnd() const;

private:
    std::span<const std::string> words_;
};

}  // namespace shell
