#include "shell/output/json_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "shell/table_lookup.h"

namespace shell {
namespace {

// Length of the UTF-8 character at the start of the text; 0 if the encoding is invalid.
size_t CharacterLength(std::string_view text)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const size_t length = byte(0) < 0x80                      ? 1
                          : byte(0) >= 0xC2 && byte(0) < 0xE0 ? 2
                          : byte(0) >= 0xE0 && byte(0) < 0xF0 ? 3
                          : byte(0) >= 0xF0 && byte(0) < 0xF5 ? 4
                                                              : 0;
    if (length > text.size()) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

bool IsControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character[0]);
    const bool isC1 = first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
    return first < 0x20 || first == 0x7F || isC1;
}

bool IsInterfaceIndex(std::string_view name)
{
    return name == "if_index" || name == "ifIndex" || name == "out_if_index";
}

// Formats a member's value. An interface index is followed by the interface's name.
std::string MemberText(const Json& object, const std::string& name, const Json& value)
{
    if (value.is_number() && IsInterfaceIndex(name) && !object.contains("if_name")) {
        return EscapeControls(WithInterfaceName(value));
    }
    return OneLine(value);
}

// Counts characters, not bytes.
size_t WidthOf(const std::string& text)
{
    return static_cast<size_t>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Padded(const std::string& text, size_t width, bool rightAligned)
{
    const std::string blanks(width - std::min(width, WidthOf(text)), ' ');
    return rightAligned ? blanks + text : text + blanks;
}

bool IsNumeric(const std::string& cell)
{
    return cell.find_first_not_of("0123456789") == std::string::npos;
}

std::vector<std::string> ColumnsOf(const Json& rows)
{
    std::vector<std::string> names;
    for (const Json& row : rows) {
        for (const auto& member : row.items()) {
            if (std::ranges::find(names, member.key()) == names.end()) {
                names.push_back(member.key());
            }
        }
    }
    return names;
}

std::string Joined(const Json& values)
{
    std::string text;
    for (const Json& value : values) {
        text += (text.empty() ? "" : ",") + OneLine(value);
    }
    return text;
}

std::string Members(const Json& object)
{
    std::string text;
    for (const auto& member : object.items()) {
        text += (text.empty() ? "" : " ") + EscapeControls(member.key()) + "=" +
                (member.value().is_object() ? "(" + OneLine(member.value()) + ")"
                                            : MemberText(object, member.key(), member.value()));
    }
    return text;
}

}  // namespace

std::string EscapeControls(const std::string& text)
{
    std::string escaped;
    for (std::string_view left = text; !left.empty();) {
        const size_t length = CharacterLength(left);
        if (length > 0 && !IsControl(left.substr(0, length))) {
            escaped += left.substr(0, length);
        } else {
            for (const char c : left.substr(0, std::max<size_t>(length, 1))) {
                std::array<char, 5> code{};
                std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned char>(c));
                escaped += code.data();
            }
        }
        left.remove_prefix(std::max<size_t>(length, 1));
    }
    return escaped;
}

std::string Bare(const Json& value)
{
    return value.is_string() ? value.get<std::string>()
                             : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string OneLine(const Json& value)
{
    if (value.is_array()) {
        return !value.empty() && value[0].is_object() ? "{" + Joined(value) + "}" : Joined(value);
    }
    return value.is_object() ? Members(value) : EscapeControls(Bare(value));
}

TextTable::TextTable(const std::vector<std::string>& names, const Json& firstRows)
{
    for (const std::string& name : names) {
        TextColumn column{name, true, WidthOf(name)};
        for (const Json& row : firstRows) {
            const std::string cell = Cell(row, name);
            column.rightAligned &= IsNumeric(cell);
            column.width = std::max(column.width, WidthOf(cell));
        }
        columns_.push_back(column);
    }
}

template <typename CellText>
std::string TextTable::Line(const CellText& cellText) const
{
    std::string line;
    for (const TextColumn& column : columns_) {
        line += (&column == columns_.data() ? "" : "  ") +
                Padded(cellText(column), column.width, column.rightAligned);
    }
    return line.erase(line.find_last_not_of(' ') + 1) + "\n";
}

std::string TextTable::Cell(const Json& row, const std::string& column)
{
    const auto found = row.find(column);
    return found != row.end() ? MemberText(row, column, *found) : "";
}

std::string TextTable::Header() const
{
    return Line([](const TextColumn& column) { return column.name; });
}

std::string TextTable::Row(const Json& row) const
{
    return Line([&](const TextColumn& column) { return Cell(row, column.name); });
}

std::string TableText(const Json& rows)
{
    const TextTable table(ColumnsOf(rows), rows);
    std::string text = table.Header();
    for (const Json& row : rows) {
        text += table.Row(row);
    }
    return text;
}

}  // namespace shell
