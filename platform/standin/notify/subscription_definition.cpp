#include "notify/subscription_definition.h"

#include <nlohmann/json.hpp>

#include "tarnd_platform/orm_subscription.h"

namespace standin {

namespace {

using nlohmann::json;

// The text of a member, or an empty one.
std::string TextIn(const json& object, const char* member)
{
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::optional<uint32_t> EventNamed(std::string_view name)
{
    constexpr std::pair<std::string_view, uint32_t> events[] = {{"insert", ORM_EVENT_INSERT},
                                                                {"delete", ORM_EVENT_DELETE},
                                                                {"update", ORM_EVENT_UPDATE},
                                                                {"replace", ORM_EVENT_REPLACE}};
    for (const auto& [eventName, event] : events) {
        if (eventName == name) {
            return event;
        }
    }
    return std::nullopt;
}

// A bit for each operation; 0 where there is none, or one is unknown.
uint32_t EventsIn(const json& definition)
{
    const auto list = definition.find("events");
    if (list == definition.end() || !list->is_array()) {
        return 0;
    }
    uint32_t events = 0;
    for (const json& entry : *list) {
        const auto event = entry.is_object() ? EventNamed(TextIn(entry, "type")) : std::nullopt;
        if (!event) {
            return 0;
        }
        events |= 1U << *event;
    }
    return events;
}

}  // namespace

std::optional<Definition> ParseDefinition(std::string_view text)
{
    constexpr bool throwing = false;
    const json definition = json::parse(text, nullptr, throwing);
    if (!definition.is_object()) {
        return std::nullopt;
    }
    const TableStore* store = FindStore(TextIn(definition, "label_name"));
    const uint32_t events = EventsIn(definition);
    return store != nullptr && events != 0 ? std::optional(Definition{store, events})
                                           : std::nullopt;
}

}  // namespace standin
