// Parses table updates from a server and checks them against the schema.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <standin/tables.h>

#include "sources/ovsdb/ovsdb_message.h"

namespace sources::ovsdb {

// A row's UUID.
struct RowId {
    uint64_t high;
    uint64_t low;

    // Empty for a text that is not of the form "550e8400-e29b-41d4-a716-446655440000".
    static std::optional<RowId> Parse(std::string_view text);
    std::string Text() const;

    friend auto operator<=>(const RowId&, const RowId&) = default;
};

enum class RowEvent : uint8_t { Initial, Insert, Modify, Delete };

struct RowUpdate {
    const standin::Table* table;
    RowId id;
    RowEvent event;
    Json columns;  // checked against the schema; null for Delete
};

// Return the updates of a <table-updates2> object (ovsdb-server(7), 4.1.14); its columns are moved
// out. Throw ProtocolError for a table, an event, a column or a value that the schema does not
// allow, and for two updates of one row.
//
// Contents have all rows, with the event Initial; changes have the other events.
std::vector<RowUpdate> ParseContents(Json& tables);
std::vector<RowUpdate> ParseChanges(Json& tables);

}  // namespace sources::ovsdb
