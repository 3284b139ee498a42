#include "shell/commands/row_selection.h"

#include <fnmatch.h>

#include <algorithm>

#include "shell/functions/argument.h"
#include "shell/table_lookup.h"
#include "shell/terminal/interrupt.h"
#include "sources/json/json_row.h"

namespace shell {
namespace {

using standin::Field;
using standin::Kind;
using standin::Row;
using standin::Table;
using Operator = Assignment::Operator;

constexpr size_t ROWS_BETWEEN_CHECKS = 256;

// Thrown to end a scan early.
struct ScanEnd {};

// Like standin::ForEachRow, but stops when onRow returns false.
void ForEachRowWhile(const Table& table, const std::function<bool(const Row&)>& onRow)
{
    size_t count = 0;
    try {
        standin::ForEachRow(table, [&](const Row& row) {
            if (++count % ROWS_BETWEEN_CHECKS == 0) {
                CheckInterrupt();
            }
            if (!onRow(row)) {
                throw ScanEnd();
            }
        });
    } catch (const ScanEnd&) {
    }
}

size_t ListNumber(const Table& table, const std::string& name)
{
    const auto found = std::ranges::find(table.lists, name, &standin::List::name);
    return static_cast<size_t>(found - table.lists.begin());
}

bool IsLess(const Row& one, const Row& other, const Field& field)
{
    if (field.kind == Kind::Number || field.kind == Kind::Ipv4) {
        return one.Number(field.name) < other.Number(field.name);
    }
    return std::ranges::lexicographical_compare(one.Bytes(field), other.Bytes(field));
}

std::vector<std::string> TakeColumns(const Table& table, Words& words)
{
    std::vector<std::string> columns;
    const std::string names = words.Take("FIELD,...");
    for (size_t begin = 0; begin <= names.size();) {
        const size_t end = std::min(names.find(',', begin), names.size());
        columns.push_back(names.substr(begin, end - begin));
        FieldOrList(table, columns.back());
        begin = end + 1;
    }
    return columns;
}

void TakeSort(RowSelection& selection, Words& words)
{
    std::string name = words.Take("FIELD");
    selection.descending = name.starts_with('-');
    name.erase(0, selection.descending ? 1 : 0);
    selection.sortField = FieldOrList(selection.table, name);
    if (selection.sortField == nullptr) {
        throw UsageError(name + " is a list; rows are sorted by a field");
    }
}

// Returns false if the word is not an option.
bool TakeOption(RowSelection& selection, const std::string& word, Words& words)
{
    if (word == "columns") {
        selection.columns = TakeColumns(selection.table, words);
    } else if (word == "sort") {
        TakeSort(selection, words);
    } else if (word == "limit") {
        selection.limit = NumberFromWord({.name = "limit"}, words.Take("N"), UINT32_MAX);
    } else if (word == "lines") {
        selection.fieldPerLine = true;
    } else {
        return false;
    }
    return true;
}

}  // namespace

RowFilter::RowFilter(const Table& table, const std::vector<Assignment>& conditions)
{
    for (const Assignment& condition : conditions) {
        conditions_.push_back(MakeCondition(table, condition));
    }
}

RowFilter::Condition RowFilter::MakeCondition(const Table& table, const Assignment& assignment)
{
    const Field* field = standin::FindField(table.fields, assignment.field);
    const bool isPattern = field != nullptr && field->kind == Kind::Text &&
                           assignment.value.find_first_of("*?[\\") != std::string::npos;
    return {assignment.op, field, field == nullptr ? ListNumber(table, assignment.field) : 0,
            isPattern ? Row(table) : RowWith(table, assignment),
            isPattern ? assignment.value : std::string()};
}

bool RowFilter::Meets(const Row& row, const Condition& condition)
{
    if (condition.field == nullptr) {
        return std::ranges::equal(row.Items(condition.list).value_or(std::span<const uint8_t>()),
                                  condition.wanted.Items(condition.list).value());
    }
    if (!condition.pattern.empty()) {
        const std::string text(row.Text(condition.field->name));
        return fnmatch(condition.pattern.c_str(), text.c_str(), 0) == 0;
    }
    const auto actual = row.Bytes(*condition.field);
    const auto wanted = condition.wanted.Bytes(*condition.field);
    switch (condition.op) {
        case Operator::Add:
            return std::ranges::equal(wanted, actual,
                                      [](uint8_t bits, uint8_t all) { return (bits & ~all) == 0; });
        case Operator::Remove:
            return std::ranges::equal(wanted, actual,
                                      [](uint8_t bits, uint8_t all) { return (bits & all) == 0; });
        default:
            return std::ranges::equal(wanted, actual);
    }
}

bool RowFilter::Matches(const Row& row) const
{
    return std::ranges::all_of(conditions_,
                               [&](const Condition& condition) { return Meets(row, condition); });
}

void RowSelection::ForEachRow(const std::function<void(const Row&)>& onRow) const
{
    if (sortField == nullptr) {
        size_t left = limit;
        ForEachRowWhile(table, [&](const Row& row) {
            if (left > 0 && filter.Matches(row)) {
                onRow(row);
                --left;
            }
            return left > 0;
        });
        return;
    }
    std::vector<Row> rows;
    ForEachRowWhile(table, [&](const Row& row) {
        if (filter.Matches(row)) {
            rows.push_back(row);
        }
        return true;
    });
    std::ranges::stable_sort(rows, [&](const Row& one, const Row& other) {
        return descending ? IsLess(other, one, *sortField) : IsLess(one, other, *sortField);
    });
    for (const Row& row : std::span(rows).first(std::min(limit, rows.size()))) {
        onRow(row);
    }
}

RowSelection TakeSelection(const Table& table, Words& words)
{
    RowSelection selection{table, RowFilter(table, {}), {}, {}};
    std::vector<Assignment> conditions;
    while (!words.Empty()) {
        const std::string& word = words.Take("word");
        if (!TakeOption(selection, word, words)) {
            conditions.push_back(ParseAssignment(table, word));
            selection.conditions.push_back(conditions.back().field);
        }
    }
    selection.filter = RowFilter(table, conditions);
    return selection;
}

}  // namespace shell
