// What the result codes of a function say.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace shell {

struct Meaning {
    const char* text;  // empty: the code is a value
    bool good;         // a call that answers so did what it should
};

struct Case {
    uint32_t code;
    Meaning meaning;
};

struct Result {
    std::span<const Case> cases;
    Meaning otherwise;

    Meaning Of(uint32_t code) const;
    std::string Help() const;
};

// As people know a code: 0xFFFFFFFF is written so.
std::string CodeText(uint32_t code);

}  // namespace shell
