#include "notify/announcement.h"

#include <algorithm>

namespace standin {

namespace {

// Neighbours of one table and one operation.
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

Announcement::Announcement(std::span<const Change> changes)
{
    const auto subscribers = Subscriber::All();
    if (subscribers.empty()) {
        return;
    }
    const auto runs = RunsOf(changes);
    for (const auto& subscriber : subscribers) {
        if (auto deliveries = subscriber->DeliveriesOf(runs); !deliveries.empty()) {
            messages_.emplace_back(subscriber, std::move(deliveries));
        }
    }
}

void Announcement::Post()
{
    for (auto& [subscriber, deliveries] : messages_) {
        subscriber->Append(std::move(deliveries));
    }
}

}  // namespace standin
