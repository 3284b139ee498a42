// A subscription session: what it covers, and what it has yet to be told.
#pragma once

#include <cstdint>

namespace standin {

// Ends the subscriptions of the session that this handle stands for.
uint32_t CloseSubscriptionSession(uint64_t handle);

}  // namespace standin
