// Converts between a row and its columns on the servers. A column that is missing is zero or empty.
#pragma once

#include <cstdint>
#include <string>

#include <standin/store.h>

#include "sources/ovsdb/ovsdb_schema.h"

namespace sources::ovsdb {

// Every column but the place.
Json RowToWire(const standin::Row& row);

// columns: of the table, with values that the schema allows. Throws sources::JsonError for a value
// that the field can't hold: an address or a text that the schema can't check.
standin::Row RowFromWire(const standin::Table& table, const Json& columns);

// Whether RowToWire(row) has the same lists as the columns that the row was made from, in the same
// form. The form is free: lists may have gaps between positions, lack columns, or hold empty texts
// for addresses of zeros. A modification is a difference to that form.
bool KeepsForm(const standin::Row& row, const Json& columns);

// The row's place, or NO_PLACE, behind all others.
inline constexpr int64_t NO_PLACE = INT64_MAX;
int64_t PlaceOf(const Json& columns);

// Applies what the servers call a modification: the new values of single values, and of sets and
// maps the elements that only the old or only the new value has.
void Modify(const standin::Table& table, Json& columns, const Json& modification);

// The condition that selects the row by its primary key.
Json KeyCondition(const standin::Row& row);

// For messages: "port: if_index 5".
std::string RowName(const standin::Table& table, const Json& columns);

}  // namespace sources::ovsdb
