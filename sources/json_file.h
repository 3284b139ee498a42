// The database as a text made for people: an object with a member for each table, an array of rows.
// docs/json-format.md shows it.
#pragma once

#include <filesystem>
#include <string>

#include "sources/json_row.h"

namespace sources {

// Adds every row of the file, in one transaction. Throws standin::Error, and has then changed
// nothing: "device.json: /port/3/pvid: 70000 is out of range 0 to 65535".
void LoadJson(const std::filesystem::path& file);

// A row a line, in insertion order. Each table is read at its own moment.
std::string DumpJson();
std::string DumpJson(const standin::Table& table);

}  // namespace sources
