// The servers' contents in the database.
#pragma once

#include <atomic>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <standin/store.h>

#include "sources/ovsdb/ovsdb_row.h"

namespace sources::ovsdb {

// The tables are its own: rows that others put there go.
//
// What it is given is what servers tell of their rows: an object of tables, each an object of row
// identifiers. It is carried out as one transaction. A row that the database can't hold is reported
// to the system log; the last contents of it that could be held stay, or none. What makes no sense
// at all is an exception, and has changed nothing; then only the whole contents put things right.
class Replica {
public:
    void TakeContents(const Json& tables);  // every row there is
    void TakeChanges(const Json& tables);

    // A place behind all that were seen. Any thread.
    int64_t NextPlace() { return ++lastPlace_; }

private:
    // A row of the servers.
    struct Held {
        const standin::Table* table;
        std::optional<standin::Row> row;  // what stands for it in the database
        Json broken;                      // what it is on the servers, where that is not row
        int64_t place = noPlace;
        bool standsAside = false;  // another row has its key
    };
    using Rows = std::unordered_map<std::string, Held>;  // by identifier

    struct RowChange {
        std::string identifier;
        std::optional<Held> after;  // none: it is gone
    };
    using RowChanges = std::vector<RowChange>;

    Held Taken(const standin::Table& table, const Json& wire, const Held* before);
    RowChange ChangeOf(const standin::Table& table, const std::string& identifier,
                       const Json& update);
    bool CarryOut(const RowChanges& changes) const;
    void MirrorAll();

    Rows held_;
    bool someStandAside_ = false;
    std::atomic<int64_t> lastPlace_ = 0;
};

}  // namespace sources::ovsdb
