// Subscribes to tables. Each row change becomes an event with the old and the new row.
//
//     {"event": "change", "change": "update", "table": "if_base", "key": {"if_index": 7},
//      "old": {...}, "new": {...}, "time": "...", "microseconds": 12.5}
//
// old is null for an insertion, new for a deletion.
#pragma once

#include <string>

#include "shell/commands/row_selection.h"
#include "shell/output/json_text.h"

namespace shell {

// Reports changes whose old or new row matches. Throws std::runtime_error if the subscription
// fails. If the table is already monitored, only replaces its filter.
void MonitorTable(const standin::Table& table, const RowFilter& filter);
void StopMonitoring();

// "TIME  update if_base  if_index=7 (Ethernet0/0/7): mtu 1500 -> 9000  12.5 us"
std::string ChangeText(const Json& event);

}  // namespace shell
