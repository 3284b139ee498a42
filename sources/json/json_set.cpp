#include "sources/json/json_set.h"

#include <charconv>

namespace sources {
namespace {

using standin::Field;

// The first id, starting at from, whose bit equals wanted; the number of bits if there is none.
size_t FindId(std::span<const uint8_t> bits, size_t from, bool wanted)
{
    while (from < bits.size() * 8 && ((bits[from / 8] & 0x80U >> from % 8) != 0) != wanted) {
        ++from;
    }
    return from;
}

[[noreturn]] void RefuseText(std::string_view rest)
{
    throw JsonError("ids and ranges such as \"1,10-20\" are expected at \"" + std::string(rest) +
                    "\"");
}

uint32_t TakeId(std::string_view& text, uint32_t highest)
{
    uint32_t id = 0;
    const char* const begin = text.data();
    const auto [end, outOfRange] = std::from_chars(begin, begin + text.size(), id);
    if (end == begin) {
        RefuseText(text);
    }
    if (outOfRange != std::errc() || id > highest) {
        RefuseRange(std::string(begin, end), highest);
    }
    text.remove_prefix(static_cast<size_t>(end - begin));
    return id;
}

bool TakeMark(std::string_view& text, char mark)
{
    const bool taken = text.starts_with(mark);
    text.remove_prefix(taken ? 1 : 0);
    return taken;
}

void AddRanges(standin::Row& row, const Field& field, std::string_view text)
{
    const uint32_t highest = field.width * 8 - 1;
    do {
        const uint32_t first = TakeId(text, highest);
        const uint32_t last = TakeMark(text, '-') ? TakeId(text, highest) : first;
        if (last < first) {
            throw JsonError("the range " + std::to_string(first) + "-" + std::to_string(last) +
                            " runs backwards");
        }
        row.AddToSet(field.name, first, last);
    } while (TakeMark(text, ','));
    if (!text.empty()) {
        RefuseText(text);
    }
}

void AddIds(standin::Row& row, const Field& field, const Json& value)
{
    if (value.is_string()) {
        AddRanges(row, field, value.get_ref<const std::string&>());
    } else {
        const auto id = static_cast<uint32_t>(WholeNumber(value, field.width * 8 - 1));
        row.AddToSet(field.name, id, id);
    }
}

}  // namespace

// A range has at least three ids; two are written separately.
Json SetToJson(std::span<const uint8_t> bits)
{
    Json ids = Json::array();
    const size_t size = bits.size() * 8;
    for (size_t first = FindId(bits, 0, true); first < size;) {
        const size_t end = FindId(bits, first, false);
        if (end - first > 2) {
            ids.push_back(std::to_string(first) + "-" + std::to_string(end - 1));
        } else {
            for (size_t id = first; id < end; ++id) {
                ids.push_back(id);
            }
        }
        first = FindId(bits, end, true);
    }
    return ids;
}

void AddSet(standin::Row& row, const Field& field, const Json& value)
{
    if (value.is_string()) {
        AddIds(row, field, value);
    } else if (value.is_array()) {
        for (const Json& ids : value) {
            AddIds(row, field, ids);
        }
    } else {
        RefuseType(value, "a list of ids and ranges such as [1, \"10-20\"]");
    }
}

}  // namespace sources
