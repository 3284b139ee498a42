// Makes tables of the database equal to given rows, by as few writes as that takes.
#pragma once

#include <functional>

#include <standin/database.h>

#include "sources/host_rows.h"

namespace sources {

// Whether a row may stay where it is and become the wanted one; otherwise it is deleted and the
// wanted one inserted, which puts it behind all others.
using MayStay = std::function<bool(const standin::Row& row, const standin::Row& wanted)>;

// Makes the table hold the wanted rows and no others; new ones are added in the order given.
void MirrorTable(
    standin::Transaction& transaction, const standin::Table& table, const Rows& wanted,
    const MayStay& mayStay = [](auto&, auto&) { return true; });

// The same for rows of many tables, each alone: its table's other rows stay as they are.
void MirrorRow(standin::Transaction& transaction, const standin::Row& wanted);
void RemoveRow(standin::Transaction& transaction, const standin::Row& key);

void MirrorLinks(standin::Transaction& transaction, const std::vector<Link>& links);
void MirrorForwarding(standin::Transaction& transaction, const ForwardingRows& wanted);

}  // namespace sources
