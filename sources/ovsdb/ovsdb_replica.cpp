#include "sources/ovsdb/ovsdb_replica.h"

#include <syslog.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "sources/mirror.h"

namespace sources::ovsdb {
namespace {

using standin::Key;
using standin::Row;
using standin::Table;
using standin::Transaction;

void Report(const Table& table, const Json& columns, const std::string& reason)
{
    syslog(LOG_ERR, "%s: %s: the row is left out\n", RowName(table, columns).c_str(),
           reason.c_str());
}

// The row with one key before and after a transaction.
struct KeyTransition {
    const Row* before = nullptr;
    const Row* after = nullptr;

    bool IsChangeInPlace() const
    {
        return before != nullptr && after != nullptr && before->Rank() == after->Rank();
    }
};

// Sorted by table and primary key, so that all clients write in the same order. A row that is
// deleted and inserted again with the same key and place is an update.
class KeyTransitions {
public:
    void From(const Row& row) { TransitionOf(row).before = &row; }
    // Returns false if another row already has this key after the transaction.
    bool To(const Row& row)
    {
        KeyTransition& transition = TransitionOf(row);
        const bool isFree = transition.after == nullptr;
        transition.after = &row;
        return isFree;
    }
    Transaction AsTransaction() const;

private:
    KeyTransition& TransitionOf(const Row& row)
    {
        return transitions_[{&row.Description(), PrimaryKey(row)}];
    }

