// The definition of the tables. Field reads, record accessors, keys, conditions, lists and the JSON
// format are derived from it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace standin {

enum class Kind : uint8_t {
    Number,  // unsigned, little-endian, 1, 2 or 4 bytes
    Ipv4,    // a 4-byte number whose most significant byte is the first octet
    Mac,     // 6 bytes, first byte first
    Text,    // its width includes a NUL, unless the field is unterminated
    Set,     // bit i is byte i / 8, mask 0x80 >> i % 8
};

struct Field {
    std::string_view name;
    uint32_t number;
    Kind kind;
    uint32_t offset;            // in the record, or in the list item
    uint32_t width;             // bytes
    bool unterminated = false;  // a text that may fill its whole width
};

// The maximum length of a text in a field.
constexpr uint32_t LongestText(const Field& field)
{
    return field.unterminated ? field.width : field.width - 1;
}

// The members are contiguous in the record, so that a key is a range of its bytes.
struct Key {
    std::string_view name;
    std::span<const Field* const> members;
    uint32_t offset;
    uint32_t width;
};

inline constexpr uint32_t LONGEST_KEY = 68;

struct List {
    std::string_view name;
    std::span<const Field> fields;
    uint32_t itemSize;
};

struct Table {
    std::string_view name;
    uint32_t recordSize;
    std::span<const Field> fields;
    std::span<const Key> keys;  // the first is the primary key
    std::span<const List> lists;
};

std::span<const Table> Tables();

constexpr bool IsInPrimaryKey(const Table& table, const Field& field)
{
    for (const Field* member : table.keys.front().members) {
        if (member == &field) {
            return true;
        }
    }
    return false;
}

// Returns null if there is no table of that name.
const Table* FindTable(std::string_view name);
const Field* FindField(std::span<const Field> fields, std::string_view name);

}  // namespace standin
