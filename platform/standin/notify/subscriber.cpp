#include "notify/subscriber.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "contract/refusal.h"
#include "notify/announcement.h"
#include "session/session_pool.h"
#include "standin/deliveries.h"

namespace standin {

Signal::Signal() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

Signal::~Signal()
{
    close(descriptor_);
}

void Signal::Raise() const
{
    eventfd_write(descriptor_, 1);
}

void Signal::Lower() const
{
    eventfd_t count = 0;
    eventfd_read(descriptor_, &count);
}

namespace {

// The open subscribers. Lock this one before a subscriber's own.
struct Registry {
    std::mutex mutex;
    std::vector<std::shared_ptr<Subscriber>> subscribers;
};

Registry& TheRegistry()
{
    static auto& registry = *new Registry;
    return registry;
}

// Neighbours of one table and one operation.
std::vector<std::span<const Change>> RunsOf(std::span<const Change> changes)
{
    std::vector<std::span<const Change>> runs;
    while (!changes.empty()) {
        const auto end = std::find_if(changes.begin(), changes.end(), [&](const Change& change) {
            return change.store != changes.front().store || change.event != changes.front().event;
        });
        const auto run = changes.first(static_cast<size_t>(end - changes.begin()));
        runs.push_back(run);
        changes = changes.subspan(run.size());
    }
    return runs;
}

}  // namespace

Announcement::Announcement(std::span<const Change> changes)
{
    const std::lock_guard lock(TheRegistry().mutex);
    if (TheRegistry().subscribers.empty()) {
        return;
    }
    const auto runs = RunsOf(changes);
    for (const auto& subscriber : TheRegistry().subscribers) {
        if (auto deliveries = subscriber->DeliveriesOf(runs); !deliveries.empty()) {
            mail_.emplace_back(subscriber, std::move(deliveries));
        }
    }
}

void Announcement::Post()
{
    for (auto& [subscriber, deliveries] : mail_) {
        subscriber->Append(std::move(deliveries));
    }
}

std::shared_ptr<Subscriber> Subscriber::Open(ORM_FD_CONTROL control)
{
    std::shared_ptr<Subscriber> opened(new Subscriber(control));
    constexpr uint32_t watch = 0;
    const auto descriptor = static_cast<uint32_t>(opened->signal_.Descriptor());
    if (control != nullptr && control(descriptor, watch) != 0) {
        return nullptr;
    }
    if (control == nullptr) {
        opened->server_ = std::thread([opened] { opened->Serve(); });
    }
    const std::lock_guard lock(TheRegistry().mutex);
    TheRegistry().subscribers.push_back(opened);
    return opened;
}

std::vector<std::shared_ptr<Subscriber>> Subscriber::All()
{
    const std::lock_guard lock(TheRegistry().mutex);
    return TheRegistry().subscribers;
}

std::shared_ptr<Subscriber> Subscriber::Find(int descriptor)
{
    const std::lock_guard lock(TheRegistry().mutex);
    const auto& all = TheRegistry().subscribers;
    const auto found = std::find_if(all.begin(), all.end(), [=](const auto& subscriber) {
        return subscriber->signal_.Descriptor() == descriptor;
    });
    return found == all.end() ? nullptr : *found;
}

void Subscriber::Subscribe(const Definition& definition, ORM_SUB_CALLBACK callback)
{
    const std::lock_guard lock(mutex_);
    subscriptions_.push_back({definition, callback});
}

Deliveries Subscriber::DeliveriesOf(Runs runs)
{
    Deliveries deliveries;
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard lock(mutex_);
    for (const auto& run : runs) {
        for (const Subscription& subscription : subscriptions_) {
            if (subscription.definition.Covers(*run.front().store, run.front().event)) {
                deliveries.emplace_back(subscription.callback, run, now);
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
    lock.unlock();  // whoever wakes by the signal takes it, perhaps before this thread goes on
    if (first) {
        signal_.Raise();
    }
}

size_t Subscriber::PendingCount()
{
    const std::lock_guard lock(mutex_);
    LowerWhereNonePend();  // what the signal was raised for may have been taken before it
    return pending_.size();
}

void Subscriber::LowerWhereNonePend()
{
    if (pending_.empty() && !closed_) {
        signal_.Lower();
        drained_.notify_all();
    }
}

Deliveries Subscriber::TakeFirst()
{
    Deliveries first;
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) {
        return first;
    }
    first.splice(first.begin(), pending_, pending_.begin());
    LowerWhereNonePend();
    return first;
}

namespace {

thread_local Delivery::Time committed;  // of the message whose callback runs on this thread

// The session behind a message's handle, which is good for as long as the callback runs.
class Message {
public:
    Message() : session_(OpenSession(HandleKind::Message, &handle_)) {}
    ~Message()
    {
        if (session_ != nullptr) {
            CloseSession(*session_);
        }
    }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    bool IsOpen() const { return session_ != nullptr; }
    void Run(const Delivery& delivery)
    {
        session_->delivery = &delivery;
        const auto outer = std::exchange(committed, delivery.Committed());
        delivery.Run(handle_);
        committed = outer;
        CloseSession(*std::exchange(session_, nullptr));
    }

private:
    uint64_t handle_ = 0;
    Session* session_;
};

class SetWhile {
public:
    explicit SetWhile(bool& flag) : flag_(flag) { flag_ = true; }
    ~SetWhile() { flag_ = false; }
    SetWhile(const SetWhile&) = delete;
    SetWhile& operator=(const SetWhile&) = delete;

private:
    bool& flag_;
};

}  // namespace

// Only what is pending now, so that a busy writer doesn't keep the caller for ever.
uint32_t Subscriber::Dispatch()
{
    const std::lock_guard lock(dispatching_);
    if (isDispatching_) {
        return Refusal::WrongOrder;  // by one of its callbacks
    }
    const SetWhile running(isDispatching_);
    for (size_t left = PendingCount(); left > 0; left--) {
        if (!DeliverFirst()) {
            return Refusal::OutOfResources;
        }
        SweepLimbo();
    }
    return ORM_OK;
}

bool Subscriber::AwaitQuiet(std::chrono::steady_clock::time_point deadline)
{
    {
        std::unique_lock lock(mutex_);
        if (!drained_.wait_until(lock, deadline, [this] { return pending_.empty(); })) {
            return false;
        }
    }
    const auto untilCallbackEnds = HoldCallbacks();
    return true;
}

bool Subscriber::DeliverFirst()
{
    Message message;
    if (!message.IsOpen()) {
        return false;
    }
    for (const Delivery& delivery : TakeFirst()) {
        message.Run(delivery);
    }
    return true;
}

void Subscriber::Close()
{
    {
        const std::lock_guard lock(TheRegistry().mutex);
        std::erase(TheRegistry().subscribers, shared_from_this());
    }
    DropPending();
    constexpr uint32_t unwatch = 1;
    if (control_ != nullptr) {
        control_(static_cast<uint32_t>(signal_.Descriptor()), unwatch);
    }
    StopServing();
    const std::lock_guard untilCallbackEnds(dispatching_);
}

void Subscriber::DropPending()
{
    Deliveries dropped;
    const std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(pending_);
}

void Subscriber::Serve()
{
    pollfd ready = {signal_.Descriptor(), POLLIN, 0};
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
    signal_.Raise();
    if (server_.get_id() == std::this_thread::get_id()) {
        server_.detach();  // a callback closes: its thread ends after it
    } else if (server_.joinable()) {
        server_.join();
    }
}

uint32_t CloseSubscriptionSession(uint64_t handle)
{
    Session* session = FindSession(HandleKind::Subscription, handle);
    if (session == nullptr) {
        return Refusal::UnknownHandle;
    }
    const auto subscriber = std::exchange(session->subscriber, nullptr);
    CloseSession(*session);
    subscriber->Close();
    SweepLimbo();
    return ORM_OK;
}

std::chrono::steady_clock::time_point CommitTime()
{
    return committed;
}

void BetweenDeliveries(const std::function<void()>& action)
{
    const auto subscribers = Subscriber::All();  // the action may close them: not under our locks
    std::vector<std::unique_lock<std::recursive_mutex>> held;
    held.reserve(subscribers.size());
    for (const auto& subscriber : subscribers) {
        held.push_back(subscriber->HoldCallbacks());
    }
    action();
}

bool AwaitDeliveries(std::chrono::milliseconds longest)
{
    const auto deadline = std::chrono::steady_clock::now() + longest;
    return std::ranges::all_of(Subscriber::All(), [=](const auto& subscriber) {
        return subscriber->AwaitQuiet(deadline);
    });
}

}  // namespace standin
