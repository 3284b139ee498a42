// Deliveries of changes to the callbacks of subscribers.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <standin/store.h>

namespace standin {

// On a thread that runs such a callback: the time of the commit. On other threads: the clock's
// epoch.
std::chrono::steady_clock::time_point CommitTime();

// A row before and after a change; absent before an insertion, or after a deletion.
struct RowChange {
    std::optional<Row> before;
    std::optional<Row> after;
};

// On a thread that runs such a callback: the current change, to which OrmSubFetchNext moved. No
// value before the first change, after the last, and on other threads.
std::optional<RowChange> CurrentChange();

// Runs the action while no callback runs; deliveries stay pending meanwhile. Must not be called by
// several threads at once.
void BetweenDeliveries(const std::function<void()>& action);

// Row messages that have not been delivered.
struct PendingMessages {
    size_t count = 0;
    std::chrono::steady_clock::time_point oldest;  // commit time of the oldest, if count is not 0
};
PendingMessages CountPendingMessages();

// Waits until the callbacks for all committed changes have returned; returns false on a timeout.
bool AwaitDeliveries(std::chrono::milliseconds longest);

}  // namespace standin
