// The database as a text made for people: an object with a member for each table, an array of rows.
// docs/json-format.md shows it.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "sources/json/json_row.h"

namespace sources {

// Hands on every row of the file, in order. Throws standin::Error for the first that is not right:
// "device.json: /port/3/pvid: 70000 is out of range 0 to 65535".
void ReadJson(const std::filesystem::path& file, const std::function<void(standin::Row)>& onRow);

// Adds every row of the file, in one transaction. Throws standin::Error as well where the database
// refuses a row, and has then changed nothing. onRow is called for each row that was read.
void LoadJson(
    const std::filesystem::path& file, const std::function<void()>& onRow = [] {});

// A row a line, in insertion order. Each table is read at its own moment.
std::string DumpJson();
std::string DumpJson(const standin::Table& table);

}  // namespace sources
