// Events as JSON, built in the callbacks, and as text.
//
//     {"event": "layer-2", "id": 13, "name": "SWITCH_PORT_ON", "ifIndex": 5,
//      "ifName": "Ethernet0/0/5", "switch_port": 1, "value": 0, "module": "watch", "priority": 0,
//      "time": "2024-02-29T12:00:00.000123+01:00", "microseconds": 31.5}
//
// microseconds: from the commit of the change to the callback; absent if published by hand.
// docs/shell.md describes every member.
#pragma once

#include <chrono>

#include "shell/events/callback_pool.h"
#include "shell/output/json_text.h"

namespace shell {

Json Layer2Event(const Registration& registration, const void* data, uint32_t value,
                 const void* argument);
Json InterfaceEvent(const Registration& registration, uint32_t flag, uint32_t ifIndex,
                    const void* first);
Json NotificationEvent(const Registration& registration, uint32_t ifIndex, uint32_t command,
                       uint32_t value1, uint32_t value2);

// Local time with the UTC offset, as in RFC 3339.
std::string TimeText(std::chrono::system_clock::time_point time);

// Seconds, rounded to one decimal place.
double RoundedSeconds(std::chrono::duration<double> duration);

// Adds "time", and "microseconds" in a callback of a change.
void AddTime(Json& event);

// A delivery to a subscription of QrbDbListenerRegisterEvent.
Json DeliveryEvent(uint32_t eventType, uint32_t rows);

// A line that another thread wrote to the system log.
Json LogEvent(const std::string& line);

std::string EventText(const Json& event);

}  // namespace shell
