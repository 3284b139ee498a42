// What is wrong with a JSON value, and its path in the document.
#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include <standin/store.h>

namespace sources {

using Json = nlohmann::ordered_json;

// "/pvid: 70000 is out of range 0 to 65535".
class JsonError : public standin::Error {
public:
    explicit JsonError(const std::string& reason, const std::string& path = "");

    const std::string& Path() const { return path_; }

    // The same error with the path of the enclosing value in front.
    JsonError Under(const std::string& path) const { return JsonError(reason_, path + path_); }

private:
    std::string reason_;
    std::string path_;
};

// Runs the action. A JsonError that it throws gets this step in front of its path.
template <typename Action>
void At(const std::string& step, const Action& action)
{
    try {
        action();
    } catch (const JsonError& error) {
        throw error.Under("/" + step);
    }
}

[[noreturn]] void RefuseType(const Json& value, const std::string& expected);
[[noreturn]] void RefuseRange(const std::string& number, uint64_t highest);

// The value as an integer from 0 to highest; throws JsonError for anything else.
uint64_t WholeNumber(const Json& value, uint64_t highest);

}  // namespace sources
