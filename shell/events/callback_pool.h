// The callbacks that the shell registers for events: each puts what it is told into the queue.
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

    // Whether an unregistration that names all but the priority means this one.
    bool IsFor(const Registration& other) const
    {
        return event == other.event && sub == other.sub && module == other.module;
    }
};

// A callback is told neither its event nor on whose behalf it was registered, so each registration
// has one of its own. Changed only while nothing is delivered; callbacks read it.
template <typename Callback>
class CallbackPool {
public:
    static constexpr size_t SIZE = 512;

    explicit CallbackPool(const std::array<Callback*, SIZE>& callbacks) : callbacks_(callbacks) {}

    // One for this registration. Throws UsageError where there is none left.
    Callback* Take(const Registration& registration);
    // The one that was taken last for this registration, whatever its priority; or one that is not
    // registered.
    Callback* Find(const Registration& registration) const;
    void GiveBack(const Callback* callback);
    void GiveBackAll() { entries_ = {}; }

    const Registration& Of(size_t place) const { return entries_[place].registration; }

private:
    struct PoolEntry {
        Registration registration;
        uint64_t taken = 0;  // when, in calls of Take; 0: not in use
    };

    std::array<Callback*, SIZE> callbacks_;
    std::array<PoolEntry, SIZE> entries_;
    uint64_t takes_ = 0;
};

CallbackPool<L2IF_SH_EVT_CB_FUNC>& Layer2Callbacks();
CallbackPool<IF_EVT_CB_FUNC>& InterfaceCallbacks();
CallbackPool<IF_NOTIFY_FUNC>& NotificationCallbacks();

}  // namespace shell
