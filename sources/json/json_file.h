// The database as JSON text: an object with one member per table, which is an array of rows.
// docs/json-format.md describes the format.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "sources/json/json_row.h"

namespace sources {

// Calls onRow for every row of the file, in order. Throws standin::Error with up to ten errors, one
// per line: "device.json: line 12, column 5: /port/3/pvid: 70000 is out of range 0 to 65535".
void ReadJson(const std::filesystem::path& file, const std::function<void(standin::Row)>& onRow);

// Inserts every row of the file, in one transaction. Throws standin::Error also if the database
// refuses a row; the database is then unchanged. onRow is called for each row that was read.
void LoadJson(
    const std::filesystem::path& file, const std::function<void()>& onRow = [] {});

// One row per line, in table order. Each table is read by a scan of its own.
std::string DumpJson();
std::string DumpJson(const standin::Table& table);

}  // namespace sources
