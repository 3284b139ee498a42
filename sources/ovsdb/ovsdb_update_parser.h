// What a server reports about its rows: table updates, checked against the schema.
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

    // Nothing for a text that is not of the form "550e8400-e29b-41d4-a716-446655440000".
    static std::optional<RowId> Parse(std::string_view text);
    std::string Text() const;

    friend auto operator<=>(const RowId&, const RowId&) = default;
};

enum class RowEvent : uint8_t { Initial, Insert, Modify, Delete };

struct RowUpdate {
    const standin::Table* table;
    RowId id;
    RowEvent event;
    Json columns;  // of the schema, with values that it allows; not for Delete
};

// The updates of a <table-updates2> object (ovsdb-server(7), 4.1.14), whose columns are moved out.
// Throws ProtocolError for a table, an event, a column or a value that the schema does not allow,
// and where two updates are of one row.
//
// Contents hold every row there is, as Initial; changes hold the other events.
std::vector<RowUpdate> ParseContents(Json& tables);
std::vector<RowUpdate> ParseChanges(Json& tables);

}  // namespace sources::ovsdb
