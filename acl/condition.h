// The room for scan conditions: one that does not fit it is refused.
#pragma once

#include <cstddef>

namespace qrb {

inline constexpr size_t ACL_CONDITION_SIZE = 64;

}  // namespace qrb
