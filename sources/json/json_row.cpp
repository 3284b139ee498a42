#include "sources/json/json_row.h"

#include <algorithm>
#include <vector>

#include "sources/json/json_value.h"

namespace sources {
namespace {

using standin::Field;
using standin::List;
using standin::Table;

const Field& KnownField(std::span<const Field> fields, const std::string& name)
{
    const Field* field = standin::FindField(fields, name);
    if (field == nullptr) {
        throw JsonError("there is no such field");
    }
    return *field;
}

std::vector<uint64_t> ItemFromJson(const List& list, const Json& item)
{
    if (!item.is_object()) {
        RefuseType(item, "an object of fields");
    }
    std::vector<uint64_t> values(list.fields.size());
    for (const auto& member : item.items()) {
        At(member.key(), [&] {
            const Field& field = KnownField(list.fields, member.key());
            values[static_cast<size_t>(&field - list.fields.data())] =
                NumberFromJson(field, member.value());
        });
    }
    return values;
}

void ListFromJson(standin::Row& row, const List& list, const Json& items)
{
    if (!items.is_array()) {
        RefuseType(items, "an array of items");
    }
    row.MakeList(list.name);
    for (size_t i = 0; i < items.size(); ++i) {
        At(std::to_string(i), [&] { row.AddItem(list.name, ItemFromJson(list, items[i])); });
    }
}

void MemberFromJson(standin::Row& row, const std::string& name, const Json& value)
{
    const Table& table = row.Description();
    const auto list = std::ranges::find(table.lists, name, &List::name);
    if (list != table.lists.end()) {
        ListFromJson(row, *list, value);
    } else {
        SetFromJson(row, KnownField(table.fields, name), value);
    }
}

Json ItemToJson(const List& list, std::span<const uint8_t> item)
{
    Json object = Json::object();
    for (const Field& field : list.fields) {
        object.emplace(field.name,
                       ValueToJson(field.kind, item.subspan(field.offset, field.width)));
    }
    return object;
}

Json ListToJson(const List& list, std::span<const uint8_t> items)
{
    Json array = Json::array();
    for (size_t at = 0; at < items.size(); at += list.itemSize) {
        array.push_back(ItemToJson(list, items.subspan(at, list.itemSize)));
    }
    return array;
}

bool IsZero(std::span<const uint8_t> bytes)
{
    return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0; });
}

}  // namespace

standin::Row RowFromJson(const Table& table, const Json& object)
{
    if (!object.is_object()) {
        RefuseType(object, "an object of fields");
    }
    standin::Row row(table);
    for (const auto& member : object.items()) {
        At(member.key(), [&] { MemberFromJson(row, member.key(), member.value()); });
    }
    for (const Field& field : table.fields) {
        if (standin::IsInPrimaryKey(table, field) && !object.contains(field.name)) {
            throw JsonError("the key field " + std::string(field.name) + " is missing");
        }
    }
    return row;
}

Json RowToJson(const standin::Row& row)
{
    const Table& table = row.Description();
    Json object = Json::object();
    for (const Field& field : table.fields) {
        if (standin::IsInPrimaryKey(table, field) || !IsZero(row.Bytes(field))) {
            object.emplace(field.name, ValueToJson(field.kind, row.Bytes(field)));
        }
    }
    for (size_t i = 0; i < table.lists.size(); ++i) {
        if (const auto items = row.Items(i)) {
            object.emplace(table.lists[i].name, ListToJson(table.lists[i], *items));
        }
    }
    return object;
}

}  // namespace sources
