// Between a row and its JSON on the wire: an object of columns; one that is left out is zero or
// empty.
#pragma once

#include <string>

#include <standin/store.h>

#include "sources/ovsdb/ovsdb_schema.h"

namespace sources::ovsdb {

// Every column but the place.
Json RowToWire(const standin::Row& row);

// Throws sources::JsonError for a value that its field can't hold.
standin::Row RowFromWire(const standin::Table& table, const Json& wire);

// The row's place, or noPlace, behind all others.
inline constexpr int64_t noPlace = INT64_MAX;
int64_t PlaceOf(const Json& wire);

// Changes the row by what the servers call a modification: the new values of its single values, and
// of sets and maps what is in one of the two, the old or the new.
void Modify(const standin::Table& table, Json& wire, const Json& modification);

// Which rows have its primary key, as a condition.
Json KeyCondition(const standin::Table& table, const Json& wire);

// For a person: "port: if_index 5".
std::string RowName(const standin::Table& table, const Json& wire);

}  // namespace sources::ovsdb
