// Arguments of functions: how they are named, written and completed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "shell/named_numbers.h"
#include "shell/output/json_text.h"

namespace shell {

enum class Form : uint8_t { Number, Hex, Ipv4, Mac };

// The direction follows from the type of the function's parameter.
struct Argument {
    std::string_view name;
    Form form = Form::Number;
    // The database field that holds such values, for completion.
    std::string_view table = {};
    std::string_view field = {};
    // Names of numbers, accepted in their place and printed beside them.
    NamedNumbers names = {};
    // Upper limit of a number, or of the length of a text.
    uint64_t highest = UINT64_MAX;
    // Default if no word is given. An output with a default is set to it before the call.
    std::string_view fallback = {};
    // The function does not read the argument, so no word is consumed.
    bool ignored = false;
    // Outputs: number of elements of the buffer.
    uint32_t size = 1;
    // Outputs: zeroed before the call, because the function leaves parts unset.
    bool zeroed = false;
    // A text that consumes all remaining words.
    bool rest = false;
    // A text that must not be a null pointer, which the function does not check.
    bool neverNull = false;
};

// The word for a null pointer.
inline constexpr std::string_view NULL_WORD = "-";

// The number that a word denotes: one of the argument's names, an IPv4 address, decimal digits, or
// hexadecimal digits after "0x". Throws UsageError for any other word, and above the limit.
uint64_t NumberFromWord(const Argument& argument, const std::string& word, uint64_t highest);

// The word beside a number: its name, or the name of the interface with that index. Empty if it has
// none.
std::string WordBeside(const Argument& argument, const Json& value);

Json NumberToJson(Form form, uint64_t number);

}  // namespace shell
