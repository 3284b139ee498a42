// Makes tables of the database equal to given rows, by as few writes as that takes.
#pragma once

#include <string_view>
#include <vector>

#include <standin/store.h>

namespace sources {

using Rows = std::vector<standin::Row>;

// A view of the key's bytes in the row.
std::string_view KeyBytes(const standin::Row& row, const standin::Key& key);
std::string_view PrimaryKey(const standin::Row& row);

// Makes the table hold the wanted rows and no others; new ones are added in the order given. A row
// that gets another name, or another of its further keys, never stays: keys may have changed hands,
// and no two rows may have one even for a moment.
void MirrorTable(standin::Transaction& transaction, const standin::Table& table,
                 const Rows& wanted);

// The same for rows of many tables, each alone: its table's other rows stay as they are.
void MirrorRow(standin::Transaction& transaction, const standin::Row& wanted);
void RemoveRow(standin::Transaction& transaction, const standin::Row& key);

}  // namespace sources
