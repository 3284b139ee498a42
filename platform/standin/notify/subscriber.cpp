#include "notify/subscriber.h"

#include <poll.h>

#include <algorithm>

#include "contract/refusal.h"
#include "session/session_pool.h"

namespace standin {

namespace {

// Lock order: this lock before a subscriber's.
std::mutex openMutex;

// Never destroyed: other threads may still run when the process ends.
std::vector<std::shared_ptr<Subscriber>>& OpenSubscribers()
{
    static auto& subscribers = *new std::vector<std::shared_ptr<Subscriber>>;
    return subscribers;
}

thread_local ORM_MESSAGE running = 0;

}  // namespace

std::shared_ptr<Subscriber> Subscriber::Open(ORM_FD_CONTROL control)
{
    std::shared_ptr<Subscriber> opened(new Subscriber(control));
    constexpr uint32_t WATCH = 0;
    const auto descriptor = static_cast<uint32_t>(opened->ready_.Descriptor());
    if (control != nullptr && control(descriptor, WATCH) != 0) {
        return nullptr;
    }
    if (control == nullptr) {
        opened->server_ = std::thread([opened] { opened->Serve(); });
    }
    const std::lock_guard lock(openMutex);
    OpenSubscribers().push_back(opened);
    return opened;
}

std::vector<std::shared_ptr<Subscriber>> Subscriber::All()
{
    const std::lock_guard lock(openMutex);
    return OpenSubscribers();
}

std::shared_ptr<Subscriber> Subscriber::Find(int descriptor)
{
    for (const auto& subscriber : All()) {
        if (subscriber->ready_.Descriptor() == descriptor) {
            return subscriber;
        }
    }
    return nullptr;
}

void Subscriber::Subscribe(const Definition& definition, ORM_SUB_CALLBACK callback)
{
    const std::lock_guard lock(mutex_);
    subscriptions_.push_back({definition, callback});
}

Deliveries Subscriber::DeliveriesOf(std::span<const std::span<const Change>> runs)
{
    Deliveries deliveries;
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard lock(mutex_);
    for (const auto& run : runs) {
        for (const Subscription& subscription : subscriptions_) {
            if (subscription.definition.Covers(*run.front().store, run.front().event)) {
                deliveries.push_back({subscription.callback, {run.begin(), run.end()}, now});
            }
        }
    }
    return deliveries;
}

void Subscriber::Append(Deliveries deliveries)
{
    std::unique_lock lock(mutex_);
    if (closed_) {
        return;
    }
    const bool first = pending_.empty();
    pending_.splice(pending_.end(), deliveries);
    lock.unlock();  // the woken thread needs it immediately
    if (first) {
        ready_.Raise();
    }
}

PendingMessages Subscriber::Pending()
{
    const std::lock_guard lock(mutex_);
    PendingMessages pending;
    if (!pending_.empty()) {
        pending.count = pending_.size();
        pending.oldest = pending_.front().committed;
    }
    return pending;
}

size_t Subscriber::PendingCount()
{
    const std::lock_guard lock(mutex_);
    LowerWhenDrained();  // it may have been raised after the delivery was taken
    return pending_.size();
}

void Subscriber::LowerWhenDrained()
{
    if (pending_.empty() && !closed_) {
        ready_.Lower();
        drained_.notify_all();
    }
}

Deliveries Subscriber::TakeFirst()
{
    Deliveries first;
    const std::lock_guard lock(mutex_);
    if (!pending_.empty()) {
        first.splice(first.begin(), pending_, pending_.begin());
        LowerWhenDrained();
    }
    return first;
}

// Delivers only what is pending at the call, so that a busy writer can't keep the caller in the
// loop.
uint32_t Subscriber::Dispatch()
{
    const std::lock_guard lock(dispatching_);
    if (isDispatching_) {
        return Refusal::WrongOrder;  // called by one of its callbacks
    }
    isDispatching_ = true;
    bool delivered = true;
    for (size_t left = PendingCount(); left > 0 && delivered; left--) {
        delivered = DeliverFirst();
    }
    isDispatching_ = false;
    return delivered ? ORM_OK : Refusal::OutOfResources;
}

bool Subscriber::DeliverFirst()
{
    uint64_t message = 0;
    Session* session = OpenSession(HandleKind::Message, &message);
    if (session == nullptr) {
        return false;  // the delivery stays pending
    }
    const Deliveries first = TakeFirst();
    if (!first.empty()) {  // a callback may have closed the subscriber
        const Delivery& delivery = first.front();
        session->delivery = &delivery;
        const auto outer = std::exchange(running, message);
        delivery.callback(message, delivery.changes.front().event);
        running = outer;
    }
    CloseSession(*session);
    return true;
}

ORM_MESSAGE Subscriber::RunningMessage()
{
    return running;
}

bool Subscriber::AwaitQuiet(std::chrono::steady_clock::time_point deadline)
{
    {
        std::unique_lock lock(mutex_);
        if (!drained_.wait_until(lock, deadline, [this] { return pending_.empty(); })) {
            return false;
        }
    }
    // By the system clock: GCC 12's thread sanitizer doesn't follow locks by the steady clock.
    const auto remaining = deadline - std::chrono::steady_clock::now();
    return std::unique_lock(dispatching_, std::chrono::system_clock::now() + remaining).owns_lock();
}

void Subscriber::Close()
{
    {
        const std::lock_guard lock(openMutex);
        std::erase(OpenSubscribers(), shared_from_this());
    }
    Deliveries dropped;
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        dropped.swap(pending_);
    }
    constexpr uint32_t UNWATCH = 1;
    if (control_ != nullptr) {
        control_(static_cast<uint32_t>(ready_.Descriptor()), UNWATCH);
    }
    StopServing();
    const auto untilCallbackEnds = HoldCallbacks();
}

void Subscriber::Serve()
{
    pollfd ready = {ready_.Descriptor(), POLLIN, 0};
    while (!IsClosed()) {
        poll(&ready, 1, -1);
        Dispatch();
    }
}

bool Subscriber::IsClosed()
{
    const std::lock_guard lock(mutex_);
    return closed_;
}

void Subscriber::StopServing()
{
    ready_.Raise();
    if (server_.get_id() == std::this_thread::get_id()) {
        server_.detach();  // closed by a callback: the thread ends after the callback
    } else if (server_.joinable()) {
        server_.join();
    }
}

namespace {

// Groups consecutive changes of one table by one operation.
std::vector<std::span<const Change>> RunsOf(std::span<const Change> changes)
{
    std::vector<std::span<const Change>> runs;
    while (!changes.empty()) {
        const auto end = std::ranges::find_if(changes, [&](const Change& change) {
            return change.store != changes.front().store || change.event != changes.front().event;
        });
        runs.push_back(changes.first(static_cast<size_t>(end - changes.begin())));
        changes = changes.subspan(runs.back().size());
    }
    return runs;
}

}  // namespace

Announcement Announce(std::span<const Change> changes)
{
    Announcement announcement;
    const auto subscribers = Subscriber::All();
    if (subscribers.empty()) {
        return announcement;
    }
    const auto runs = RunsOf(changes);
    for (const auto& subscriber : subscribers) {
        if (auto deliveries = subscriber->DeliveriesOf(runs); !deliveries.empty()) {
            announcement.emplace_back(subscriber, std::move(deliveries));
        }
    }
    return announcement;
}

void Post(Announcement& announcement)
{
    for (auto& [subscriber, deliveries] : announcement) {
        subscriber->Append(std::move(deliveries));
    }
}

}  // namespace standin
