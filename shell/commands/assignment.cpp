#include "shell/commands/assignment.h"

#include <algorithm>

#include "shell/named_numbers.h"
#include "shell/table_lookup.h"
#include "sources/json/json_row.h"
#include "sources/json/json_set.h"

namespace shell {
namespace {

using Operator = Assignment::Operator;
using standin::Field;
using standin::Kind;
using standin::Table;

bool IsNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos &&
           text.size() < 20;
}

// Converts the text of a value to the JSON format.
Json ValueOf(const Table& table, const Assignment& assignment)
{
    const Field* field = standin::FindField(table.fields, assignment.field);
    if (field == nullptr) {
        Json list = Json::parse(assignment.value, nullptr, false);
        return list.is_discarded() ? Json(assignment.value) : list;
    }
    if (const auto named = NumberOf(ValueNames(table.name, field->name), assignment.value)) {
        return *named;
    }
    if (field->kind == Kind::Number && IsNumber(assignment.value)) {
        return std::stoull(assignment.value);
    }
    if (field->kind == Kind::Set && assignment.value.empty()) {
        return Json::array();
    }
    return assignment.value;
}

// Returns the row without the given ids of a set.
standin::Row Without(standin::Row row, const Assignment& assignment)
{
    const Table& table = row.Description();
    const Field& field = *standin::FindField(table.fields, assignment.field);
    standin::Row ids(table);
    sources::AddSet(ids, field, assignment.value);
    std::vector<uint8_t> bits(field.width);
    std::ranges::transform(row.Bytes(field), ids.Bytes(field), bits.begin(),
                           [](uint8_t bit, uint8_t gone) { return bit & ~gone; });
    return row.SetBytes(field.name, bits);
}

// Returns the row that the object describes. Error messages begin with the table's name.
standin::Row RowOf(const Table& table, const Json& object)
{
    try {
        return sources::RowFromJson(table, object);
    } catch (const sources::JsonError& error) {
        throw error.Under(std::string(table.name));
    }
}

}  // namespace

Assignment ParseAssignment(const Table& table, const std::string& word)
{
    const size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("\"" + word + "\" is not of the form FIELD=VALUE");
    }
    const char mark = word[equals - 1];
    const bool sets = mark == '+' || mark == '-';
    Assignment assignment{word.substr(0, equals - (sets ? 1 : 0)),
                          mark == '+'   ? Operator::Add
                          : mark == '-' ? Operator::Remove
                                        : Operator::Set,
                          word.substr(equals + 1), false};
    const Field* field = FieldOrList(table, assignment.field);
    if (sets && (field == nullptr || field->kind != Kind::Set)) {
        throw UsageError(assignment.field + " is not a set, so " + mark + "= does not apply");
    }
    assignment.isKey = field != nullptr && standin::IsInPrimaryKey(table, *field);
    return assignment;
}

std::vector<Assignment> TakeAssignments(const Table& table, Words& words)
{
    std::vector<Assignment> assignments;
    for (const std::string& word : words.TakeAll()) {
        assignments.push_back(ParseAssignment(table, word));
    }
    return assignments;
}

standin::Row NewRow(const Table& table, const std::vector<Assignment>& assignments)
{
    Json object = Json::object();
    for (const Assignment& assignment : assignments) {
        object[assignment.field] = ValueOf(table, assignment);
    }
    return RowOf(table, object);
}

standin::Row Changed(const standin::Row& row, const std::vector<Assignment>& assignments)
{
    const Table& table = row.Description();
    Json object = sources::RowToJson(row);
    for (const Assignment& assignment : assignments) {
        if (assignment.op == Operator::Set) {
            object[assignment.field] = ValueOf(table, assignment);
        } else if (assignment.op == Operator::Add) {
            object[assignment.field].push_back(ValueOf(table, assignment));
        }
    }
    standin::Row changed = RowOf(table, object);
    for (const Assignment& assignment : assignments) {
        if (assignment.op == Operator::Remove) {
            changed = Without(std::move(changed), assignment);
        }
    }
    return changed;
}

standin::Row RowWith(const Table& table, const Assignment& assignment)
{
    // The members of the key must be present; they are zero or empty.
    Json object = sources::RowToJson(standin::Row(table));
    object[assignment.field] = ValueOf(table, assignment);
    return RowOf(table, object);
}

}  // namespace shell