    std::map<std::pair<const Table*, std::string_view>, KeyTransition> transitions_;
};

Transaction KeyTransitions::AsTransaction() const
{
    Transaction transaction;
    std::vector<const Row*> inserts;
    for (const auto& [key, transition] : transitions_) {
        if (transition.IsChangeInPlace()) {
            continue;
        }
        if (transition.before != nullptr) {
            transaction.Delete(*transition.before);
        }
        if (transition.after != nullptr) {
            inserts.push_back(transition.after);
        }
    }
    for (const auto& [key, transition] : transitions_) {
        if (transition.IsChangeInPlace() && *transition.before != *transition.after) {
            transaction.Update(*transition.after);
        }
    }
    std::ranges::stable_sort(inserts, {}, &Row::Rank);
    for (const Row* row : inserts) {
        transaction.Insert(*row);
    }
    return transaction;
}

class TakenKeys {
public:
    // Records all keys of the row. Returns false, without recording any, if one is taken.
    bool Take(const Row& row)
    {
        const auto keys = row.Description().keys;
        const auto isTaken = [&](const Key& key) {
            return taken_.contains({&key, KeyBytes(row, key)});
        };
        if (std::ranges::any_of(keys, isTaken)) {
            return false;
        }
        for (const Key& key : keys) {
            taken_.insert({&key, KeyBytes(row, key)});
        }
        return true;
    }

private:
    std::set<std::pair<const Key*, std::string_view>> taken_;
};

std::string IndexKey(const Row& row)
{
    const auto table = &row.Description() - standin::Tables().data();
    return static_cast<char>(table) + std::string(PrimaryKey(row));
}

}  // namespace

std::optional<RowId> RowIndex::Find(const Row& key) const
{
    const std::lock_guard lock(mutex_);
    const auto found = ids_.find(IndexKey(key));
    return found == ids_.end() ? std::nullopt : std::optional(found->second);
}

void RowIndex::Clear()
{
    const std::lock_guard lock(mutex_);
    ids_.clear();
}

void RowIndex::Add(const Row& row, RowId id)
{
    const std::lock_guard lock(mutex_);
    ids_.insert_or_assign(IndexKey(row), id);
}

void RowIndex::Remove(const Row& row)
{
    const std::lock_guard lock(mutex_);
    ids_.erase(IndexKey(row));
}

void Replica::TakeContents(const std::vector<RowUpdate>& updates)
{
    ServerRows rows;
    for (const RowUpdate& update : updates) {
        rows.emplace(update.id, NewRow(*update.table, update.columns));
    }
    rows_ = std::move(rows);
    MirrorAll();
}

void Replica::TakeChanges(const std::vector<RowUpdate>& updates)
{
    std::vector<ReplicaChange> changes;
    changes.reserve(updates.size());
    for (const RowUpdate& update : updates) {
        changes.push_back(ChangeOf(update));
    }
    const bool isCommitted = CommitChanges(changes);
    for (ReplicaChange& change : changes) {
        if (change.after) {
            rows_.insert_or_assign(change.id, std::move(*change.after));
        } else {
            rows_.erase(change.id);
        }
    }
    if (!isCommitted) {
        MirrorAll();
    }
}

Replica::ReplicaChange Replica::ChangeOf(const RowUpdate& update)
{
    const std::string name = std::string(update.table->name) + ": row " + update.id.Text();
    const auto known = rows_.find(update.id);
    if (update.event == RowEvent::Insert) {
        if (known != rows_.end()) {
            throw ProtocolError(name + " is inserted twice");
        }
        return {update.id, NewRow(*update.table, update.columns)};
    }
    if (known == rows_.end() || known->second.table != update.table) {
        throw ProtocolError(name + " changes without having been inserted");
    }
    if (update.event == RowEvent::Delete) {
        return {update.id, std::nullopt};
    }
    const ServerRow& before = known->second;
    Json columns = before.columns.is_null() ? RowToWire(*before.row) : before.columns;
    Modify(*update.table, columns, update.columns);
    if (!columns.contains(PLACE_COLUMN) && before.place != NO_PLACE) {
        columns[PLACE_COLUMN] = before.place;
    }
    return {update.id, NewRow(*update.table, columns)};
}

Replica::ServerRow Replica::NewRow(const Table& table, const Json& columns)
{
    ServerRow made{
        .table = &table, .row = std::nullopt, .columns = nullptr, .place = PlaceOf(columns)};
    RecordPlace(made.place);
    try {
        made.row = RowFromWire(table, columns);
        made.row->SetRank(static_cast<uint64_t>(made.place));
    } catch (const standin::Error& error) {
        Report(table, columns, error.what());
    }
    if (!made.row || !KeepsForm(*made.row, columns)) {
        made.columns = columns;
    }
    return made;
}

// The common case: one write per change. Returns false, without a write, if keys conflict.
bool Replica::CommitChanges(const std::vector<ReplicaChange>& changes)
{
    KeyTransitions transitions;
    bool allFree = !anyShadowed_;
    for (const ReplicaChange& change : changes) {
        const auto before = rows_.find(change.id);
        if (before != rows_.end() && before->second.row) {
            transitions.From(*before->second.row);
        }
        if (change.after && change.after->row) {
            allFree &= transitions.To(*change.after->row);
        }
    }
    if (!allFree) {
        return false;
    }
    try {
        transitions.AsTransaction().Commit();
    } catch (const standin::Error&) {
        return false;
    }
    for (const ReplicaChange& change : changes) {
        const auto before = rows_.find(change.id);
        if (before != rows_.end() && before->second.row) {
            index_.Remove(*before->second.row);
        }
    }
    for (const ReplicaChange& change : changes) {
        if (change.after && change.after->row) {
            index_.Add(*change.after->row, change.id);
        }
    }
    return true;
}

// Compares every row with the tables and writes the difference.
void Replica::MirrorAll()
{
    std::vector<std::pair<const RowId, ServerRow>*> all;
    for (auto& entry : rows_) {
        if (entry.second.row) {
            all.push_back(&entry);
        }
    }
    std::ranges::sort(all, {}, [](const auto* entry) {
        const ServerRow& server = entry->second;
        return std::tuple(server.table, server.place, PrimaryKey(*server.row), entry->first);
    });
    TakenKeys keys;
    std::map<const Table*, std::vector<Row>> desired;
    anyShadowed_ = false;
    index_.Clear();
    for (auto* entry : all) {
        ServerRow& server = entry->second;
        const bool isFirst = keys.Take(*server.row);
        if (isFirst) {
            desired[server.table].push_back(*server.row);
            index_.Add(*server.row, entry->first);
        } else if (!server.isShadowed) {
            Report(*server.table, RowToWire(*server.row), "another row has its key");
        }
        server.isShadowed = !isFirst;
        anyShadowed_ |= !isFirst;
    }
    Transaction transaction;
    for (const Table& table : standin::Tables()) {
        MirrorTable(transaction, table, desired[&table]);
    }
    transaction.Commit();
}

void Replica::RecordPlace(int64_t place)
{
    // Higher places are ignored: they mean "last" (such as INT64_MAX) and leave no higher place.
    constexpr int64_t HIGHEST_COUNTED = int64_t{1} << 62;
    const std::lock_guard lock(placeMutex_);
    if (place < HIGHEST_COUNTED) {
        lastPlace_ = std::max(lastPlace_, place);
    }
}

int64_t Replica::NextPlace()
{
    const std::lock_guard lock(placeMutex_);
    return ++lastPlace_;
}

}  // namespace sources::ovsdb
