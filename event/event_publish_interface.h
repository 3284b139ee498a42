// Publication of an interface event, for change detection.
#pragma once

#include <cstdint>

namespace qrb {

// Calls the callbacks of a sub-event, highest priority first. An entry without a callback ends the
// publication and is logged under the name function; a sub-event that does not exist is logged.
// Neither is reported to the caller.
void PublishInterfaceEvent(const char* function, uint32_t eventId, uint32_t subId, uint32_t flag,
                           uint32_t ifIndex, void* first = nullptr, void* second = nullptr);

}  // namespace qrb
