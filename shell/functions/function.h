// A function of the library, as the shell knows it.
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

// What came of a call.
struct CallResult {
    Json arguments = Json::object();
    std::optional<uint32_t> code;   // none: the function gives no result
    Json outputs = Json::object();  // null: untouched by the call
    std::vector<std::string> log;   // lines that the call wrote
};

enum class Direction : uint8_t { In, Out };

struct Parameter {
    Argument argument;
    Direction direction;

    // Whether a word of the line is for it.
    bool TakesWord() const
    {
        return !argument.ignored && (direction == Direction::In || !argument.fallback.empty());
    }
};

struct Function {
    std::string_view name;
    ResultCodes result;
    std::string_view tables;  // that it reads
    std::string_view answers;
    std::vector<Parameter> parameters;
    std::function<CallResult(Words&)> call;  // throws UsageError for words that do not fit

    // The words that a call takes: "ifIndex [count]".
    std::string Usage() const;
};

// Every function, by family.
const std::vector<Function>& Functions();
// Null where there is none of that name.
const Function* FindFunction(std::string_view name);

// The families: one line a function, in functions/.
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
