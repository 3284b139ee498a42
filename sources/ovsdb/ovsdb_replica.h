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

// Which row of the servers a row of the database is the copy of. Any thread.
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
// The tables are a function of the servers' rows. A row that the database can't hold is reported to
// the system log and left out; of rows that have a key in common only the first, in the order of
// places, primary keys and ids, is there.
//
// Each function carries out the updates as one transaction. It throws ProtocolError for updates
// that contradict what the servers sent before, and has then changed nothing.
class Replica {
public:
    void TakeContents(const std::vector<RowUpdate>& updates);  // every row there is
    void TakeChanges(const std::vector<RowUpdate>& updates);

    // A place behind those of all rows, but for absurdly high ones. Any thread.
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
    void NotePlace(int64_t place);

    ServerRows rows_;
    RowIndex index_;
    bool anyShadowed_ = false;
    std::mutex placeMutex_;
    int64_t lastPlace_ = 0;
};

}  // namespace sources::ovsdb
