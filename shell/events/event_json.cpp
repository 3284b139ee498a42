#include "shell/events/event_json.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <sstream>

#include <standin/deliveries.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/records.h>

#include "shell/output/json_text.h"
#include "shell/table_lookup.h"
#include "sources/json/json_set.h"

namespace shell {
namespace {

struct Name {
    uint32_t id;
    const char* name;
};

constexpr Name LAYER2_NAMES[] = {{L2IF_EVT_VLAN_ADD_PORT, "VLAN_ADD_PORT"},
                                 {L2IF_EVT_VLAN_DEL_PORT, "VLAN_DEL_PORT"},
                                 {L2IF_EVT_SWITCH_PORT_ON, "SWITCH_PORT_ON"},
                                 {L2IF_EVT_SWITCH_PORT_OFF, "SWITCH_PORT_OFF"},
                                 {L2IF_EVT_PORT_ADD, "PORT_ADD"},
                                 {L2IF_EVT_PORT_DEL, "PORT_DEL"}};
constexpr Name STATE_NAMES[] = {{IF_SUB_EVT_PHY_STATE, "PHY_STATE"},
                                {IF_SUB_EVT_ROUTE_STATE, "ROUTE_STATE"},
                                {IF_SUB_EVT_PHY_UP, "PHY_UP"}};
constexpr Name NOTIFICATION_NAMES[] = {{IF_NOTIFY_CREATED, "CREATED"},
                                       {IF_NOTIFY_DELETED, "DELETED"},
                                       {IF_NOTIFY_UP, "UP"},
                                       {IF_NOTIFY_DOWN, "DOWN"}};

std::string NameOf(std::span<const Name> names, uint32_t id)
{
    const auto found = std::ranges::find(names, id, &Name::id);
    return found != names.end() ? found->name : "";
}

// The time of day, and how long ago the change was committed.
void AddTime(Json& event)
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t day = system_clock::to_time_t(now);
    std::tm local{};
    std::ostringstream time;
    time << std::put_time(localtime_r(&day, &local), "%T.") << std::setfill('0') << std::setw(6)
         << duration_cast<microseconds>(now.time_since_epoch()).count() % 1'000'000;
    event["time"] = time.str();
    const auto committed = standin::CommitTime();
    if (committed != steady_clock::time_point()) {
        event["microseconds"] =
            std::round(duration<double, std::micro>(steady_clock::now() - committed).count() * 10) /
            10;
    }
}

template <size_t size>
Json SetOf(const uint8_t (&bits)[size])
{
    return sources::SetToJson(bits);
}

// Null for what is not of the library's own events: only their publishers know what it is.
void AddLayer2Data(Json& event, uint32_t id, const void* data, const void* argument)
{
    const auto* port = static_cast<const QRB_PORT_S*>(data);
    const auto* change = static_cast<const QRB_VLAN_CHANGE_S*>(argument);
    switch (id) {
        case L2IF_EVT_VLAN_ADD_PORT:
        case L2IF_EVT_VLAN_DEL_PORT:
            event["ifIndex"] = change->ifIndex;
            if (change->bitmap == QRB_VLAN_BITMAP_1) {
                event["vlan_bitmap_1"] = SetOf(port->vlan_bitmap_1);
            } else {
                event["vlan_bitmap_2"] = SetOf(port->vlan_bitmap_2);
            }
            break;
        case L2IF_EVT_SWITCH_PORT_ON:
        case L2IF_EVT_SWITCH_PORT_OFF:
            event["ifIndex"] = *static_cast<const uint32_t*>(data);
            event["switch_port"] = *static_cast<const uint8_t*>(argument);
            break;
        case L2IF_EVT_PORT_ADD:
        case L2IF_EVT_PORT_DEL:
            event["ifIndex"] = uint32_t{port->if_index};
            event["vlan_bitmap_1"] = SetOf(port->vlan_bitmap_1);
            event["vlan_bitmap_2"] = SetOf(port->vlan_bitmap_2);
            break;
        default:
            break;
    }
}

}  // namespace

Json Layer2Event(const Registration& registration, const void* data, uint32_t value,
                 const void* argument)
{
    Json event = {{"event", "layer-2"},
                  {"id", registration.event},
                  {"name", NameOf(LAYER2_NAMES, registration.event)}};
    if (data != nullptr) {
        AddLayer2Data(event, registration.event, data, argument);
    }
    event["value"] = value;
    event["module"] = registration.module;
    event["priority"] = registration.priority;
    AddTime(event);
    return event;
}

Json InterfaceEvent(const Registration& registration, uint32_t flag, uint32_t ifIndex,
                    const void* first)
{
    const bool isState = registration.event == IF_EVT_STATE;
    Json event = {
        {"event", "interface"},    {"id", registration.event},
        {"sub", registration.sub}, {"name", isState ? NameOf(STATE_NAMES, registration.sub) : ""},
        {"ifIndex", ifIndex},      {"flag", flag}};
    if (first != nullptr) {
        event["first"] = *static_cast<const uint32_t*>(first);
    }
    event["module"] = registration.module;
    event["priority"] = registration.priority;
    AddTime(event);
    return event;
}

Json NotificationEvent(const Registration& registration, uint32_t ifIndex, uint32_t command,
                       uint32_t a, uint32_t b)
{
    Json event = {{"event", "notification"},
                  {"id", command},
                  {"name", NameOf(NOTIFICATION_NAMES, command)},
                  {"ifIndex", ifIndex},
                  {"a", a},
                  {"b", b},
                  {"module", registration.module},
                  {"key", registration.event}};
    AddTime(event);
    return event;
}

Json DeliveryEvent(uint32_t eventType, uint32_t rows)
{
    Json event = {{"event", "delivery"}, {"id", eventType}, {"rows", rows}};
    AddTime(event);
    return event;
}

Json LogEvent(const std::string& line)
{
    return {{"event", "log"}, {"line", line}};
}

// "12:00:00.000123  interface 9/2 PHY_STATE  ifIndex=5 flag=1  31.5 us  watch 0".
std::string EventText(const Json& event)
{
    if (event["event"] == "log") {
        return "log  " + event["line"].get<std::string>();
    }
    Json left = event;
    const auto take = [&](const char* name, const char* before) {
        const auto found = left.find(name);
        if (found == left.end()) {
            return std::string();
        }
        const std::string text = OneLine(*found);
        left.erase(found);
        return text.empty() ? "" : before + text;
    };
    std::string text = take("time", "") + take("event", "  ") + take("id", " ");
    if (left.value("sub", IF_EVT_WHOLE) == IF_EVT_WHOLE) {
        left.erase("sub");
    }
    for (const char* usuallyZero : {"value", "a", "b"}) {
        if (left.value(usuallyZero, 0) == 0) {
            left.erase(usuallyZero);
        }
    }
    text += take("sub", "/") + take("name", " ");
    const std::string after = take("microseconds", "  ");
    const std::string name = take("module", "  ");
    const std::string by = name + take("priority", name.empty() ? "  priority " : " ") +
                           take("key", name.empty() ? "  key " : " ");
    if (left.contains("ifIndex")) {
        left["ifIndex"] = WithInterfaceName(left["ifIndex"]);
    }
    return text + "  " + OneLine(left) + after + (after.empty() ? "" : " us") + by;
}

}  // namespace shell
