#include "store/limbo.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <vector>

#include "session/session_pool.h"
#include "store/stored_row.h"

namespace standin {

namespace {

std::mutex mutex;
std::atomic<bool> empty = true;

// Never destroyed: other threads may still be at work when the process ends.
std::vector<const StoredRow*>& Rows()
{
    static auto& rows = *new std::vector<const StoredRow*>;
    return rows;
}

std::vector<const StoredRow*> PinnedRows()
{
    std::vector<const StoredRow*> pinned;
    ForEachSession([&](const Session& session) {
        session.pins.ForEach([&](const StoredRow* row) { pinned.push_back(row); });
    });
    std::ranges::sort(pinned);
    return pinned;
}

void Keep(const StoredRow* row)
{
    const std::lock_guard lock(mutex);
    Rows().push_back(row);
    empty.store(false, std::memory_order_relaxed);
}

void Sweep()
{
    const std::lock_guard lock(mutex);
    auto& rows = Rows();
    const auto pinned = PinnedRows();
    const auto isPinned = [&](const StoredRow* row) {
        return std::ranges::binary_search(pinned, row);
    };
    const auto free = std::partition(rows.begin(), rows.end(), isPinned);
    std::for_each(free, rows.end(), DeleteRow);
    rows.erase(free, rows.end());
    empty.store(rows.empty(), std::memory_order_relaxed);
}

}  // namespace

void Release(const StoredRow* row) noexcept
{
    if (row->references.fetch_sub(1, std::memory_order_acq_rel) != 1) {
        return;
    }
    try {
        Keep(row);
    } catch (const std::bad_alloc&) {
        // Better a row too many than a transaction that is neither done nor undone.
    }
}

void SweepLimbo() noexcept
{
    if (empty.load(std::memory_order_relaxed)) {
        return;
    }
    try {
        Sweep();
    } catch (const std::bad_alloc&) {
        // The next one does it.
    }
}

}  // namespace standin
