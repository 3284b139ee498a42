// Converts between a row and a JSON object: {"if_index": 1, "pvid": 10, "vlan_bitmap_1": [1,
// "10-20"]}.
//
// A list is an array of such objects. A field that is left out is zero or empty; a list that is
// left out is absent, which differs from an empty list.
#pragma once

#include "sources/json/json_error.h"

namespace sources {

// Throws JsonError for an unknown field or list, a value that its field can't hold, or a missing
// member of the primary key.
standin::Row RowFromJson(const standin::Table& table, const Json& object);

// Leaves out fields that are zero or empty, except those of the primary key.
Json RowToJson(const standin::Row& row);

}  // namespace sources
