#include "notify/subscription_definition.h"

#include <algorithm>
#include <string>

#include <nlohmann/json.hpp>

#include "tarnd_platform/orm_subscription.h"

namespace standin {

namespace {

// Not the number of an event.
constexpr uint32_t UNKNOWN_EVENT = UINT32_MAX;

uint32_t EventNamed(std::string_view name)
{
    constexpr std::pair<std::string_view, uint32_t> EVENTS[] = {{"insert", ORM_EVENT_INSERT},
                                                                {"delete", ORM_EVENT_DELETE},
                                                                {"update", ORM_EVENT_UPDATE},
                                                                {"replace", ORM_EVENT_REPLACE}};
    const auto* found =
        std::ranges::find(EVENTS, name, &std::pair<std::string_view, uint32_t>::first);
    return found == std::end(EVENTS) ? UNKNOWN_EVENT : found->second;
}

}  // namespace

std::optional<Definition> ParseDefinition(std::string_view text)
{
    using nlohmann::json;
    try {
        const json definition = json::parse(text);
        const auto table = definition.at("label_name").get<std::string>();
        uint32_t events = 0;
        for (const json& entry : definition.at("events").get_ref<const json::array_t&>()) {
            const uint32_t event = EventNamed(entry.at("type").get<std::string>());
            if (event == UNKNOWN_EVENT) {
                return std::nullopt;
            }
            events |= 1U << event;
        }
        const TableStore* store = FindStore(table);
        return store != nullptr && events != 0 ? std::optional(Definition{store, events})
                                               : std::nullopt;
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

}  // namespace standin
