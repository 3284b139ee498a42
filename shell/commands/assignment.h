// FIELD=VALUE: what a row gets, or must have.
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

// All the words that are left. Values stand as in the JSON format, but bare: pvid=10,
// mac_addr=02:00:00:00:00:01, vlan_bitmap_1=10,20-29; a list is a JSON array.
// Throws UsageError.
std::vector<Assignment> TakeAssignments(const standin::Table& table, Words& words);

// Throw standin::Error for a value that its field can't hold.
standin::Row NewRow(const standin::Table& table, const std::vector<Assignment>& assignments);
standin::Row Changed(const standin::Row& row, const std::vector<Assignment>& assignments);

// Whether the row would stay as it is.
bool Has(const standin::Row& row, const std::vector<Assignment>& assignments);

}  // namespace shell
