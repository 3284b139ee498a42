// Which rows of a table, which of their fields, and in which order.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shell/commands/assignment.h"

namespace shell {

// Conditions FIELD=VALUE that a row must all meet. Texts may be patterns with * and ?; for sets, +=
// is met by rows that contain the ids, -= by rows that contain none of them.
class RowFilter {
public:
    // Throws standin::Error for a value that its field can't hold.
    RowFilter(const standin::Table& table, const std::vector<Assignment>& conditions);

    bool Matches(const standin::Row& row) const;

private:
    struct Condition {
        Assignment::Operator op;
        const standin::Field* field;  // null: a list
        size_t list;
        standin::Row wanted;
        std::string pattern;  // of a text; empty: no pattern
    };

    static Condition MakeCondition(const standin::Table& table, const Assignment& assignment);
    static bool Meets(const standin::Row& row, const Condition& condition);

    std::vector<Condition> conditions_;
};

struct RowSelection {
    const standin::Table& table;
    RowFilter filter;
    std::vector<std::string> columns;     // none: all
    std::vector<std::string> conditions;  // their fields
    const standin::Field* sortField = nullptr;
    bool descending = false;
    size_t limit = SIZE_MAX;
    bool fieldPerLine = false;

    // Calls onRow for each selected row, in order. Ends with Interrupted after Ctrl-C.
    void ForEachRow(const std::function<void(const standin::Row&)>& onRow) const;
};

// [FIELD=VALUE...] [columns FIELD,...] [sort [-]FIELD] [limit N] [lines]. Throws UsageError.
RowSelection TakeSelection(const standin::Table& table, Words& words);

}  // namespace shell
