#include "shell/events/table_monitor.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include <standin/deliveries.h>
#include <tarnd_platform/orm_subscription.h>

#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"
#include "shell/table_lookup.h"

namespace shell {
namespace {

struct Monitor {
    ORM_SESSION session;
    RowFilter filter;
};

// Changed only between deliveries, because the callback reads it.
std::map<const standin::Table*, Monitor> monitors;

Json KeyOf(const standin::Row& row)
{
    const Json whole = WholeRow(row);
    Json key = Json::object();
    for (const standin::Field* member : row.Description().keys[0].members) {
        const std::string name(member->name);
        key[name] = whole[name];
    }
    return key;
}

Json ChangeEvent(const standin::RowChange& change)
{
    const auto& [before, after] = change;
    const standin::Row& present = after ? *after : *before;
    Json event = {{"event", "change"},
                  {"change", !before ? "insert"
                             : after ? "update"
                                     : "delete"},
                  {"table", present.Description().name},
                  {"key", KeyOf(present)},
                  {"old", before ? WholeRow(*before) : Json()},
                  {"new", after ? WholeRow(*after) : Json()}};
    AddTime(event);
    return event;
}

bool Matches(const RowFilter& filter, const standin::RowChange& change)
{
    return (change.before && filter.Matches(*change.before)) ||
           (change.after && filter.Matches(*change.after));
}

void PushChange()
{
    const auto change = standin::CurrentChange();
    if (!change || change->before == change->after) {
        return;
    }
    const standin::Row& present = change->after ? *change->after : *change->before;
    const auto monitor = monitors.find(&present.Description());
    if (monitor != monitors.end() && Matches(monitor->second.filter, *change)) {
        Events().Push(ChangeEvent(*change));
    }
}

// No exception may reach the caller, which is C code.
void OnDelivery(ORM_MESSAGE message, uint32_t /*eventType*/) noexcept
{
    for (uint8_t end = 0; OrmSubFetchNext(message, &end) == 0 && end == 0;) {
        try {
            PushChange();
        } catch (const std::exception&) {
            Events().Drop();
        }
    }
}

ORM_SESSION SubscribeTo(const standin::Table& table)
{
    Json operations = Json::array();
    for (const char* type : {"insert", "delete", "update", "replace"}) {
        operations.push_back({{"type", type}});
    }
    const std::string definition =
        Json({{"label_name", table.name}, {"events", operations}}).dump();
    ORM_SESSION_PARAM parameter = 0;
    ORM_SESSION session = 0;
    OrmCreateSessionParam("channel:", "osc", &parameter);
    uint32_t ret = OrmOpenSubSession(parameter, nullptr, &session);
    OrmDestroySessionParam(parameter);
    if (ret == 0) {
        ret = OrmSubscribe(session, "monitor", definition.c_str(), OnDelivery, nullptr, "shell");
    }
    if (ret != 0) {
        throw std::runtime_error(std::string(table.name) + ": can't be monitored, code " +
                                 std::to_string(ret));
    }
    return session;
}

Json MemberOf(const Json& row, const std::string& name)
{
    const auto found = row.find(name);
    return found != row.end() ? *found : Json();
}

// Returns the fields that are not zero or empty.
std::string RowText(const standin::Table& table, const Json& row, const Json& key)
{
    static const std::vector<Json> emptyValues = {0, "", Json::array(), "0.0.0.0",
                                                  "00:00:00:00:00:00"};
    std::string text;
    for (const auto& member : row.items()) {
        const Json& value = member.value();
        const bool isEmpty = std::ranges::find(emptyValues, value) != emptyValues.end();
        if (!isEmpty && !key.contains(member.key())) {
            text += " " + member.key() + "=" + ValueText(table, member.key(), value);
        }
    }
    return text;
}

}  // namespace

void MonitorTable(const standin::Table& table, const RowFilter& filter)
{
    const auto known = monitors.find(&table);
    if (known != monitors.end()) {
        standin::BetweenDeliveries([&] { known->second.filter = filter; });
        return;
    }
    const ORM_SESSION session = SubscribeTo(table);
    standin::BetweenDeliveries([&] { monitors.emplace(&table, Monitor{session, filter}); });
}

void StopMonitoring()
{
    for (const auto& [table, monitor] : monitors) {
        OrmCloseSession(monitor.session);
    }
    standin::BetweenDeliveries([] { monitors.clear(); });
}

std::string ChangeText(const Json& event)
{
    const standin::Table& table = KnownTable(event["table"].get<std::string>());
    const Json& before = event["old"];
    const Json& after = event["new"];
    std::string time = event["time"];
    std::ranges::replace(time, 'T', ' ');
    std::string text = time + "  " + event["change"].get<std::string>() + " " +
                       std::string(table.name) + "  " + OneLine(event["key"]);
    if (before.is_null() || after.is_null()) {
        text += RowText(table, before.is_null() ? after : before, event["key"]);
    } else {
        const char* separator = ": ";
        for (const std::string& field : FieldNames(table)) {
            const Json was = MemberOf(before, field);
            const Json is = MemberOf(after, field);
            if (was != is) {
                text += separator + field + " " + ValueText(table, field, was) + " -> " +
                        ValueText(table, field, is);
                separator = ", ";
            }
        }
    }
    return text + "  " + OneLine(event.value("microseconds", Json(0))) + " us";
}

}  // namespace shell
