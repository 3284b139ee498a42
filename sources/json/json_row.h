// Between a row and a JSON object: {"if_index": 1, "pvid": 10, "vlan_bitmap_1": [1, "10-20"]}.
//
// A list is an array of such objects. A field that is left out is zero or empty; a list that is
// left out is absent, which is not the same as an empty one.
#pragma once

#include "sources/json/json_error.h"

namespace sources {

// Throws JsonError for an unknown field or list, a value that its field can't hold, and where a
// member of the primary key is missing.
standin::Row RowFromJson(const standin::Table& table, const Json& object);

// Leaves out what is zero or empty, but for the primary key.
Json RowToJson(const standin::Row& row);

}  // namespace sources
