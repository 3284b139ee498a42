// FIELD=VALUE: a value to write, or a condition.
#pragma once

#include <string>
#include <vector>

#include <standin/store.h>

#include "shell/words.h"

namespace shell {

struct Assignment {
    enum class Operator : uint8_t { Set, Add, Remove };  // "=", and for sets "+=" and "-="

    std::string field;  // a field or a list of the table
    Operator op;
    std::string value;
    bool isKey;  // a member of the primary key
};

// A value is written as in the JSON format, without quotes: pvid=10, mac_addr=02:00:00:00:00:01,
// vlan_bitmap_1=10,20-29; a list is a JSON array. States may be given by name: phy_state=up.
// Throws UsageError.
Assignment ParseAssignment(const standin::Table& table, const std::string& word);

// Parses all remaining words.
std::vector<Assignment> TakeAssignments(const standin::Table& table, Words& words);

// The following functions throw standin::Error if the value is out of range for its field.
standin::Row NewRow(const standin::Table& table, const std::vector<Assignment>& assignments);
standin::Row Changed(const standin::Row& row, const std::vector<Assignment>& assignments);
// Returns a row in which only this field or list has a value.
standin::Row RowWith(const standin::Table& table, const Assignment& assignment);

}  // namespace shell
