#include "shell/events/callback_pool.h"

#include <algorithm>
#include <utility>

#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"
#include "shell/events/event_watch.h"
#include "shell/words.h"

namespace shell {
namespace {

// The library calls the callbacks and is C code, so no exception may leave them.
template <typename MakeEvent>
void PushEvent(const MakeEvent& makeEvent) noexcept
{
    try {
        if (Json event = makeEvent(); IsAdmitted(event["module"], event)) {
            Events().Push(std::move(event));
        }
    } catch (const std::exception&) {
        Events().Drop();
    }
}

void PushLayer2Event(size_t place, const void* data, uint32_t value, const void* argument)
{
    PushEvent([&] { return Layer2Event(Layer2Callbacks().Of(place), data, value, argument); });
}

void PushInterfaceEvent(size_t place, uint32_t flag, uint32_t ifIndex, const void* first)
{
    PushEvent([&] { return InterfaceEvent(InterfaceCallbacks().Of(place), flag, ifIndex, first); });
}

void PushNotificationEvent(size_t place, uint32_t ifIndex, uint32_t command, uint32_t value1,
                           uint32_t value2)
{
    PushEvent([&] {
        return NotificationEvent(NotificationCallbacks().Of(place), ifIndex, command, value1,
                                 value2);
    });
}

template <size_t place>
uint32_t OnLayer2(const void* data, uint32_t value, void* argument, uint64_t* /*word*/)
{
    PushLayer2Event(place, data, value, argument);
    return 0;
}

template <size_t place>
uint32_t OnInterface(uint32_t /*sub*/, uint32_t flag, uint32_t ifIndex, void* first,
                     void* /*second*/)
{
    PushInterfaceEvent(place, flag, ifIndex, first);
    return 0;
}

template <size_t place>
uint32_t OnNotification(uint32_t ifIndex, uint32_t command, uint32_t value1, uint32_t value2)
{
    PushNotificationEvent(place, ifIndex, command, value1, value2);
    return 0;
}

template <size_t... place>
std::array<L2IF_SH_EVT_CB_FUNC*, sizeof...(place)> AllLayer2(std::index_sequence<place...>)
{
    return {OnLayer2<place>...};
}

template <size_t... place>
std::array<IF_EVT_CB_FUNC*, sizeof...(place)> AllInterface(std::index_sequence<place...>)
{
    return {OnInterface<place>...};
}

template <size_t... place>
std::array<IF_NOTIFY_FUNC*, sizeof...(place)> AllNotification(std::index_sequence<place...>)
{
    return {OnNotification<place>...};
}

}  // namespace

template <typename Callback>
Callback* CallbackPool<Callback>::Take(const Registration& registration)
{
    const auto free = std::ranges::find(entries_, uint64_t{0}, &PoolEntry::taken);
    if (free == entries_.end()) {
        throw UsageError("no more than " + std::to_string(SIZE) + " callbacks can be registered");
    }
    *free = {registration, ++takes_};
    return callbacks_[static_cast<size_t>(free - entries_.begin())];
}

template <typename Callback>
Callback* CallbackPool<Callback>::Find(const Registration& registration) const
{
    const auto fit = [&](const PoolEntry& entry) {
        const bool isFor = entry.taken > 0 && entry.registration.IsFor(registration);
        return isFor ? entry.taken + 1 : entry.taken == 0 ? 1 : 0;
    };
    const auto best = std::ranges::max_element(entries_, {}, fit);
    return callbacks_[static_cast<size_t>(best - entries_.begin())];
}

template <typename Callback>
void CallbackPool<Callback>::GiveBack(const Callback* callback)
{
    const auto found = std::ranges::find(callbacks_, callback);
    entries_[static_cast<size_t>(found - callbacks_.begin())] = {};
}

template class CallbackPool<L2IF_SH_EVT_CB_FUNC>;
template class CallbackPool<IF_EVT_CB_FUNC>;
template class CallbackPool<IF_NOTIFY_FUNC>;

CallbackPool<L2IF_SH_EVT_CB_FUNC>& Layer2Callbacks()
{
    static CallbackPool<L2IF_SH_EVT_CB_FUNC> pool(AllLayer2(std::make_index_sequence<512>()));
    return pool;
}

CallbackPool<IF_EVT_CB_FUNC>& InterfaceCallbacks()
{
    static CallbackPool<IF_EVT_CB_FUNC> pool(AllInterface(std::make_index_sequence<512>()));
    return pool;
}

CallbackPool<IF_NOTIFY_FUNC>& NotificationCallbacks()
{
    static CallbackPool<IF_NOTIFY_FUNC> pool(AllNotification(std::make_index_sequence<512>()));
    return pool;
}

}  // namespace shell
