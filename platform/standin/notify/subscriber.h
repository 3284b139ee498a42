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
    // Returns null if the control function refuses the descriptor. Without a control function, a
    // thread of the stand-in waits on it.
    static std::shared_ptr<Subscriber> Open(ORM_FD_CONTROL control);

    static std::vector<std::shared_ptr<Subscriber>> All();
    // Returns the open subscriber with this descriptor, or null.
    static std::shared_ptr<Subscriber> Find(int descriptor);

    void Subscribe(const Definition& definition, ORM_SUB_CALLBACK callback);

    // Creates its deliveries for the changes, one for each run of changes of one table and
    // operation.
    Deliveries DeliveriesOf(std::span<const std::span<const Change>> runs);
    void Append(Deliveries deliveries);

    // Runs the callbacks of the deliveries that are pending at the call.
    uint32_t Dispatch();

    // The message whose callback runs on this thread; 0 if there is none.
    static ORM_MESSAGE RunningMessage();

    PendingMessages Pending();

    // Waits until nothing is pending and no callback runs; returns false at the deadline.
    bool AwaitQuiet(std::chrono::steady_clock::time_point deadline);

    // While the returned lock is held, no callback runs.
    std::unique_lock<std::recursive_timed_mutex> HoldCallbacks()
    {
        return std::unique_lock(dispatching_);
    }

    // When it returns, no callback is running or will run, except the one that calls it.
    void Close();

private:
    struct Subscription {
        Definition definition;
        ORM_SUB_CALLBACK callback;
    };

    explicit Subscriber(ORM_FD_CONTROL control) : control_(control) {}

    size_t PendingCount();
    void LowerWhenDrained();  // under the lock
    Deliveries TakeFirst();   // at most one
    bool DeliverFirst();      // false if no handle is available for the message
    bool IsClosed();
    void Serve();
    void StopServing();

    const ORM_FD_CONTROL control_;
    const EventDescriptor ready_;  // raised by the first pending delivery
    std::thread server_;

    std::recursive_timed_mutex dispatching_;  // held while callbacks run
    bool isDispatching_ = false;

    std::condition_variable drained_;
    std::mutex mutex_;  // protects the members below
    std::vector<Subscription> subscriptions_;
    Deliveries pending_;
    bool closed_ = false;
};

// The deliveries of one transaction. They are allocated while the transaction can still be rolled
// back. Posting allocates nothing, so every committed change is delivered.
using Announcement = std::vector<std::pair<std::shared_ptr<Subscriber>, Deliveries>>;
Announcement Announce(std::span<const Change> changes);
void Post(Announcement& announcement);  // in the order of the transactions

}  // namespace standin
