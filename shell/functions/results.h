// The result styles of the library's families.
#pragma once

#include "shell/result.h"

namespace shell {

inline constexpr Meaning ok{"ok", true};
inline constexpr Meaning yes{"yes", true};
inline constexpr Meaning no{"no", true};
inline constexpr Meaning aValue{"", true};
inline constexpr Meaning failure{"failure", false};
inline constexpr Meaning unknown{"a code of its own", false};

inline constexpr Case okOr1Cases[] = {{0, ok}, {1, failure}};
inline constexpr Case okOrAllOnesCases[] = {{0, ok}, {0xFFFFFFFF, failure}};
inline constexpr Case okNoneOr1Cases[] = {{0, ok}, {0xFFFFFFFF, {"none", false}}, {1, failure}};
inline constexpr Case okOrDatabaseCases[] = {
    {0, ok}, {1001000, {"no record", false}}, {10058, {"no list", false}}};
inline constexpr Case okOrQosCases[] = {{0, ok}, {200, failure}};
inline constexpr Case oneIsOkCases[] = {{1, ok}, {0, failure}};
inline constexpr Case okOrMemoryCases[] = {{0, ok},
                                           {1, {"a null pointer", false}},
                                           {2, {"too few entries", false}},
                                           {3, {"no such module", false}},
                                           {4, {"no figure", false}}};
inline constexpr Case oneIsYesCases[] = {{1, yes}, {0, no}};
inline constexpr Case zeroIsYesCases[] = {{0, yes}, {1, no}};
inline constexpr Case allOnesCases[] = {{0xFFFFFFFF, failure}};

inline constexpr Meaning databaseCode{"the database's code", false};

inline constexpr Result okOr1{okOr1Cases, unknown};
inline constexpr Result okOrAllOnes{okOrAllOnesCases, unknown};
inline constexpr Result okNoneOr1{okNoneOr1Cases, unknown};
inline constexpr Result okOrDatabase{okOrDatabaseCases, databaseCode};
inline constexpr Result okOrQos{okOrQosCases, databaseCode};
inline constexpr Result oneIsOk{oneIsOkCases, unknown};
inline constexpr Result okOrMemory{okOrMemoryCases, unknown};
inline constexpr Result oneIsYes{oneIsYesCases, unknown};
inline constexpr Result zeroIsYes{zeroIsYesCases, unknown};
inline constexpr Result valueOrAllOnes{allOnesCases, aValue};
inline constexpr Result value{{}, aValue};

}  // namespace shell
