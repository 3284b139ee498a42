// Messages on their way from a commit to the subscribers' callbacks.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <standin/store.h>

namespace standin {

// On a thread that runs such a callback: when the transaction of the message was committed.
// Elsewhere the clock's epoch.
std::chrono::steady_clock::time_point CommitTime();

// A row before and after a change; absent before an insertion, or after a deletion.
struct RowChange {
    std::optional<Row> before;
    std::optional<Row> after;
};

// On a thread that runs such a callback: the change that OrmSubFetchNext moved to last. No value
// before the first, after the last, and elsewhere.
std::optional<RowChange> CurrentChange();

// Runs the action while no callback runs; messages stay pending meanwhile. Not for several threads
// at once.
void BetweenDeliveries(const std::function<void()>& action);

// Messages that wait for their callbacks.
struct PendingMessages {
    size_t count = 0;
    std::chrono::steady_clock::time_point oldest;  // commit time of the oldest, if there are any
};
PendingMessages CountPendingMessages();

// Waits until the callbacks for everything that is committed have returned; false where that takes
// longer.
bool AwaitDeliveries(std::chrono::milliseconds longest);

}  // namespace standin
