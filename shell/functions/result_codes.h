// Meanings of result codes, and the sets of codes that families of functions share.
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

struct ResultCodes {
    std::span<const Case> cases;
    Meaning otherwise;

    Meaning Of(uint32_t code) const;
    std::string Help() const;
};

// As people know a code: 0xFFFFFFFF is written so.
std::string CodeText(uint32_t code);

inline constexpr Meaning OK{"ok", true};
inline constexpr Meaning YES{"yes", true};
inline constexpr Meaning NO{"no", true};
inline constexpr Meaning A_VALUE{"", true};
inline constexpr Meaning FAILURE{"failure", false};
inline constexpr Meaning UNKNOWN{"a code of its own", false};

inline constexpr Case OK_OR1_CASES[] = {{0, OK}, {1, FAILURE}};
inline constexpr Case OK_OR_ALL_ONES_CASES[] = {{0, OK}, {0xFFFFFFFF, FAILURE}};
inline constexpr Case OK_NONE_OR1_CASES[] = {{0, OK}, {0xFFFFFFFF, {"none", false}}, {1, FAILURE}};
inline constexpr Case OK_OR_DATABASE_CASES[] = {
    {0, OK}, {1001000, {"no record", false}}, {10058, {"no list", false}}};
inline constexpr Case OK_OR_QOS_CASES[] = {{0, OK}, {200, FAILURE}};
inline constexpr Case ONE_IS_OK_CASES[] = {{1, OK}, {0, FAILURE}};
inline constexpr Case OK_OR_MEMORY_CASES[] = {{0, OK},
                                              {1, {"a null pointer", false}},
                                              {2, {"too few entries", false}},
                                              {3, {"no such module", false}},
                                              {4, {"no figure", false}}};
inline constexpr Case ONE_IS_YES_CASES[] = {{1, YES}, {0, NO}};
inline constexpr Case ZERO_IS_YES_CASES[] = {{0, YES}, {1, NO}};
inline constexpr Case ALL_ONES_CASES[] = {{0xFFFFFFFF, FAILURE}};

inline constexpr Meaning DATABASE_CODE{"the database's code", false};

inline constexpr ResultCodes OK_OR1{OK_OR1_CASES, UNKNOWN};
inline constexpr ResultCodes OK_OR_ALL_ONES{OK_OR_ALL_ONES_CASES, UNKNOWN};
inline constexpr ResultCodes OK_NONE_OR1{OK_NONE_OR1_CASES, UNKNOWN};
inline constexpr ResultCodes OK_OR_DATABASE{OK_OR_DATABASE_CASES, DATABASE_CODE};
inline constexpr ResultCodes OK_OR_QOS{OK_OR_QOS_CASES, DATABASE_CODE};
inline constexpr ResultCodes ONE_IS_OK{ONE_IS_OK_CASES, UNKNOWN};
inline constexpr ResultCodes OK_OR_MEMORY{OK_OR_MEMORY_CASES, UNKNOWN};
inline constexpr ResultCodes ONE_IS_YES{ONE_IS_YES_CASES, UNKNOWN};
inline constexpr ResultCodes ZERO_IS_YES{ZERO_IS_YES_CASES, UNKNOWN};
inline constexpr ResultCodes VALUE_OR_ALL_ONES{ALL_ONES_CASES, A_VALUE};
inline constexpr ResultCodes VALUE{{}, A_VALUE};

}  // namespace shell
