#include "shell/output/json_text.h"

#include <algorithm>
#include <vector>

#include "shell/table_lookup.h"

namespace shell {
namespace {

struct TextColumn {
    std::string name;
    std::vector<std::string> cells;
    bool numbers = true;
    size_t width = 0;
};

// Characters, not bytes.
size_t WidthOf(const std::string& text)
{
    return static_cast<size_t>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Padded(const std::string& text, size_t width, bool toTheRight)
{
    const std::string blanks(width - std::min(width, WidthOf(text)), ' ');
    return toTheRight ? blanks + text : text + blanks;
}

std::vector<std::string> Names(const Json& rows)
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

TextColumn MakeColumn(const std::string& name, const Json& rows)
{
    TextColumn column{name, {}, true, WidthOf(name)};
    for (const Json& row : rows) {
        const auto found = row.find(name);
        column.cells.push_back(found != row.end() ? OneLine(*found) : "");
        column.numbers &= found == row.end() || found->is_number();
        column.width = std::max(column.width, WidthOf(column.cells.back()));
    }
    return column;
}

std::string TextLine(const std::vector<TextColumn>& columns, const auto& textOf)
{
    std::string line;
    for (const TextColumn& column : columns) {
        line += (line.empty() ? "" : "  ") + Padded(textOf(column), column.width, column.numbers);
    }
    return line.erase(line.find_last_not_of(' ') + 1) + "\n";
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
        text += (text.empty() ? "" : " ") + member.key() + "=" +
                (member.value().is_object() ? "(" + OneLine(member.value()) + ")"
                                            : OneLine(member.value()));
    }
    return text;
}

}  // namespace

std::string TextTable(const Json& rows)
{
    std::vector<TextColumn> columns;
    for (const std::string& name : Names(rows)) {
        columns.push_back(MakeColumn(name, rows));
    }
    std::string text = TextLine(columns, [](const TextColumn& column) { return column.name; });
    for (size_t i = 0; i < rows.size(); ++i) {
        text += TextLine(columns, [i](const TextColumn& column) { return column.cells[i]; });
    }
    return text;
}

std::string OneLine(const Json& value)
{
    if (value.is_array()) {
        return !value.empty() && value[0].is_object() ? "{" + Joined(value) + "}" : Joined(value);
    }
    return value.is_object() ? Members(value) : Bare(value);
}

}  // namespace shell
