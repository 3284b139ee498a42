// Makes tables of the database equal to given rows, by as few writes as that takes.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include <standin/store.h>

namespace sources {

using Rows = std::vector<standin::Row>;

// A view of the key's bytes in the row.
std::string_view KeyBytes(const standin::Row& row, const standin::Key& key);
std::string_view PrimaryKey(const standin::Row& row);

// Whether a row may stay where it is and become the wanted one; otherwise it is deleted and the
// wanted one inserted, which puts it behind all others.
using MayStay = std::function<bool(const standin::Row& row, const standin::Row& wanted)>;

// Makes the table hold the wanted rows and no others; new ones are added in the order given. A row
// that gets another name, or another of its further keys, never stays: keys may have changed hands,
// and no two rows may have one even for a moment.
void MirrorTable(
    standin::Transaction& transaction, const standin::Table& table, const Rows& wanted,
    const MayStay& mayStay = [](auto&, auto&) { return true; });

// The same for rows of many tables, each alone: its table's other rows stay as they are.
void MirrorRow(standin::Transaction& transaction, const standin::Row& wanted);
void RemoveRow(standin::Transaction& transaction, const standin::Row& key);

}  // namespace sources
