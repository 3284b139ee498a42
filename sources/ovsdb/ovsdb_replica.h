// The servers' rows, and their copy in the database.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <standin/store.h>

#include "sources/ovsdb/ovsdb_row.h"
#include "sources/ovsdb/ovsdb_update_parser.h"

namespace sources::ovsdb {

// Maps rows of the database to the ids of the server rows that they are copies of. Thread-safe.
class RowIndex {
public:
    std::optional<RowId> Find(const standin::Row& key) const;

    void Clear();
    void Add(const standin::Row& row, RowId id);
    void Remove(const standin::Row& row);

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::string, RowId> ids_;  // by table and primary key
};

// The replica owns the tables: rows that others write there are deleted when contents are taken.
//
// The contents of the tables depend only on the servers' rows, not on the order of updates. A row
// that the database can't hold is reported to the system log and omitted. Of rows with a common key
// only the first, in the order of places, primary keys and ids, is stored.
//
// Each function executes the updates as one transaction. It throws ProtocolError, without a change,
// for updates that contradict earlier ones.
class Replica {
public:
    void TakeContents(const std::vector<RowUpdate>& updates);  // all rows
    void TakeChanges(const std::vector<RowUpdate>& updates);

    // A place after those of all rows, except places that are too high to count from. Any thread.
    int64_t NextPlace();

    const RowIndex& Index() const { return index_; }

private:
    struct ServerRow {
        const standin::Table* table;
        std::optional<standin::Row> row;  // none: the database can't hold it
        Json columns;                     // null: RowToWire(row) is in the server's form
        int64_t place = NO_PLACE;
        bool isShadowed = false;  // another row has one of its keys
    };
    struct IdHash {
        size_t operator()(const RowId& id) const { return id.low; }
    };
    using ServerRows = std::unordered_map<RowId, ServerRow, IdHash>;

    struct ReplicaChange {
        RowId id;
        std::optional<ServerRow> after;  // none: the row is deleted
    };

    ServerRow NewRow(const standin::Table& table, const Json& columns);
    ReplicaChange ChangeOf(const RowUpdate& update);
    bool CommitChanges(const std::vector<ReplicaChange>& changes);
    void MirrorAll();
    void RecordPlace(int64_t place);

    ServerRows rows_;
    RowIndex index_;
    bool anyShadowed_ = false;
    std::mutex placeMutex_;
    int64_t lastPlace_ = 0;
};

}  // namespace sources::ovsdb
