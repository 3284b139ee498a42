#include "sources/ovsdb/ovsdb_row.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "sources/json/json_value.h"

namespace sources::ovsdb {
namespace {

using standin::Field;
using standin::Kind;
using standin::List;
using standin::Row;
using standin::Table;

// A set of one element may be written as the element itself.
template <typename OnElement>
void ForEachElement(const Json& set, const OnElement& onElement)
{
    if (!set.is_array()) {
        onElement(set);
    } else {
        std::ranges::for_each(set.at(1), onElement);
    }
}

uint64_t NumberFromWire(const Json& value, uint64_t highest)
{
    const bool fits = value.is_number_unsigned() && value.get<uint64_t>() <= highest;
    return fits ? value.get<uint64_t>() : WholeNumber(value, highest);
}

Json IdsOf(std::span<const uint8_t> bits)
{
    Json ids = Json::array();
    for (size_t id = 0; id < bits.size() * 8; ++id) {
        if ((bits[id / 8] & 0x80U >> id % 8) != 0) {
            ids.push_back(id);
        }
    }
    return {"set", ids};
}

Json ValueToWire(const Field& field, std::span<const uint8_t> bytes)
{
    return field.kind == Kind::Set ? IdsOf(bytes) : Json(ValueToJson(field.kind, bytes));
}

Json ListColumnToWire(const SchemaColumn& column, std::span<const uint8_t> items)
{
    Json values = Json::array();
    const size_t itemSize = column.list->itemSize;
    for (size_t position = 0; position * itemSize < items.size(); ++position) {
        const auto bytes =
            items.subspan(position * itemSize + column.field->offset, column.field->width);
        values.push_back({position, ValueToWire(*column.field, bytes)});
    }
    return {"map", values};
}

std::optional<std::span<const uint8_t>> ItemsOf(const Row& row, const List& list)
{
    return row.Items(static_cast<size_t>(&list - row.Description().lists.data()));
}

// An empty text means an address of zeros.
bool IsEmptyAddress(const Field& field, const Json& value)
{
    const auto* text = value.get_ptr<const std::string*>();
    return (field.kind == Kind::Ipv4 || field.kind == Kind::Mac) && text != nullptr &&
           text->empty();
}

void FieldFromWire(Row& row, const Field& field, const Json& value)
{
    if (field.kind == Kind::Set) {
        std::vector<uint8_t> bits(field.width);
        ForEachElement(value, [&](const Json& element) {
            const uint64_t id = NumberFromWire(element, field.width * 8 - 1);
            bits[id / 8] = static_cast<uint8_t>(bits[id / 8] | 0x80U >> id % 8);
        });
        row.SetBytes(field.name, bits);
    } else if (!IsEmptyAddress(field, value)) {
        SetFromJson(row, field, value);
    }
}

// The values of an item's fields, by position of the item.
using Items = std::map<uint64_t, std::vector<uint64_t>>;

void ListColumnFromWire(Items& items, const SchemaColumn& column, const Json& map)
{
    const auto fields = column.list->fields;
    const Field& field = *column.field;
    for (const Json& pair : map.at(1)) {
        auto& values = items[NumberFromWire(pair.at(0), INT32_MAX)];
        values.resize(fields.size());
        if (!IsEmptyAddress(field, pair.at(1))) {
            values[static_cast<size_t>(&field - fields.data())] = NumberFromJson(field, pair.at(1));
        }
    }
}

void ListsFromWire(Row& row, const std::map<const List*, Items>& all, const Json& columns)
{
    if (columns.contains(LISTS_COLUMN)) {
        ForEachElement(columns[LISTS_COLUMN],
                       [&](const Json& name) { row.MakeList(name.get<std::string>()); });
    }
    for (const auto& [list, items] : all) {
        for (const auto& [position, values] : items) {
            row.AddItem(list->name, values);
        }
    }
}

// Returns the set or map in the column; creates an empty one if it is missing.
Json& Collection(Json& wire, const std::string& column, const char* kind)
{
    return wire.emplace(column, Json::array({kind, Json::array()})).first.value();
}

Json::array_t SortedElements(const Json& set)
{
    Json::array_t elements;
    ForEachElement(set, [&](const Json& element) { elements.push_back(element); });
    std::ranges::sort(elements);
    return elements;
}

void ModifySet(Json& set, const Json& change)
{
    const auto before = SortedElements(set);
    const auto differ = SortedElements(change);
    Json::array_t after;
    std::ranges::set_symmetric_difference(before, differ, std::back_inserter(after));
    set = {"set", after};
}

void ModifyMap(Json& map, const Json& change)
{
    std::map<Json, Json> values;
    for (const Json& pair : map.at(1)) {
        values[pair.at(0)] = pair.at(1);
    }
    for (const Json& pair : change.at(1)) {
        const auto [entry, isNew] = values.try_emplace(pair.at(0), pair.at(1));
        if (!isNew && entry->second == pair.at(1)) {
            values.erase(entry);
        } else {
            entry->second = pair.at(1);
        }
    }
    Json pairs = Json::array();
    for (const auto& [position, value] : values) {
        pairs.push_back({position, value});
    }
    map = {"map", pairs};
}

// Sorts the pairs of a map, so that two maps can be compared.
std::map<Json, Json> PairsOf(const Json& columns, const std::string& column)
{
    std::map<Json, Json> pairs;
    if (const auto map = columns.find(column); map != columns.end()) {
        for (const Json& pair : map->at(1)) {
            pairs.emplace(pair.at(0), pair.at(1));
        }
    }
    return pairs;
}

Json::array_t PresentLists(const Json& columns)
{
    const auto present = columns.find(LISTS_COLUMN);
    return present == columns.end() ? Json::array_t() : SortedElements(*present);
}

// For a column of at most one element the servers send the new value, not a difference.
bool IsDifference(const Table& table)
{
    return table.lists.size() > 1;
}

}  // namespace

Json RowToWire(const Row& row)
{
    const Table& table = row.Description();
    Json columns = Json::object();
    for (const SchemaColumn& column : ColumnsOf(table).columns) {
        if (column.list == nullptr) {
            columns[column.name] = ValueToWire(*column.field, row.Bytes(*column.field));
        } else {
            columns[column.name] =
                ListColumnToWire(column, ItemsOf(row, *column.list).value_or(std::span<uint8_t>()));
        }
    }
    Json present = Json::array();
    for (const List& list : table.lists) {
        if (ItemsOf(row, list)) {
            present.push_back(list.name);
        }
    }
    if (!table.lists.empty()) {
        columns[LISTS_COLUMN] = {"set", present};
    }
    return columns;
}

Row RowFromWire(const Table& table, const Json& columns)
{
    Row row(table);
    std::map<const List*, Items> items;
    for (const SchemaColumn& column : ColumnsOf(table).columns) {
        const auto value = columns.find(column.name);
        if (value == columns.end()) {
            continue;
        }
        At(column.name, [&] {
            if (column.list == nullptr) {
                FieldFromWire(row, *column.field, *value);
            } else {
                ListColumnFromWire(items[column.list], column, *value);
            }
        });
    }
    ListsFromWire(row, items, columns);
    return row;
}

bool KeepsForm(const Row& row, const Json& columns)
{
    const Table& table = row.Description();
    if (table.lists.empty()) {
        return true;
    }
    const Json canonical = RowToWire(row);
    const auto hasSamePairs = [&](const SchemaColumn& column) {
        return column.list == nullptr ||
               PairsOf(canonical, column.name) == PairsOf(columns, column.name);
    };
    return PresentLists(canonical) == PresentLists(columns) &&
           std::ranges::all_of(ColumnsOf(table).columns, hasSamePairs);
}

int64_t PlaceOf(const Json& columns)
{
    int64_t found = NO_PLACE;
    if (columns.contains(PLACE_COLUMN)) {
        ForEachElement(columns[PLACE_COLUMN],
                       [&](const Json& value) { found = value.get<int64_t>(); });
    }
    return found;
}

void Modify(const Table& table, Json& columns, const Json& modification)
{
    for (const SchemaColumn& column : ColumnsOf(table).columns) {
        const auto change = modification.find(column.name);
        if (change == modification.end()) {
            continue;
        }
        if (column.list != nullptr) {
            ModifyMap(Collection(columns, column.name, "map"), *change);
        } else if (column.field->kind == Kind::Set) {
            ModifySet(Collection(columns, column.name, "set"), *change);
        } else {
            columns[column.name] = *change;
        }
    }
    if (modification.contains(LISTS_COLUMN)) {
        const Json& change = modification[LISTS_COLUMN];
        Json& present = Collection(columns, LISTS_COLUMN, "set");
        if (IsDifference(table)) {
            ModifySet(present, change);
        } else {
            present = change;
        }
    }
    if (modification.contains(PLACE_COLUMN)) {
        columns[PLACE_COLUMN] = modification[PLACE_COLUMN];
    }
}

Json KeyCondition(const Row& row)
{
    const Table& table = row.Description();
    Json condition = Json::array();
    for (const SchemaColumn& column : ColumnsOf(table).columns) {
        if (standin::IsInPrimaryKey(table, *column.field)) {
            condition.push_back(
                {column.name, "==", ValueToWire(*column.field, row.Bytes(*column.field))});
        }
    }
    return condition;
}

std::string RowName(const Table& table, const Json& columns)
{
    std::string name(table.name);
    for (const Field* member : table.keys.front().members) {
        const std::string field(member->name);
        name += (member == table.keys.front().members.front() ? ": " : ", ") + field;
        if (columns.contains(field)) {
            name += " " + columns[field].dump();
        }
    }
    return name;
}

}  // namespace sources::ovsdb
