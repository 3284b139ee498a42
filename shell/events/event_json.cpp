#include "shell/events/event_json.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <sstream>

#include <standin/deliveries.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/records.h>

#include "shell/events/table_monitor.h"
#include "shell/named_numbers.h"
#include "shell/output/json_text.h"
#include "shell/table_lookup.h"
#include "sources/json/json_set.h"

namespace shell {
namespace {

void AddInterface(Json& event, uint32_t ifIndex)
{
    event["ifIndex"] = ifIndex;
    std::string name = InterfaceName(ifIndex);
    if (const auto change = name.empty() ? standin::CurrentChange() : std::nullopt;
        change && change->before && change->before->Description().name == "if_base") {
        name = change->before->Text("if_name");  // the row was just deleted
    }
    if (!name.empty()) {
        event["ifName"] = name;
    }
}

template <size_t size>
Json SetOf(const uint8_t (&bits)[size])
{
    return sources::SetToJson(bits);
}

const char* NameOfBitmap(uint32_t bitmap)
{
    return bitmap == QRB_VLAN_BITMAP_1 ? "vlan_bitmap_1" : "vlan_bitmap_2";
}

void AddVlans(Json& event, const QRB_PORT_S& port, uint32_t bitmap)
{
    event[NameOfBitmap(bitmap)] =
        bitmap == QRB_VLAN_BITMAP_1 ? SetOf(port.vlan_bitmap_1) : SetOf(port.vlan_bitmap_2);
}

// Returns the ids that are in the first set but not in the second.
Json Difference(std::span<const uint8_t> minuend, std::span<const uint8_t> subtrahend)
{
    std::vector<uint8_t> bits(minuend.size());
    std::ranges::transform(minuend, subtrahend, bits.begin(),
                           [](uint8_t one, uint8_t other) { return one & ~other; });
    return sources::SetToJson(bits);
}

// Adds the VLANs that were added and removed, and the set before and after. Returns false for an
// event that was published by hand.
bool AddVlanChange(Json& event, uint32_t bitmap)
{
    const auto change = standin::CurrentChange();
    if (!change || !change->before || !change->after ||
        change->after->Description().name != "port") {
        return false;
    }
    const char* const name = NameOfBitmap(bitmap);
    const standin::Field& field = *FieldOrList(change->after->Description(), name);
    const auto before = change->before->Bytes(field);
    const auto after = change->after->Bytes(field);
    event["added"] = Difference(after, before);
    event["removed"] = Difference(before, after);
    event[name] = {{"old", sources::SetToJson(before)}, {"new", sources::SetToJson(after)}};
    return true;
}

// The data type is known only for events that the library itself publishes.
void AddLayer2Data(Json& event, uint32_t id, const void* data, const void* argument)
{
    const auto* port = static_cast<const QRB_PORT_S*>(data);
    const auto* change = static_cast<const QRB_VLAN_CHANGE_S*>(argument);
    switch (id) {
        case L2IF_EVT_VLAN_ADD_PORT:
        case L2IF_EVT_VLAN_DEL_PORT:
            AddInterface(event, change->ifIndex);
            if (!AddVlanChange(event, change->bitmap)) {
                AddVlans(event, *port, change->bitmap);
            }
            break;
        case L2IF_EVT_SWITCH_PORT_ON:
        case L2IF_EVT_SWITCH_PORT_OFF:
            AddInterface(event, *static_cast<const uint32_t*>(data));
            event["switch_port"] = *static_cast<const uint8_t*>(argument);
            break;
        case L2IF_EVT_PORT_ADD:
        case L2IF_EVT_PORT_DEL:
            AddInterface(event, port->if_index);
            event["vlan_bitmap_1"] = SetOf(port->vlan_bitmap_1);
            event["vlan_bitmap_2"] = SetOf(port->vlan_bitmap_2);
            break;
        default:
            break;
    }
}

}  // namespace

std::string TimeText(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const std::time_t seconds = system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    std::ostringstream text;
    text << std::put_time(&local, "%FT%T.") << std::setfill('0') << std::setw(6)
         << duration_cast<microseconds>(time.time_since_epoch()).count() % 1'000'000;
    const long minutes = local.tm_gmtoff / 60;
    text << (minutes < 0 ? '-' : '+') << std::setw(2) << std::abs(minutes) / 60 << ':'
         << std::setw(2) << std::abs(minutes) % 60;
    return text.str();
}

double RoundedSeconds(std::chrono::duration<double> duration)
{
    return std::round(duration.count() * 10) / 10;
}

void AddTime(Json& event)
{
    using namespace std::chrono;
    event["time"] = TimeText(system_clock::now());
    const auto committed = standin::CommitTime();
    if (committed != steady_clock::time_point()) {
        event["microseconds"] =
            std::round(duration<double, std::micro>(steady_clock::now() - committed).count() * 10) /
            10;
    }
}

Json Layer2Event(const Registration& registration, const void* data, uint32_t value,
                 const void* argument)
{
    Json event = {{"event", "layer-2"},
                  {"id", registration.event},
                  {"name", NameOf(LAYER2_EVENTS, registration.event)}};
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
    Json event = {{"event", "interface"},
                  {"id", registration.event},
                  {"sub", registration.sub},
                  {"name", isState ? NameOf(STATE_SUB_EVENTS, registration.sub) : ""}};
    AddInterface(event, ifIndex);
    event["flag"] = flag;
    if (const auto state = NameOf(EVENT_FLAGS, flag); isState && !state.empty()) {
        event["state"] = state;
    }
    if (first != nullptr) {
        event["data"] = *static_cast<const uint32_t*>(first);
    }
    event["module"] = registration.module;
    event["priority"] = registration.priority;
    AddTime(event);
    return event;
}

Json NotificationEvent(const Registration& registration, uint32_t ifIndex, uint32_t command,
                       uint32_t value1, uint32_t value2)
{
    Json event = {
        {"event", "notification"}, {"id", command}, {"name", NameOf(NOTIFICATIONS, command)}};
    AddInterface(event, ifIndex);
    event["value1"] = value1;
    event["value2"] = value2;
    event["module"] = registration.module;
    event["key"] = registration.event;
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

// "vlan 30 removed, vlan_bitmap_2 20,30 -> 20"; takes these members out of the event.
std::string TakeVlanChange(Json& event)
{
    std::string text;
    for (const char* kind : {"added", "removed"}) {
        if (event.contains(kind) && !event[kind].empty()) {
            text += " vlan " + OneLine(event[kind]) + " " + kind + ",";
        }
        event.erase(kind);
    }
    for (const char* name : {"vlan_bitmap_1", "vlan_bitmap_2"}) {
        if (event.contains(name) && event[name].is_object()) {
            const std::string before = OneLine(event[name]["old"]);
            const std::string after = OneLine(event[name]["new"]);
            text += std::string(" ") + name + " " + (before.empty() ? "none" : before) + " -> " +
                    (after.empty() ? "none" : after);
            event.erase(name);
        }
    }
    return text;
}

std::string WatchingText(const Json& event)
{
    const auto named = [&](const char* what) {
        const std::string names = OneLine(event[what]);
        return names.empty() ? std::string("all ") + what : std::string(what) + " " + names;
    };
    return "watching " + named("events") + " of " + named("interfaces");
}

// "TIME  interface 9/2 PHY_STATE  ifIndex=5 (Ethernet0/0/5) flag=1 (down)  31.5 us  watch 0".
std::string EventText(const Json& event)
{
    if (event["event"] == "change") {
        return ChangeText(event);
    }
    if (event["event"] == "watching") {
        return WatchingText(event);
    }
    if (event["event"] == "monitoring") {
        return "monitoring " + OneLine(event["table"]);
    }
    if (event["event"] == "dropped") {
        return OneLine(event["count"]) +
               " events were dropped: they came faster than they could be printed";
    }
    Json left = event;
    const std::string vlans = TakeVlanChange(left);
    const auto take = [&](const char* name, const char* before, const char* after = "") {
        const auto found = left.find(name);
        if (found == left.end()) {
            return std::string();
        }
        const std::string text = OneLine(*found);
        left.erase(found);
        return text.empty() ? "" : before + text + after;
    };
    std::string time = take("time", "");
    std::ranges::replace(time, 'T', ' ');
    std::string text = time + take("event", "  ") + take("id", " ");
    if (left.value("sub", IF_EVT_WHOLE) == IF_EVT_WHOLE) {
        left.erase("sub");
    }
    for (const char* usuallyZero : {"value", "value1", "value2"}) {
        if (left.value(usuallyZero, 0) == 0) {
            left.erase(usuallyZero);
        }
    }
    text += take("sub", "/") + take("name", " ");
    const std::string after = take("microseconds", "  ", " us");
    const std::string module = take("module", "  ");
    const std::string by = module + take("priority", module.empty() ? "  priority " : " ") +
                           take("key", module.empty() ? "  key " : " ");
    for (const auto& [number, word] :
         {std::pair("ifIndex", "ifName"), std::pair("flag", "state")}) {
        if (left.contains(word)) {
            left[number] = OneLine(left[number]) + take(word, " (", ")");
        }
    }
    return text + "  " + OneLine(left) + vlans + after + by;
}

}  // namespace shell
