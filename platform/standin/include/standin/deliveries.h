// Messages on their way from a commit to the subscribers' callbacks.
#pragma once

#include <chrono>
#include <functional>

namespace standin {

// On a thread that runs such a callback: when the transaction of the message was committed.
// Elsewhere the clock's epoch.
std::chrono::steady_clock::time_point CommitTime();

// Runs the action while no callback runs; messages stay pending meanwhile. Not for several threads
// at once.
void BetweenDeliveries(const std::function<void()>& action);

// Waits until the callbacks for everything that is committed have returned; false where that takes
// longer.
bool AwaitDeliveries(std::chrono::milliseconds longest);

}  // namespace standin
