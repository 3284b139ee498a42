// Any row of any table, through the callbacks of the generic keyed read and scan.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include <standin/tables.h>
#include <tarnd_platform/orm.h>

#include "shell/output/json_text.h"

namespace shell {

using Rest = std::span<const std::string>;

// The primary key of a table, one word per member. Throws UsageError for invalid words, and for the
// table "vlan", whose key can't be set through the platform interface.
struct RowKey {
    RowKey(const char* table, Rest words);

    std::optional<std::string> name;  // only the key of "acl_group_id" has a name
    std::vector<uint32_t> numbers;
};

// Output for one row or an array of rows.
struct RowOutput {
    RowOutput(const char* tableName, Json& destination);

    const standin::Table& table;
    Json& output;
};

// Callbacks: a QRB_SET_KEY_FUNC for a RowKey, a QRB_GET_FIELDS_FUNC and a QRB_ENTRY_FUNC for a
// RowOutput.
uint32_t SetRowKey(ORM_SESSION session, const void* key);
uint32_t GetRow(ORM_SESSION session, void* output);
uint32_t AddRow(ORM_SESSION session, void* output, uint32_t index);

}  // namespace shell
