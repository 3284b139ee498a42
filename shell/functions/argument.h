// What a function takes and gives: how it is called, written and found.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sources/json/json_error.h"

namespace shell {

using sources::Json;

enum class Form : uint8_t { Number, Hex, Ipv4, Mac };

// Whether it goes in or comes out, the function's own type tells.
struct Argument {
    std::string_view name;
    Form form = Form::Number;
    // Where such values stand in the database.
    std::string_view table = {};
    std::string_view field = {};
    // The largest number, the longest text.
    uint64_t highest = UINT64_MAX;
    // What stands in where no word is given. An output with one is set before the call.
    std::string_view fallback = {};
    // The callee does not look at it: no word is for it.
    bool ignored = false;
    // Outputs: elements of the buffer.
    uint32_t size = 1;
    // Outputs: the callee leaves what it has nothing for, so zero it.
    bool zeroed = false;
    // A text that takes all the words that are left.
    bool rest = false;
    // A text that the callee doesn't check for null.
    bool neverNull = false;
};

// The word that stands for a null pointer.
inline constexpr std::string_view NULL_WORD = "-";

// Throws UsageError for what is not of the form, or above highest. Numbers are decimal, or
// hexadecimal behind "0x".
uint64_t NumberFromWord(const Argument& argument, const std::string& word, uint64_t highest);

Json NumberToJson(Form form, uint64_t number);
std::string Ipv4ToText(uint32_t address);
std::string MacToText(const uint8_t* mac);

}  // namespace shell
