#include "standin/deliveries.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "notify/subscriber.h"
#include "session/session_pool.h"

namespace standin {

namespace {

// The session of the message whose callback runs on this thread, or null.
const Session* RunningSession()
{
    return FindSession(HandleKind::Message, Subscriber::RunningMessage());
}

}  // namespace

std::chrono::steady_clock::time_point CommitTime()
{
    const Session* message = RunningSession();
    return message != nullptr ? message->delivery->committed
                              : std::chrono::steady_clock::time_point();
}

std::optional<RowChange> CurrentChange()
{
    const Session* message = RunningSession();
    const Change* change =
        message == nullptr ? nullptr : message->delivery->LastOf(message->fetched);
    if (change == nullptr) {
        return std::nullopt;
    }
    const auto detached = [&](const RowReference& row) {
        return row ? std::optional(Detached(change->store->Description(), *row)) : std::nullopt;
    };
    return RowChange{detached(change->before), detached(change->after)};
}

void BetweenDeliveries(const std::function<void()>& action)
{
    const auto subscribers =
        Subscriber::All();  // the action may close them, so the locks are not held
    std::vector<std::unique_lock<std::recursive_timed_mutex>> held;
    held.reserve(subscribers.size());
    for (const auto& subscriber : subscribers) {
        held.push_back(subscriber->HoldCallbacks());
    }
    action();
}

PendingMessages CountPendingMessages()
{
    PendingMessages all;
    for (const auto& subscriber : Subscriber::All()) {
        const PendingMessages pending = subscriber->Pending();
        if (all.count == 0 || (pending.count > 0 && pending.oldest < all.oldest)) {
            all.oldest = pending.oldest;
        }
        all.count += pending.count;
    }
    return all;
}

bool AwaitDeliveries(std::chrono::milliseconds longest)
{
    const auto deadline = std::chrono::steady_clock::now() + longest;
    return std::ranges::all_of(Subscriber::All(), [=](const auto& subscriber) {
        return subscriber->AwaitQuiet(deadline);
    });
}

}  // namespace standin
