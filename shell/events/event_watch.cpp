#include "shell/events/event_watch.h"

#include <fnmatch.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

#include <standin/deliveries.h>

#include "shell/events/callback_pool.h"
#include "shell/named_numbers.h"
#include "shell/nearest_name.h"
#include "shell/words.h"

namespace shell {
namespace {

constexpr const char* MODULE = "watch";
constexpr uint32_t KEY = 0;

bool isWatching = false;
WatchFilter watchFilter;  // changed only between deliveries

bool MatchesPattern(const std::string& pattern, const std::string& text)
{
    return fnmatch(pattern.c_str(), text.c_str(), FNM_CASEFOLD) == 0;
}

std::string MemberText(const Json& event, const char* name)
{
    const auto found = event.find(name);
    return found != event.end() ? Bare(*found) : "";
}

bool MatchesAny(const std::vector<std::string>& patterns, std::initializer_list<std::string> texts)
{
    return std::ranges::any_of(patterns, [&](const std::string& pattern) {
        return std::ranges::any_of(
            texts, [&](const std::string& text) { return MatchesPattern(pattern, text); });
    });
}

// Calls onEvent(event, sub) for each interface event and each of its sub-events.
template <typename OnEvent>
void ForEachInterfaceEvent(const OnEvent& onEvent)
{
    IF_EvtInit();
    for (uint32_t event = 0; event < g_qrbIFEventCallbacks.childCount; ++event) {
        onEvent(event, IF_EVT_WHOLE);
        for (uint32_t sub = 0; sub < g_qrbIFEventCallbacks.children[event].childCount; ++sub) {
            onEvent(event, sub);
        }
    }
}

void RegisterAll()
{
    for (uint32_t event = 0; event < L2IF_EVT_COUNT; ++event) {
        L2IF_SH_EvtCbFuncReg(MODULE, event, 0,
                             Layer2Callbacks().Take({event, IF_EVT_WHOLE, 0, MODULE}));
    }
    ForEachInterfaceEvent([](uint32_t event, uint32_t sub) {
        IF_INTF_RegEvtCb(event, sub, InterfaceCallbacks().Take({event, sub, 0, MODULE}), 0, 0);
    });
    IF_RegNotifyFunc(KEY, NotificationCallbacks().Take({KEY, IF_EVT_WHOLE, 0, MODULE}));
}

template <typename Callback, typename Unregister>
void Return(CallbackPool<Callback>& pool, const Registration& registration,
            const Unregister& unregister)
{
    Callback* const callback = pool.Find(registration);
    unregister(callback);
    pool.GiveBack(callback);
}

void UnregisterAll()
{
    for (uint32_t event = 0; event < L2IF_EVT_COUNT; ++event) {
        Return(Layer2Callbacks(), {event, IF_EVT_WHOLE, 0, MODULE},
               [=](auto* callback) { L2IF_SH_EvtCbFuncUnReg(MODULE, event, 0, callback); });
    }
    ForEachInterfaceEvent([](uint32_t event, uint32_t sub) {
        Return(InterfaceCallbacks(), {event, sub, 0, MODULE},
               [=](auto* callback) { IF_INTF_UnRegEvtCb(event, sub, callback, 0); });
    });
    Return(NotificationCallbacks(), {KEY, IF_EVT_WHOLE, 0, MODULE},
           [](auto* callback) { IF_UnRegNotifyFunc(KEY, callback); });
}

}  // namespace

bool WatchFilter::Admits(const Json& event) const
{
    return (events.empty() ||
            MatchesAny(events, {MemberText(event, "name"), MemberText(event, "event")})) &&
           (interfaces.empty() ||
            MatchesAny(interfaces, {MemberText(event, "ifIndex"), MemberText(event, "ifName")}));
}

Json WatchFilter::Description() const
{
    return {{"event", "watching"}, {"events", events}, {"interfaces", interfaces}};
}

std::vector<std::string> EventNames()
{
    std::vector<std::string> names = {"layer-2", "interface", "notification"};
    for (const NamedNumbers numbers : {NamedNumbers(LAYER2_EVENTS), NamedNumbers(STATE_SUB_EVENTS),
                                       NamedNumbers(NOTIFICATIONS)}) {
        for (const NamedNumber& named : numbers) {
            names.emplace_back(named.name);
        }
    }
    return names;
}

void CheckEventPattern(const std::string& pattern)
{
    const auto names = EventNames();
    const auto matches = [&](const std::string& name) { return MatchesPattern(pattern, name); };
    if (std::ranges::none_of(names, matches)) {
        throw UsageError(UnknownName("event", pattern, names));
    }
}

void WatchEvents(const WatchFilter& filter)
{
    const bool isNew = !std::exchange(isWatching, true);
    standin::BetweenDeliveries([&] {
        watchFilter = filter;
        if (isNew) {
            RegisterAll();
        }
    });
}

void StopWatching()
{
    if (std::exchange(isWatching, false)) {
        standin::BetweenDeliveries(UnregisterAll);
    }
}

bool IsAdmitted(const std::string& module, const Json& event)
{
    return module != MODULE || watchFilter.Admits(event);
}

}  // namespace shell
