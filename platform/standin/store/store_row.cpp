// Construction and inspection of rows outside the database.
#include <algorithm>
#include <cstring>

#include "standin/store.h"

namespace standin {

namespace {

[[noreturn]] void Refuse(const Table& table, std::string_view name, std::string_view reason)
{
    throw Error(std::string(table.name) + "." + std::string(name) + ": " + std::string(reason));
}

const Table& TableNamed(std::string_view name)
{
    const Table* table = FindTable(name);
    return table != nullptr ? *table : throw Error("no table " + std::string(name));
}

// The field with this name, which must be of one of the kinds.
const Field& FieldNamed(const Table& table, std::string_view name,
                        std::initializer_list<Kind> kinds, std::string_view otherwise)
{
    const Field* field = FindField(table.fields, name);
    if (field == nullptr) {
        Refuse(table, name, "no such field");
    }
    if (std::ranges::find(kinds, field->kind) == kinds.end()) {
        Refuse(table, name, otherwise);
    }
    return *field;
}

const Field& NumberField(const Table& table, std::string_view name)
{
    return FieldNamed(table, name, {Kind::Number, Kind::Ipv4}, "not a number");
}

const Field& TextField(const Table& table, std::string_view name)
{
    return FieldNamed(table, name, {Kind::Text}, "not a text");
}

size_t ListNamed(const Table& table, std::string_view name)
{
    const auto found = std::ranges::find(table.lists, name, &List::name);
    if (found == table.lists.end()) {
        Refuse(table, name, "no such list");
    }
    return static_cast<size_t>(found - table.lists.begin());
}

bool Fits(uint64_t number, const Field& field)
{
    return number >> 8 * field.width == 0;
}

}  // namespace

Row::Row(const Table& table) : table_(&table), record_(table.recordSize), lists_(table.lists.size())
{
}

Row::Row(std::string_view table) : Row(TableNamed(table)) {}

Row& Row::Set(std::string_view field, uint64_t number)
{
    const Field& found = NumberField(*table_, field);
    if (!Fits(number, found)) {
        Refuse(*table_, field, std::to_string(number) + " is too large");
    }
    std::memcpy(&record_[found.offset], &number, found.width);
    return *this;
}

Row& Row::Set(std::string_view field, std::string_view text)
{
    const Field& found = TextField(*table_, field);
    if (text.size() > LongestText(found)) {
        Refuse(*table_, field, "longer than " + std::to_string(LongestText(found)) + " characters");
    }
    if (text.find('\0') != std::string_view::npos) {
        Refuse(*table_, field, "NUL in the text");
    }
    const auto rest = std::ranges::copy(text, &record_[found.offset]).out;
    std::fill(rest, &record_[found.offset] + found.width, uint8_t{0});
    return *this;
}

Row& Row::SetBytes(std::string_view field, std::span<const uint8_t> bytes)
{
    const Field& found =
        FieldNamed(*table_, field, {Kind::Mac, Kind::Set}, "neither a MAC address nor a set");
    if (bytes.size() != found.width) {
        Refuse(*table_, field, "not " + std::to_string(found.width) + " bytes");
    }
    std::ranges::copy(bytes, &record_[found.offset]);
    return *this;
}

Row& Row::AddToSet(std::string_view field, uint32_t first, uint32_t last)
{
    const Field& found = FieldNamed(*table_, field, {Kind::Set}, "not a set");
    if (first > last || last >= 8 * found.width) {
        Refuse(*table_, field,
               std::to_string(first) + "-" + std::to_string(last) + " is out of range");
    }
    for (uint32_t bit = first; bit <= last; bit++) {
        uint8_t& byte = record_[found.offset + bit / 8];
        byte = static_cast<uint8_t>(byte | 0x80 >> bit % 8);
    }
    return *this;
}

Row& Row::MakeList(std::string_view list)
{
    auto& items = lists_[ListNamed(*table_, list)];
    if (!items) {
        items.emplace();
    }
    return *this;
}

Row& Row::AddItem(std::string_view list, std::span<const uint64_t> values)
{
    const size_t place = ListNamed(*table_, list);
    const List& description = table_->lists[place];
    if (values.size() != description.fields.size()) {
        Refuse(*table_, list,
               "an item has " + std::to_string(description.fields.size()) + " values");
    }
    std::vector<uint8_t> item(description.itemSize);
    for (size_t value = 0; value < values.size(); value++) {
        const Field& field = description.fields[value];
        if (!Fits(values[value], field)) {
            Refuse(*table_, list, std::string(field.name) + " is too large");
        }
        std::memcpy(&item[field.offset], &values[value], field.width);
    }
    MakeList(list);
    lists_[place]->insert(lists_[place]->end(), item.begin(), item.end());
    return *this;
}

Row& Row::SetRank(uint64_t rank)
{
    rank_ = rank;
    return *this;
}

uint64_t Row::Number(std::string_view field) const
{
    const Field& found = NumberField(*table_, field);
    uint64_t number = 0;
    std::memcpy(&number, &record_[found.offset], found.width);
    return number;
}

std::string_view Row::Text(std::string_view field) const
{
    const Field& found = TextField(*table_, field);
    const auto* text = reinterpret_cast<const char*>(&record_[found.offset]);
    return {text, strnlen(text, found.width)};
}

std::span<const uint8_t> Row::Bytes(const Field& field) const
{
    return std::span(record_).subspan(field.offset, field.width);
}

std::optional<std::span<const uint8_t>> Row::Items(size_t list) const
{
    return lists_[list] ? std::optional<std::span<const uint8_t>>(*lists_[list]) : std::nullopt;
}

std::string RowName(const Row& row, const Key& key)
{
    std::string name(row.Description().name);
    for (const Field* member : key.members) {
        name += member == key.members.front() ? ": " : ", ";
        name += member->name;
        if (member->kind == Kind::Text) {
            name += " \"" + std::string(row.Text(member->name)) + '"';
        } else if (member->kind == Kind::Ipv4) {
            name += " " + Ipv4ToText(static_cast<uint32_t>(row.Number(member->name)));
        } else {
            name += " " + std::to_string(row.Number(member->name));
        }
    }
    return name;
}

std::string Ipv4ToText(uint32_t address)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += (text.empty() ? "" : ".") + std::to_string(address >> shift & 0xFF);
    }
    return text;
}

}  // namespace standin
