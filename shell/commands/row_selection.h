// Selection of rows of a table: conditions, columns, sort order and limit.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shell/commands/assignment.h"

namespace shell {

// Conditions FIELD=VALUE, joined by AND. Texts may be patterns with * and ?. For sets, += matches
// rows that contain the ids, and -= matches rows that contain none of them.
class RowFilter {
public:
    // Throws standin::Error if a value is out of range for its field.
    RowFilter(const standin::Table& table, const std::vector<Assignment>& conditions);

    bool Matches(const standin::Row& row) const;

private:
    struct Condition {
        Assignment::Operator op;
        const standin::Field* field;  // null: a list
        size_t list;
        standin::Row wanted;
        std::string pattern;  // for texts; empty: no pattern
    };

    static Condition MakeCondition(const standin::Table& table, const Assignment& assignment);
    static bool Meets(const standin::Row& row, const Condition& condition);

    std::vector<Condition> conditions_;
};

struct RowSelection {
    const standin::Table& table;
    RowFilter filter;
    std::vector<std::string> columns;     // empty: all columns
    std::vector<std::string> conditions;  // the fields that conditions use
    const standin::Field* sortField = nullptr;
    bool descending = false;
    size_t limit = SIZE_MAX;
    bool fieldPerLine = false;

    // Calls onRow for each selected row, in order. Throws Interrupted after Ctrl-C.
    void ForEachRow(const std::function<void(const standin::Row&)>& onRow) const;
};

// [FIELD=VALUE...] [columns FIELD,...] [sort [-]FIELD] [limit N] [lines]. Throws UsageError.
RowSelection TakeSelection(const standin::Table& table, Words& words);

}  // namespace shell
