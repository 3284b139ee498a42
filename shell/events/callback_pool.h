// The callbacks that the shell registers for events. Each puts its event into the queue.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <tarnd_qrb/event_registry.h>

namespace shell {

struct Registration {
    uint32_t event = 0;           // notifications: the key
    uint32_t sub = IF_EVT_WHOLE;  // interface events
    uint32_t priority = 0;
    std::string module = {};

    // Whether an unregistration with these values, which have no priority, matches this one.
    bool IsFor(const Registration& other) const
    {
        return event == other.event && sub == other.sub && module == other.module;
    }
};

// A callback receives neither its event id nor its registration, so each registration uses a
// separate function. The pool is changed only between deliveries, because the callbacks read it.
template <typename Callback>
class CallbackPool {
public:
    static constexpr size_t SIZE = 512;

    explicit CallbackPool(const std::array<Callback*, SIZE>& callbacks) : callbacks_(callbacks) {}

    // Allocates a callback for this registration. Throws UsageError if none is free.
    Callback* Take(const Registration& registration);
    // Returns the callback allocated last for this registration, regardless of priority. Without
    // one, returns a callback that is not registered.
    Callback* Find(const Registration& registration) const;
    void GiveBack(const Callback* callback);
    void GiveBackAll() { entries_ = {}; }

    const Registration& Of(size_t place) const { return entries_[place].registration; }

private:
    struct PoolEntry {
        Registration registration;
        uint64_t taken = 0;  // number of the call of Take; 0: free
    };

    std::array<Callback*, SIZE> callbacks_;
    std::array<PoolEntry, SIZE> entries_;
    uint64_t takes_ = 0;
};

CallbackPool<L2IF_SH_EVT_CB_FUNC>& Layer2Callbacks();
CallbackPool<IF_EVT_CB_FUNC>& InterfaceCallbacks();
CallbackPool<IF_NOTIFY_FUNC>& NotificationCallbacks();

}  // namespace shell
