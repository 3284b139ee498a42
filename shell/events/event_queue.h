// Event queue between the threads that publish events and the thread that prints them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

#include <standin/event_descriptor.h>

#include "shell/output/json_text.h"

namespace shell {

// Holds at most LIMIT events. Any thread may push; one thread pops.
class EventQueue {
public:
    static constexpr size_t LIMIT = 10'000;

    // If the queue is full, waits up to a second for space. After a timeout, events are dropped
    // without waiting until the queue has space again. Does not throw: if memory is exhausted, the
    // event is dropped.
    void Push(Json event) noexcept;
    // Drops the event if the queue is full. For threads that must not wait.
    void PushNow(Json event) noexcept;
    // Counts an event that could not be built as dropped.
    void Drop() noexcept;

    // After events were dropped, {"event": "dropped", "count": N} takes their place.
    std::optional<Json> Pop();

    // Waits until the queue holds an event, or until the timeout.
    void Wait(std::chrono::milliseconds longest) const;

    // Readable while the queue holds an event.
    int Descriptor() const { return filled_.Descriptor(); }

    size_t Size() const;

private:
    void PushLocked(Json event) noexcept;

    mutable std::mutex mutex_;
    std::condition_variable roomMade_;
    std::deque<Json> events_;
    size_t dropped_ = 0;  // since the last event that was queued
    standin::EventDescriptor filled_;
};

// The queue that the callbacks fill. The first call must come before any callback or log line. It
// throws std::system_error if no descriptor is available.
EventQueue& Events();

}  // namespace shell
