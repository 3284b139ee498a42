#include "sources/ovsdb/ovsdb_schema.h"

#include <algorithm>
#include <map>

namespace sources::ovsdb {
namespace {

using standin::Field;
using standin::Key;
using standin::Kind;
using standin::List;
using standin::Table;

// Names on the servers are made of letters, digits and underscores.
std::string NameOf(std::string_view name)
{
    std::string text(name);
    std::ranges::replace(text, '.', '_');
    return text;
}

std::map<const Table*, TableColumns> AllColumns()
{
    std::map<const Table*, TableColumns> all;
    for (const Table& table : standin::Tables()) {
        TableColumns& made = all[&table];
        made.name = NameOf(table.name);
        for (const Field& field : table.fields) {
            made.columns.push_back({NameOf(field.name), &field, nullptr});
        }
        for (const List& list : table.lists) {
            for (const Field& field : list.fields) {
                made.columns.push_back(
                    {NameOf(list.name) + "_" + NameOf(field.name), &field, &list});
            }
        }
    }
    return all;
}

const std::map<const Table*, TableColumns>& TheColumns()
{
    static const auto all = AllColumns();
    return all;
}

Json Integer(uint64_t highest)
{
    return {{"type", "integer"}, {"minInteger", 0}, {"maxInteger", highest}};
}

Json ValueType(const Field& field)
{
    if (field.kind == Kind::Number || field.kind == Kind::Set) {
        return Integer(HighestInteger(field));
    }
    return {{"type", "string"}, {"maxLength", LongestString(field)}};
}

Json ColumnType(const SchemaColumn& column)
{
    const Json value = ValueType(*column.field);
    if (column.list != nullptr) {
        return {{"key", Integer(INT32_MAX)}, {"value", value}, {"min", 0}, {"max", "unlimited"}};
    }
    if (column.field->kind == Kind::Set) {
        return {{"key", value}, {"min", 0}, {"max", "unlimited"}};
    }
    return {{"key", value}};
}

Json ListsType(const Table& table)
{
    Json names = Json::array();
    for (const List& list : table.lists) {
        names.push_back(list.name);
    }
    const Json name = {{"type", "string"}, {"enum", {"set", names}}};
    return {{"key", name}, {"min", 0}, {"max", names.size()}};
}

Json TableSchema(const Table& table)
{
    Json columns;
    for (const SchemaColumn& column : ColumnsOf(table).columns) {
        columns[column.name]["type"] = ColumnType(column);
    }
    if (!table.lists.empty()) {
        columns[LISTS_COLUMN]["type"] = ListsType(table);
    }
    columns[PLACE_COLUMN]["type"] = {{"key", Integer(INT64_MAX)}, {"min", 0}, {"max", 1}};

    Json indexes = Json::array();
    for (const Key& key : table.keys) {
        Json& index = indexes.emplace_back(Json::array());
        for (const Field* member : key.members) {
            index.push_back(NameOf(member->name));
        }
    }
    return {{"columns", columns}, {"indexes", indexes}, {"isRoot", true}};
}

}  // namespace

const TableColumns& ColumnsOf(const Table& table)
{
    return TheColumns().at(&table);
}

const Table* FindTable(const std::string& name)
{
    const auto found =
        std::ranges::find_if(TheColumns(), [&](auto& entry) { return entry.second.name == name; });
    return found == TheColumns().end() ? nullptr : found->first;
}

const SchemaColumn* FindColumn(const Table& table, std::string_view name)
{
    const auto& columns = ColumnsOf(table).columns;
    const auto found = std::ranges::find(columns, name, &SchemaColumn::name);
    return found == columns.end() ? nullptr : &*found;
}

uint64_t HighestInteger(const Field& field)
{
    return field.kind == Kind::Set ? field.width * 8 - 1 : ~uint64_t{0} >> (64 - 8 * field.width);
}

uint32_t LongestString(const Field& field)
{
    switch (field.kind) {
        case Kind::Ipv4:
            return sizeof "255.255.255.255" - 1;
        case Kind::Mac:
            return sizeof "00:00:00:00:00:00" - 1;
        default:
            return standin::LongestText(field);
    }
}

Json Schema()
{
    Json tables;
    for (const Table& table : standin::Tables()) {
        tables[ColumnsOf(table).name] = TableSchema(table);
    }
    return {{"name", DATABASE_NAME}, {"version", "1.0.0"}, {"tables", tables}};
}

}  // namespace sources::ovsdb
