#include "standin/deliveries.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "notify/subscriber.h"

namespace standin {

std::chrono::steady_clock::time_point CommitTime()
{
    return Delivery::Running();
}

void BetweenDeliveries(const std::function<void()>& action)
{
    const auto subscribers = Subscriber::All();  // the action may close them: not under our locks
    std::vector<std::unique_lock<std::recursive_timed_mutex>> held;
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
