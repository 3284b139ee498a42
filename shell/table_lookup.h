// Looks up the stand-in's tables, fields and values for the words of a command.
#pragma once

#include <string>
#include <vector>

#include <standin/store.h>

#include "shell/output/json_text.h"

namespace shell {

// Throws UsageError with a similar name if there is no such table.
const standin::Table& KnownTable(std::string_view name);

// Null for a list. Throws UsageError if the table has neither a field nor a list of that name.
const standin::Field* FieldOrList(const standin::Table& table, std::string_view name);

std::vector<std::string> TableNames();
// Fields first, then lists.
std::vector<std::string> FieldNames(const standin::Table& table);

// The distinct values of a field, or of a field of the table's lists.
std::vector<std::string> ValuesOf(const standin::Table& table, std::string_view field);

// Every field, unlike sources::RowToJson, which leaves out those that are zero or empty.
Json WholeRow(const standin::Row& row);
// A field's value on one line, with its name if it has one: "1 (up)"; "none" for a null value.
std::string ValueText(const standin::Table& table, std::string_view field, const Json& value);

// The full name of an interface; empty if there is no such interface.
std::string InterfaceName(uint32_t ifIndex);
// "5 (Ethernet0/0/5)", or only the index if there is no such interface.
std::string WithInterfaceName(uint32_t ifIndex);

}  // namespace shell
