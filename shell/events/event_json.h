// What a callback was told, as JSON.
//
//     {"event": "layer-2", "id": 13, "name": "SWITCH_PORT_ON", "module": "watch", "priority": 0,
//      "ifIndex": 5, "switch_port": 1, "value": 0, "time": "12:00:00.000123", "microseconds": 31.5}
//
// microseconds: from the commit of the change to the callback; none for an event raised by hand.
#pragma once

#include "shell/events/callback_pool.h"
#include "shell/functions/argument.h"

namespace shell {

Json Layer2Event(const Registration& registration, const void* data, uint32_t value,
                 const void* argument);
Json InterfaceEvent(const Registration& registration, uint32_t flag, uint32_t ifIndex,
                    const void* first);
Json NotificationEvent(const Registration& registration, uint32_t ifIndex, uint32_t command,
                       uint32_t a, uint32_t b);

// A delivery to a subscription made by hand.
Json DeliveryEvent(uint32_t eventType, uint32_t rows);

// A line that a thread of the library's own wrote to the system log.
Json LogEvent(const std::string& line);

std::string EventText(const Json& event);

}  // namespace shell
