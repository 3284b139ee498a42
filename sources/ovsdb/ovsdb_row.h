// Converts between a row and its columns on the servers. A column that is missing is zero or empty.
#pragma once

#include <cstdint>
#include <string>

#include <standin/store.h>

#include "sources/ovsdb/ovsdb_schema.h"

namespace sources::ovsdb {

// All columns except the place.
Json RowToWire(const standin::Row& row);

// columns: columns of the table, with values that the schema allows. Throws sources::JsonError for
// a value that the field can't hold (addresses and texts, which the schema does not check).
standin::Row RowFromWire(const standin::Table& table, const Json& columns);

// Whether RowToWire(row) represents lists in the same way as the columns from which the row was
// made. A list has several representations: it may have gaps between positions, lack columns, or
// have empty texts for addresses of zeros. A modification is relative to the server's
// representation.
bool KeepsForm(const standin::Row& row, const Json& columns);

// The row's place; NO_PLACE, which sorts after all others, if it has none.
inline constexpr int64_t NO_PLACE = INT64_MAX;
int64_t PlaceOf(const Json& columns);

// Applies a "modify" update: new values of scalars; for sets and maps, the symmetric difference of
// the old and the new value.
void Modify(const standin::Table& table, Json& columns, const Json& modification);

// The condition that selects the row by its primary key.
Json KeyCondition(const standin::Row& row);

// For messages: "port: if_index 5".
std::string RowName(const standin::Table& table, const Json& columns);

}  // namespace sources::ovsdb
