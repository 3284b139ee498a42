#include "shell/events/callbacks.h"

#include <algorithm>
#include <utility>

#include "shell/events/event.h"
#include "shell/events/queue.h"
#include "shell/words.h"

namespace shell {
namespace {

template <size_t place>
uint32_t OnLayerTwo(const void* data, uint32_t value, void* argument, uint64_t* /*word*/)
{
    Events().Push(LayerTwoEvent(LayerTwoCallbacks().Of(place), data, value, argument));
    return 0;
}

template <size_t place>
uint32_t OnInterface(uint32_t /*sub*/, uint32_t flag, uint32_t ifIndex, void* first,
                     void* /*second*/)
{
    Events().Push(InterfaceEvent(InterfaceCallbacks().Of(place), flag, ifIndex, first));
    return 0;
}

template <size_t place>
uint32_t OnNotification(uint32_t ifIndex, uint32_t command, uint32_t a, uint32_t b)
{
    Events().Push(NotificationEvent(NotificationCallbacks().Of(place), ifIndex, command, a, b));
    return 0;
}

template <size_t... place>
std::array<L2IF_SH_EVT_CB_FUNC*, sizeof...(place)> AllLayerTwo(std::index_sequence<place...>)
{
    return {OnLayerTwo<place>...};
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
    const auto free = std::ranges::find(slots_, uint64_t{0}, &Slot::taken);
    if (free == slots_.end()) {
        throw UsageError("no more than " + std::to_string(size) + " callbacks can be registered");
    }
    *free = {registration, ++takes_};
    return callbacks_[static_cast<size_t>(free - slots_.begin())];
}

template <typename Callback>
Callback* CallbackPool<Callback>::Find(const Registration& registration) const
{
    const auto fit = [&](const Slot& slot) {
        const bool isFor = slot.taken > 0 && slot.registration.IsFor(registration);
        return isFor ? slot.taken + 1 : slot.taken == 0 ? 1 : 0;
    };
    const auto best = std::ranges::max_element(slots_, {}, fit);
    return callbacks_[static_cast<size_t>(best - slots_.begin())];
}

template <typename Callback>
void CallbackPool<Callback>::GiveBack(const Callback* callback)
{
    const auto found = std::ranges::find(callbacks_, callback);
    slots_[static_cast<size_t>(found - callbacks_.begin())] = {};
}

template class CallbackPool<L2IF_SH_EVT_CB_FUNC>;
template class CallbackPool<IF_EVT_CB_FUNC>;
template class CallbackPool<IF_NOTIFY_FUNC>;

CallbackPool<L2IF_SH_EVT_CB_FUNC>& LayerTwoCallbacks()
{
    static CallbackPool<L2IF_SH_EVT_CB_FUNC> pool(AllLayerTwo(std::make_index_sequence<512>()));
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
