#include "shell/events/event_watch.h"

#include <utility>

#include <standin/deliveries.h>

#include "shell/events/callback_pool.h"

namespace shell {
namespace {

constexpr const char* MODULE = "watch";
constexpr uint32_t KEY = 0;

bool isWatching = false;

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

void WatchEverything()
{
    if (!std::exchange(isWatching, true)) {
        standin::BetweenDeliveries(RegisterAll);
    }
}

void WatchNothing()
{
    if (std::exchange(isWatching, false)) {
        standin::BetweenDeliveries(UnregisterAll);
    }
}

}  // namespace shell
