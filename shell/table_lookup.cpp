#include "shell/table_lookup.h"

#include <algorithm>
#include <unordered_set>

#include "shell/named_numbers.h"
#include "shell/nearest_name.h"
#include "shell/words.h"
#include "sources/json/json_row.h"
#include "sources/json/json_value.h"

namespace shell {
namespace {

template <typename Item>
std::vector<std::string> NamesOf(std::span<const Item> items)
{
    std::vector<std::string> names;
    for (const Item& item : items) {
        names.emplace_back(item.name);
    }
    return names;
}

}  // namespace

const standin::Table& KnownTable(std::string_view name)
{
    const standin::Table* table = standin::FindTable(name);
    if (table == nullptr) {
        throw UsageError(UnknownName("table", name, TableNames()));
    }
    return *table;
}

const standin::Field* FieldOrList(const standin::Table& table, std::string_view name)
{
    const standin::Field* field = standin::FindField(table.fields, name);
    if (field == nullptr &&
        std::ranges::find(table.lists, name, &standin::List::name) == table.lists.end()) {
        throw UsageError(UnknownName("field", name, FieldNames(table)));
    }
    return field;
}

std::vector<std::string> FieldNames(const standin::Table& table)
{
    std::vector<std::string> names = NamesOf(table.fields);
    std::ranges::move(NamesOf(table.lists), std::back_inserter(names));
    return names;
}

std::vector<std::string> TableNames()
{
    return NamesOf(standin::Tables());
}

std::vector<std::string> ValuesOf(const standin::Table& table, std::string_view field)
{
    std::vector<std::string> values;
    std::unordered_set<std::string> seen;
    const auto add = [&](const Json& object) {
        const auto found = object.find(field);
        if (found != object.end() && seen.insert(Bare(*found)).second) {
            values.push_back(Bare(*found));
        }
    };
    standin::ForEachRow(table, [&](const standin::Row& row) {
        const Json object = sources::RowToJson(row);
        add(object);
        for (const standin::List& list : table.lists) {
            if (const auto items = object.find(list.name); items != object.end()) {
                std::ranges::for_each(*items, add);
            }
        }
    });
    return values;
}

Json WholeRow(const standin::Row& row)
{
    Json whole = Json::object();
    for (const standin::Field& field : row.Description().fields) {
        whole.emplace(field.name, sources::ValueToJson(field.kind, row.Bytes(field)));
    }
    const Json sparse = sources::RowToJson(row);
    for (const standin::List& list : row.Description().lists) {
        if (const auto items = sparse.find(list.name); items != sparse.end()) {
            whole.emplace(list.name, Json(*items));
        }
    }
    return whole;
}

std::string ValueText(const standin::Table& table, std::string_view field, const Json& value)
{
    const auto names = ValueNames(table.name, field);
    const std::string name(value.is_number() ? NameOf(names, value) : "");
    const std::string text = value.is_null() ? "none" : OneLine(value);
    return name.empty() ? text : text + " (" + name + ")";
}

std::string InterfaceName(uint32_t ifIndex)
{
    const auto row = standin::Find(standin::Row("if_base").Set("if_index", ifIndex));
    return row ? std::string(row->Text("if_name")) : "";
}

std::string WithInterfaceName(uint32_t ifIndex)
{
    const std::string name = InterfaceName(ifIndex);
    return std::to_string(ifIndex) + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace shell
