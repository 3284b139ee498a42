// The room for scan conditions: one that does not fit it is refused.
#ifndef TARND_QRB_ACL_CONDITION_H
#define TARND_QRB_ACL_CONDITION_H

#include <cstddef>

namespace qrb {

inline constexpr size_t ACL_CONDITION_SIZE = 64;

}  // namespace qrb

#endif
