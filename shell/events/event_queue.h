// What happens on other threads, on its way to the one that prints.
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>

#include "shell/functions/argument.h"

namespace shell {

// Objects as Printer::PrintEvent takes them. Any thread.
class EventQueue {
public:
    EventQueue();
    ~EventQueue();
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    void Push(Json event);
    std::optional<Json> Pop();

    // Waits until something is in the queue, but no longer than that.
    void Wait(std::chrono::milliseconds longest) const;

    // Readable while something is in the queue.
    int Descriptor() const { return descriptor_; }

private:
    std::mutex mutex_;
    std::deque<Json> events_;
    int descriptor_;
};

// The one that the callbacks fill: they are plain functions.
EventQueue& Events();

}  // namespace shell
