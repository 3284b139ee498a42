#include "session/scan_condition.h"

#include <charconv>

namespace standin {

namespace {

using Bytes = std::vector<uint8_t>;

// Parses the whole text as a number; no value if it is not one.
std::optional<uint32_t> ParseNumber(std::string_view text, int base)
{
    uint32_t number = 0;
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, base);
    const bool whole = error == std::errc() && stop == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

std::optional<Bytes> NumberBytes(const Field& field, std::string_view text)
{
    const auto number = ParseNumber(text, 10);
    if (!number || (field.width < 4 && *number >> 8 * field.width != 0)) {
        return std::nullopt;
    }
    Bytes bytes(field.width);
    std::memcpy(bytes.data(), &*number, field.width);
    return bytes;
}

// Parses "0x" and two digits for each byte of the field.
std::optional<Bytes> HexadecimalBytes(const Field& field, std::string_view text)
{
    if (!text.starts_with("0x") || text.size() != 2 + 2 * size_t{field.width}) {
        return std::nullopt;
    }
    Bytes bytes;
    for (size_t at = 2; at < text.size(); at += 2) {
        const auto byte = ParseNumber(text.substr(at, 2), 16);
        if (!byte) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<uint8_t>(*byte));
    }
    return bytes;
}

std::optional<Bytes> TextBytes(const Field& field, std::string_view text)
{
    if (text.size() > LongestText(field)) {
        return std::nullopt;
    }
    Bytes bytes(text.begin(), text.end());
    bytes.resize(field.width);
    return bytes;
}

std::optional<Bytes> ValueBytes(const Field& field, std::string_view text)
{
    if (field.kind == Kind::Number || field.kind == Kind::Ipv4) {
        return NumberBytes(field, text);
    }
    if (auto bytes = HexadecimalBytes(field, text)) {
        return bytes;
    }
    return field.kind == Kind::Text ? TextBytes(field, text) : std::nullopt;
}

}  // namespace

std::optional<ScanCondition> ScanCondition::Parse(const Table& table, std::string_view text)
{
    constexpr std::string_view EQUALS = " = ";
    constexpr std::string_view JOINT = " and ";
    ScanCondition condition;
    for (;;) {
        const size_t sign = text.find(EQUALS);
        if (sign == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view field = text.substr(0, sign);
        text.remove_prefix(sign + EQUALS.size());
        // A value contains no blank; the value may be "and".
        const std::string_view value = text.substr(0, text.find(' '));
        text.remove_prefix(value.size());
        if (!condition.AddTerm(table, field, value)) {
            return std::nullopt;
        }
        if (text.empty()) {
            return condition;
        }
        if (!text.starts_with(JOINT)) {
            return std::nullopt;
        }
        text.remove_prefix(JOINT.size());
    }
}

bool ScanCondition::AddTerm(const Table& table, std::string_view name, std::string_view value)
{
    const Field* field = FindField(table.fields, name);
    if (field == nullptr || value.empty()) {
        return false;
    }
    auto bytes = ValueBytes(*field, value);
    if (!bytes) {
        return false;
    }
    terms_.push_back({field->offset, std::move(*bytes)});
    return true;
}

}  // namespace standin
