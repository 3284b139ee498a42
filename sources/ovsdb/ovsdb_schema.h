// The database on the servers: what its tables and columns are called, and its schema.
//
// A field is a column. A list is a map for each of its fields, from the item's position to the
// value, so that its order is kept and a row is one row there too; the column "lists" names the
// lists that are there, empty or not. The column "place" puts the rows of a table in order.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <standin/tables.h>

namespace sources::ovsdb {

// JSON on the wire: members in no order.
using Json = nlohmann::json;

inline constexpr const char* database = "tarnd_qrb";
inline constexpr const char* lists = "lists";
inline constexpr const char* place = "place";

struct SchemaColumn {
    std::string name;
    const standin::Field* field;  // of the table, or of the list's items
    const standin::List* list;    // null: the field stands in the row itself
};

struct TableColumns {
    std::string name;  // the table's, on the servers
    std::vector<SchemaColumn> columns;
};

// Throws for a table that is none of standin::Tables().
const TableColumns& ColumnsOf(const standin::Table& table);

// Null where there is none of that name on the servers.
const standin::Table* FindTable(const std::string& name);

Json Schema();

}  // namespace sources::ovsdb
