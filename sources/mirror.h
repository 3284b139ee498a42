// Makes tables of the database equal to given rows, with as few writes as possible.
#pragma once

#include <string_view>
#include <vector>

#include <standin/store.h>

namespace sources {

using Rows = std::vector<standin::Row>;

// Rows to write and rows to delete. No row is in it twice.
struct RowChanges {
    Rows present;
    Rows removed;
};

// Returns a view of the key's bytes in the row.
std::string_view KeyBytes(const standin::Row& row, const standin::Key& key);
std::string_view PrimaryKey(const standin::Row& row);

// Adds the writes after which the table holds exactly the desired rows. New rows are inserted in
// the given order. A row whose rank or secondary key (such as its name) changes is deleted and
// inserted instead of updated: keys may have been swapped between rows, and every key must be
// unique after each write.
void MirrorTable(standin::Transaction& transaction, const standin::Table& table,
                 const Rows& desired);

// The same for a single row. The other rows of its table are unchanged.
void MirrorRow(standin::Transaction& transaction, const standin::Row& desired);
void RemoveRow(standin::Transaction& transaction, const standin::Row& key);
void MirrorRows(standin::Transaction& transaction, const RowChanges& changes);

}  // namespace sources
