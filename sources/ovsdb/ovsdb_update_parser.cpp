#include "sources/ovsdb/ovsdb_update_parser.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <utility>

#include "sources/ovsdb/ovsdb_schema.h"

namespace sources::ovsdb {
namespace {

using standin::Field;
using standin::Kind;
using standin::List;
using standin::Table;

size_t CountCharacters(const std::string& utf8)
{
    return static_cast<size_t>(
        std::ranges::count_if(utf8, [](char c) { return (c & '\xC0') != '\x80'; }));
}

void CheckValue(const Field& field, const Json& value, const std::string& what)
{
    if (field.kind == Kind::Number || field.kind == Kind::Set) {
        IntegerOf(value, 0, static_cast<int64_t>(HighestInteger(field)), what);
    } else if (CountCharacters(StringOf(value, what)) > LongestString(field)) {
        throw ProtocolError(what + ": more than " + std::to_string(LongestString(field)) +
                            " characters");
    }
}

// The array in ["set", [...]] or ["map", [...]].
const Json& Collection(const Json& value, const char* kind, const std::string& what)
{
    if (!value.is_array() || value.size() != 2 || value[0] != kind || !value[1].is_array()) {
        throw ProtocolError(what + ": " + Shown(value) + " is not a " + kind);
    }
    return value[1];
}

// Calls onElement for each element; a set of one element may be written as the element itself.
template <typename OnElement>
void CheckSet(const Json& value, const std::string& what, const OnElement& onElement)
{
    if (!value.is_array()) {
        onElement(value);
        return;
    }
    std::set<Json> elements;
    for (const Json& element : Collection(value, "set", what)) {
        onElement(element);
        if (!elements.insert(element).second) {
            throw ProtocolError(what + ": " + Shown(element) + " occurs twice");
        }
    }
}

void CheckMap(const SchemaColumn& column, const Json& value, const std::string& what)
{
    std::set<int64_t> positions;
    for (const Json& pair : Collection(value, "map", what)) {
        const int64_t position = IntegerOf(Element(pair, 0, what), 0, INT32_MAX, what);
        CheckValue(*column.field, Element(pair, 1, what), what);
        if (pair.size() != 2 || !positions.insert(position).second) {
            throw ProtocolError(what + ": position " + std::to_string(position) +
                                " occurs twice or is not a pair");
        }
    }
}

void CheckColumn(const SchemaColumn& column, const Json& value, const std::string& what)
{
    if (column.list != nullptr) {
        CheckMap(column, value, what);
    } else if (column.field->kind == Kind::Set) {
        CheckSet(value, what, [&](const Json& id) { CheckValue(*column.field, id, what); });
    } else {
        CheckValue(*column.field, value, what);
    }
}

void CheckListName(const Table& table, const Json& name, const std::string& what)
{
    if (std::ranges::count(table.lists, StringOf(name, what), &List::name) == 0) {
        throw ProtocolError(what + ": there is no list " + Shown(name));
    }
}

void CheckPlace(const Json& value, const std::string& what)
{
    const bool isSet = value.is_array();
    if (isSet && Collection(value, "set", what).size() > 1) {
        throw ProtocolError(what + ": more than one number");
    }
    CheckSet(value, what, [&](const Json& place) { IntegerOf(place, 0, INT64_MAX, what); });
}

void CheckColumns(const Table& table, const Json& columns, const std::string& row)
{
    RequireObject(columns, row);
    for (const auto& [name, value] : columns.items()) {
        const std::string what = std::string(row).append(": ").append(name);
        if (name == PLACE_COLUMN) {
            CheckPlace(value, what);
        } else if (name == LISTS_COLUMN && !table.lists.empty()) {
            CheckSet(value, what, [&](const Json& list) { CheckListName(table, list, what); });
        } else if (const SchemaColumn* column = FindColumn(table, name)) {
            CheckColumn(*column, value, what);
        } else {
            throw ProtocolError(what + ": there is no such column");
        }
    }
}

constexpr std::pair<const char*, RowEvent> EVENTS[] = {{"initial", RowEvent::Initial},
                                                       {"insert", RowEvent::Insert},
                                                       {"modify", RowEvent::Modify},
                                                       {"delete", RowEvent::Delete}};

RowUpdate ParseUpdate(const Table& table, const std::string& identifier, Json& update)
{
    const std::string row = std::string(table.name) + ": row " + identifier.substr(0, 36);
    const auto id = RowId::Parse(identifier);
    if (!id || !update.is_object() || update.size() != 1) {
        throw ProtocolError(row + ": the update is malformed");
    }
    const std::string& name = update.begin().key();
    const auto* const event =
        std::ranges::find(EVENTS, name, &std::pair<const char*, RowEvent>::first);
    if (event == std::end(EVENTS)) {
        throw ProtocolError(row + ": there is no event " + name.substr(0, 80));
    }
    RowUpdate parsed{&table, *id, event->second, nullptr};
    if (parsed.event != RowEvent::Delete) {
        CheckColumns(table, update.begin().value(), row);
        parsed.columns = std::move(update.begin().value());
    }
    return parsed;
}

std::vector<RowUpdate> ParseAll(Json& tables)
{
    RequireObject(tables, "table updates");
    std::vector<RowUpdate> updates;
    for (auto& [name, rows] : tables.items()) {
        const Table* table = FindTable(name);
        if (table == nullptr) {
            throw ProtocolError("there is no table " + name.substr(0, 80));
        }
        RequireObject(rows, name);
        for (auto& [identifier, update] : rows.items()) {
            updates.push_back(ParseUpdate(*table, identifier, update));
        }
    }
    std::vector<RowId> ids;
    std::ranges::transform(updates, std::back_inserter(ids), &RowUpdate::id);
    std::ranges::sort(ids);
    const auto twice = std::ranges::adjacent_find(ids);
    if (twice != ids.end()) {
        throw ProtocolError("row " + twice->Text() + " is in two tables");
    }
    return updates;
}

}  // namespace

std::optional<RowId> RowId::Parse(std::string_view text)
{
    constexpr std::string_view FORM = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    constexpr std::string_view DIGITS = "0123456789abcdef";
    if (text.size() != FORM.size()) {
        return std::nullopt;
    }
    RowId id{0, 0};
    for (size_t i = 0; i < text.size(); ++i) {
        if (FORM[i] == '-') {
            if (text[i] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const size_t digit = DIGITS.find(text[i]);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        id.high = id.high << 4 | id.low >> 60;
        id.low = id.low << 4 | digit;
    }
    return id;
}

std::string RowId::Text() const
{
    std::array<char, 37> text{};
    std::snprintf(text.data(), text.size(), "%08x-%04x-%04x-%04x-%012llx",
                  static_cast<unsigned>(high >> 32), static_cast<unsigned>(high >> 16 & 0xFFFF),
                  static_cast<unsigned>(high & 0xFFFF), static_cast<unsigned>(low >> 48),
                  static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
    return text.data();
}

std::vector<RowUpdate> ParseContents(Json& tables)
{
    auto updates = ParseAll(tables);
    if (std::ranges::count(updates, RowEvent::Initial, &RowUpdate::event) != std::ssize(updates)) {
        throw ProtocolError("the contents hold another event than initial");
    }
    return updates;
}

std::vector<RowUpdate> ParseChanges(Json& tables)
{
    auto updates = ParseAll(tables);
    if (std::ranges::count(updates, RowEvent::Initial, &RowUpdate::event) != 0) {
        throw ProtocolError("the changes hold initial contents");
    }
    return updates;
}

}  // namespace sources::ovsdb
