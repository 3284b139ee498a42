// Changes on their way from a commit to the callbacks of those who subscribed.
#pragma once

#include <chrono>
#include <functional>

namespace standin {

// On a thread that runs such a callback: when the transaction that it tells of was committed.
// Elsewhere the clock's epoch.
std::chrono::steady_clock::time_point CommitTime();

// Does the action while no callback runs; messages wait meanwhile. Not for several threads at once.
void BetweenDeliveries(const std::function<void()>& action);

// Waits until the callbacks for everything that is committed have returned; false where that takes
// longer.
bool AwaitDeliveries(std::chrono::milliseconds longest);

}  // namespace standin
