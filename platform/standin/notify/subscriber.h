// A subscription session: what it covers, and what it has yet to be told.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "notify/delivery.h"
#include "notify/subscription_definition.h"

namespace standin {

// An eventfd that is readable while it is raised.
class Signal {
public:
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    int Descriptor() const { return descriptor_; }
    void Raise() const;
    void Lower() const;

private:
    int descriptor_;
};

class Subscriber : public std::enable_shared_from_this<Subscriber> {
public:
    // Null where the control function doesn't take the descriptor. Without a control function, a
    // thread of the stand-in's own waits on it.
    static std::shared_ptr<Subscriber> Open(ORM_FD_CONTROL control);

    static std::vector<std::shared_ptr<Subscriber>> All();
    // The open one with this descriptor, or null.
    static std::shared_ptr<Subscriber> Find(int descriptor);

    void Subscribe(const Definition& definition, ORM_SUB_CALLBACK callback);

    // What it is to be told of changes, which come in runs: neighbours of one table and operation.
    using Runs = std::span<const std::span<const Change>>;
    Deliveries DeliveriesOf(Runs runs);
    void Append(Deliveries deliveries);

    // Runs the callbacks of what is pending now.
    uint32_t Dispatch();

    // Waits until nothing pends and no callback runs; false where that takes until the deadline.
    bool AwaitQuiet(std::chrono::steady_clock::time_point deadline);

    // No callback runs while this is held.
    std::unique_lock<std::recursive_mutex> HoldCallbacks()
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
    void LowerWhereNonePend();  // under the lock
    Deliveries TakeFirst();     // none or one
    bool DeliverFirst();        // false where there is no handle for the message
    void DropPending();
    bool IsClosed();
    void Serve();
    void StopServing();

    const ORM_FD_CONTROL control_;
    const Signal signal_;
    std::thread server_;

    std::recursive_mutex dispatching_;  // held while callbacks run
    bool isDispatching_ = false;

    std::condition_variable drained_;
    std::mutex mutex_;  // for the rest; who appends the first delivery signals then
    std::vector<Subscription> subscriptions_;
    Deliveries pending_;
    bool closed_ = false;
};

// Ends the subscriptions of the session that this handle stands for.
uint32_t CloseSubscriptionSession(uint64_t handle);

}  // namespace standin
