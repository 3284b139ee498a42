// A subscription session: its subscriptions, and its pending notifications.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "notify/delivery.h"
#include "notify/subscription_definition.h"
#include "standin/deliveries.h"
#include "standin/event_descriptor.h"

namespace standin {

class Subscriber : public std::enable_shared_from_this<Subscriber> {
public:
    // Null where the control function doesn't take the descriptor. Without a control function, a
    // thread of the stand-in's own waits on it.
    static std::shared_ptr<Subscriber> Open(ORM_FD_CONTROL control);

    static std::vector<std::shared_ptr<Subscriber>> All();
    // The open one with this descriptor, or null.
    static std::shared_ptr<Subscriber> Find(int descriptor);

    void Subscribe(const Definition& definition, ORM_SUB_CALLBACK callback);

    // Its messages about changes, which come in runs: neighbours of one table and operation.
    Deliveries DeliveriesOf(std::span<const std::span<const Change>> runs);
    void Append(Deliveries deliveries);

    // Runs the callbacks of what is pending now.
    uint32_t Dispatch();

    // The message whose callback runs on this thread; 0 where there is none.
    static ORM_MESSAGE RunningMessage();

    PendingMessages Pending();

    // Waits until nothing is pending and no callback runs; false where that takes until the
    // deadline.
    bool AwaitQuiet(std::chrono::steady_clock::time_point deadline);

    // No callback runs while this is held.
    std::unique_lock<std::recursive_timed_mutex> HoldCallbacks()
    {
        return std::unique_lock(dispatching_);
    }

    // No callback runs afterwards, and none is running, unless it is the one that closes.
    void Close();

private:
    struct Subscription {
        Definition definition;
        ORM_SUB_CALLBACK callback;
    };

    explicit Subscriber(ORM_FD_CONTROL control) : control_(control) {}

    size_t PendingCount();
    void LowerWhenDrained();  // under the lock
    Deliveries TakeFirst();   // none or one
    bool DeliverFirst();      // false where there is no handle for the message
    bool IsClosed();
    void Serve();
    void StopServing();

    const ORM_FD_CONTROL control_;
    const EventDescriptor ready_;  // raised by the first pending delivery
    std::thread server_;

    std::recursive_timed_mutex dispatching_;  // held while callbacks run
    bool isDispatching_ = false;

    std::condition_variable drained_;
    std::mutex mutex_;  // of the variables below
    std::vector<Subscription> subscriptions_;
    Deliveries pending_;
    bool closed_ = false;
};

// The messages of one transaction. Made while the transaction can still be undone, since that takes
// memory. Posting takes none, so every committed change is announced.
using Announcement = std::vector<std::pair<std::shared_ptr<Subscriber>, Deliveries>>;
Announcement Announce(std::span<const Change> changes);
void Post(Announcement& announcement);  // in the order of the transactions

}  // namespace standin
