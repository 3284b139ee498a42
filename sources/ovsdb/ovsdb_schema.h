// The database on the servers: names of its tables and columns, and its schema.
//
// A field is a column. A list is one map per field of its items, from the item's position to the
// value, which preserves the order and stores a row with lists as one row. The column "lists" has
// the names of the lists that are present, empty or not. The column "place" orders the rows of a
// table.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <standin/tables.h>

#include "sources/ovsdb/ovsdb_message.h"

namespace sources::ovsdb {

inline constexpr const char* DATABASE_NAME = "tarnd_qrb";
inline constexpr const char* LISTS_COLUMN = "lists";
inline constexpr const char* PLACE_COLUMN = "place";

struct SchemaColumn {
    std::string name;
    const standin::Field* field;  // of the table, or of the list's items
    const standin::List* list;    // null: a field of the row itself
};

struct TableColumns {
    std::string name;  // the table's, on the servers
    std::vector<SchemaColumn> columns;
};

// Throws std::out_of_range for a table that is not one of standin::Tables().
const TableColumns& ColumnsOf(const standin::Table& table);

// Find by names on the servers; null if there is none. "lists" and "place" are not included.
const standin::Table* FindTable(const std::string& name);
const SchemaColumn* FindColumn(const standin::Table& table, std::string_view name);

// Limits of a column's values.
uint64_t HighestInteger(const standin::Field& field);  // Number, Set
uint32_t LongestString(const standin::Field& field);   // Ipv4, Mac, Text; in characters

Json Schema();

}  // namespace sources::ovsdb
