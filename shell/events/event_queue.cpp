#include "shell/events/event_queue.h"

#include <poll.h>

#include <utility>

namespace shell {
namespace {

Json DroppedEvent(size_t count)
{
    return {{"event", "dropped"}, {"count", count}};
}

}  // namespace

void EventQueue::Push(Json event) noexcept
{
    std::unique_lock lock(mutex_);
    if (dropped_ == 0) {
        roomMade_.wait_for(lock, std::chrono::seconds(1),
                           [this] { return events_.size() < LIMIT; });
    }
    PushLocked(std::move(event));
}

void EventQueue::PushNow(Json event) noexcept
{
    const std::lock_guard lock(mutex_);
    PushLocked(std::move(event));
}

void EventQueue::PushLocked(Json event) noexcept
{
    if (events_.size() >= LIMIT) {
        ++dropped_;
        return;
    }
    try {
        if (dropped_ > 0) {
            events_.push_back(DroppedEvent(dropped_));
            dropped_ = 0;
        }
        events_.push_back(std::move(event));
    } catch (const std::bad_alloc&) {
        ++dropped_;
    }
    filled_.Raise();
}

void EventQueue::Drop() noexcept
{
    const std::lock_guard lock(mutex_);
    ++dropped_;
    filled_.Raise();
}

std::optional<Json> EventQueue::Pop()
{
    const std::lock_guard lock(mutex_);
    if (events_.empty() && dropped_ == 0) {
        return std::nullopt;
    }
    Json event;
    if (!events_.empty()) {
        event = std::move(events_.front());
        events_.pop_front();
        roomMade_.notify_one();
    } else {
        event = DroppedEvent(std::exchange(dropped_, 0));
    }
    if (events_.empty() && dropped_ == 0) {
        filled_.Lower();
    }
    return event;
}

void EventQueue::Wait(std::chrono::milliseconds longest) const
{
    pollfd filled = {Descriptor(), POLLIN, 0};
    poll(&filled, 1, static_cast<int>(longest.count()));
}

size_t EventQueue::Size() const
{
    const std::lock_guard lock(mutex_);
    return events_.size();
}

EventQueue& Events()
{
    static EventQueue queue;
    return queue;
}

}  // namespace shell
