// Meanings of result codes, and the sets of codes that families of functions share.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace shell {

enum class Verdict : uint8_t { Success, No, Failure };

struct Meaning {
    const char* text;  // empty: the code is a value
    Verdict verdict;
};

struct Case {
    uint32_t code;
    Meaning meaning;
};

struct ResultCodes {
    std::span<const Case> cases;
    Meaning otherwise;
    bool isIfIndex = false;  // a value is an interface index

    Meaning Of(uint32_t code) const;
    std::string Help() const;
};

// Decimal, except for 0xFFFFFFFF.
std::string CodeText(uint32_t code);

inline constexpr Meaning OK{"ok", Verdict::Success};
inline constexpr Meaning YES{"yes", Verdict::Success};
inline constexpr Meaning NO{"no", Verdict::No};
inline constexpr Meaning A_VALUE{"", Verdict::Success};
inline constexpr Meaning FAILURE{"failure", Verdict::Failure};
inline constexpr Meaning UNKNOWN{"another code", Verdict::Failure};

inline constexpr Case OK_OR1_CASES[] = {{0, OK}, {1, FAILURE}};
inline constexpr Case OK_OR_ALL_ONES_CASES[] = {{0, OK}, {0xFFFFFFFF, FAILURE}};
inline constexpr Case OK_NONE_OR1_CASES[] = {
    {0, OK}, {0xFFFFFFFF, {"none", Verdict::Failure}}, {1, FAILURE}};
inline constexpr Case OK_OR_DATABASE_CASES[] = {
    {0, OK}, {1001000, {"no record", Verdict::Failure}}, {10058, {"no list", Verdict::Failure}}};
inline constexpr Case OK_OR_QOS_CASES[] = {{0, OK}, {200, FAILURE}};
inline constexpr Case ONE_IS_OK_CASES[] = {{1, OK}, {0, FAILURE}};
inline constexpr Case OK_OR_MEMORY_CASES[] = {{0, OK},
                                              {1, {"a null pointer", Verdict::Failure}},
                                              {2, {"too few entries", Verdict::Failure}},
                                              {3, {"no such module", Verdict::Failure}},
                                              {4, {"no usage information", Verdict::Failure}}};
inline constexpr Case ONE_IS_YES_CASES[] = {{1, YES}, {0, NO}};
inline constexpr Case ZERO_IS_YES_CASES[] = {{0, YES}, {1, NO}};
inline constexpr Case ALL_ONES_CASES[] = {{0xFFFFFFFF, FAILURE}};

inline constexpr Meaning DATABASE_CODE{"database error", Verdict::Failure};

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
inline constexpr ResultCodes IF_INDEX_OR_ALL_ONES{ALL_ONES_CASES, A_VALUE, true};
inline constexpr ResultCodes VALUE{{}, A_VALUE};

}  // namespace shell
