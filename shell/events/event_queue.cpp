#include "shell/events/event_queue.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace shell {

EventQueue::EventQueue() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot open an event descriptor");
    }
}

EventQueue::~EventQueue()
{
    close(descriptor_);
}

void EventQueue::Push(Json event)
{
    const std::lock_guard lock(mutex_);
    if (events_.empty()) {
        eventfd_write(descriptor_, 1);
    }
    events_.push_back(std::move(event));
}

std::optional<Json> EventQueue::Pop()
{
    const std::lock_guard lock(mutex_);
    if (events_.empty()) {
        return std::nullopt;
    }
    Json event = std::move(events_.front());
    events_.pop_front();
    eventfd_t count = 0;
    if (events_.empty()) {
        eventfd_read(descriptor_, &count);
    }
    return event;
}

void EventQueue::Wait(std::chrono::milliseconds longest) const
{
    pollfd filled = {descriptor_, POLLIN, 0};
    poll(&filled, 1, static_cast<int>(longest.count()));
}

EventQueue& Events()
{
    static EventQueue queue;
    return queue;
}

}  // namespace shell
