// The one way in which the library raises an interface event.
#pragma once

#include <tarnd_qrb/event_publish.h>

#include "db/access.h"

namespace qrb {

// Calls the callbacks of a sub-event, each with these arguments. An entry without a callback ends
// the walk; that, and a sub-event that can't be found, is logged and of no further consequence.
void PublishInterfaceEvent(const char* function, uint32_t eventId, uint32_t subId, uint32_t flag,
                           uint32_t ifIndex, void* first = nullptr, void* second = nullptr);

}  // namespace qrb
