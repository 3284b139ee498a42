// The functions of the library, each with its arguments, result codes and call.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/functions/argument.h"
#include "shell/functions/result_codes.h"
#include "shell/words.h"

namespace shell {

struct CallResult {
    Json arguments = Json::object();
    std::optional<uint32_t> code;   // none for a function that returns nothing
    Json outputs = Json::object();  // null: not written by the call
    std::vector<std::string> log;   // lines that the call logged
};

enum class Direction : uint8_t { In, Out };

struct Parameter {
    Argument argument;
    Direction direction;

    // Whether the call consumes a word for this argument.
    bool TakesWord() const
    {
        return !argument.ignored && (direction == Direction::In || !argument.fallback.empty());
    }
};

struct Function {
    std::string_view name;
    ResultCodes result;
    std::string_view tables;  // tables that the function reads
    std::string_view purpose;
    std::vector<Parameter> parameters;
    std::function<CallResult(Words&)> call;  // throws UsageError for invalid words

    // The usage of a call: "ifIndex [count]".
    std::string Usage() const;
    Verdict VerdictOf(const CallResult& call) const;
};

// All functions, by family.
const std::vector<Function>& Functions();
// Null if there is no such function.
const Function* FindFunction(std::string_view name);

// The families, one source file each.
std::vector<Function> DatabaseFunctions();
std::vector<Function> InterfaceFunctions();
std::vector<Function> AddressFunctions();
std::vector<Function> Layer2Functions();
std::vector<Function> RouteFunctions();
std::vector<Function> FilterFunctions();
std::vector<Function> EventFunctions();
std::vector<Function> ListenerFunctions();
std::vector<Function> ListFunctions();
std::vector<Function> MemoryFunctions();

}  // namespace shell
