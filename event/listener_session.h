// Identifies the library's subscription session.
#pragma once

#include <cstdint>

namespace qrb {

// Returns the number of the open subscription session, counting sessions from 1 in the order in
// which they were opened; 0 if none is open. Takes g_dbListenerRegLock.
uint64_t OpenSessionNumber();

}  // namespace qrb
