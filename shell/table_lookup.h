// The stand-in's tables, by the names that stand on a line.
#pragma once

#include <string>
#include <vector>

#include <standin/store.h>

#include "shell/functions/argument.h"

namespace shell {

// Throws UsageError, with the nearest name, where there is none.
const standin::Table& KnownTable(std::string_view name);
// Null for a list. Throws UsageError where there is neither of that name.
const standin::Field* FieldOrList(const standin::Table& table, std::string_view name);

std::vector<std::string> TableNames();
// Fields, then lists.
std::vector<std::string> FieldNames(const standin::Table& table);

// The values that stand in a field of a table, or in a field of its lists, without repetition.
std::vector<std::string> ValuesOf(const standin::Table& table, std::string_view field);

// "5 (Ethernet0/0/5)", or the index alone where no interface has it.
std::string WithInterfaceName(uint32_t ifIndex);

// A value as text: a text bare, everything else as JSON has it.
std::string Bare(const Json& value);

}  // namespace shell
