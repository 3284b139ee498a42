// Transactions, and direct reads for sources and tests.
#include "standin/store.h"

#include <mutex>

#include "notify/subscriber.h"
#include "session/table_scan.h"
#include "store/reader_writer_lock.h"
#include "store/table_store.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

void Transaction::Insert(Row row)
{
    writes_.push_back({Operation::Insert, std::move(row)});
}

void Transaction::Update(Row row)
{
    writes_.push_back({Operation::Update, std::move(row)});
}

void Transaction::Replace(Row row)
{
    writes_.push_back({Operation::Replace, std::move(row)});
}

void Transaction::Delete(const Row& key)
{
    writes_.push_back({Operation::Delete, key});
}

namespace {

// Serialises transactions and the posting of their deliveries.
std::mutex writer;

const uint8_t* PrimaryKeyOf(const Row& row)
{
    return row.Record().data() + row.Description().keys.front().offset;
}

[[noreturn]] void Refuse(const Row& row, const Key& key, std::string_view reason)
{
    throw Error(RowName(row, key) + ": " + std::string(reason));
}

// The change made by a write. Throws Error if it is refused. made: null for a deletion.
Change Examine(uint32_t event, const Row& row, const RowReference& made)
{
    TableStore& store = StoreOf(row.Description());
    const Key& primary = row.Description().keys.front();
    const StoredRow* present = store.Find(0, PrimaryKeyOf(row));
    if (event == ORM_EVENT_INSERT && present != nullptr) {
        Refuse(row, primary, "there is such a row already");
    }
    if ((event == ORM_EVENT_UPDATE || event == ORM_EVENT_DELETE) && present == nullptr) {
        Refuse(row, primary, "there is no such row");
    }
    if (made) {
        if (const Key* taken = store.TakenKey(*made, present)) {
            Refuse(row, *taken, "another row has this " + std::string(taken->name));
        }
    }
    return {&store, event, present != nullptr ? RowReference(*present) : RowReference(), made};
}

void Apply(const Change& change)
{
    if (!change.before) {
        change.store->Insert(change.after);
    } else if (!change.after) {
        change.store->Remove(*change.before);
    } else {
        change.store->Replace(*change.before, change.after);
    }
}

// Terminates the process if out of memory: a partly applied transaction can't be rolled back.
void Undo(const Change& change) noexcept  // NOLINT(bugprone-exception-escape): that ends it
{
    Apply({change.store, change.event, change.after, change.before});
}

}  // namespace

void Transaction::Commit()
{
    // Checks and allocations precede the lock; replaced rows are freed after it.
    std::vector<RowReference> made;
    made.reserve(writes_.size());
    for (const Write& write : writes_) {
        const bool deletes = write.operation == Operation::Delete;
        made.push_back(deletes ? RowReference() : StoredRow::Make(write.row));
    }
    std::vector<Change> changes;
    changes.reserve(writes_.size());

    const std::lock_guard lock(writer);
    Announcement announcement;
    {
        const WriteGuard guard;
        try {
            for (size_t i = 0; i < writes_.size(); i++) {
                const auto event = static_cast<uint32_t>(writes_[i].operation);
                Change change = Examine(event, writes_[i].row, made[i]);
                Apply(change);
                changes.push_back(std::move(change));
            }
            announcement = Announce(changes);
        } catch (...) {
            for (; !changes.empty(); changes.pop_back()) {
                Undo(changes.back());
            }
            throw;
        }
    }
    Post(announcement);
    writes_.clear();
}

std::optional<Row> Find(const Row& key)
{
    const Table& table = key.Description();
    const ReadGuard guard;
    const StoredRow* row = StoreOf(table).Find(0, PrimaryKeyOf(key));
    return row != nullptr ? std::optional(Detached(table, *row)) : std::nullopt;
}

void ForEachRow(const Table& table, const std::function<void(const Row&)>& onRow)
{
    const ScanCondition everything;
    TableScan scan;
    scan.Start(StoreOf(table), everything);
    while (const RowReference row = scan.Next()) {
        onRow(Detached(table, *row));
    }
}

size_t CountRows(const Table& table)
{
    const ReadGuard guard;
    return StoreOf(table).Order().RowCount();
}

void Reset()
{
    const std::lock_guard lock(writer);
    std::vector<RowOrder> removed;  // freed after the lock is released
    const WriteGuard guard;
    for (const Table& table : Tables()) {
        if (StoreOf(table).Order().RowCount() > 0) {
            removed.push_back(StoreOf(table).TakeAll());
        }
    }
}

}  // namespace standin
