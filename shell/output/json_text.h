// Formats JSON values as plain text, on one line or as tables.
#pragma once

#include <string>
#include <vector>

#include "sources/json/json_error.h"

namespace shell {

using sources::Json;

// Escapes control characters and bytes that are not valid UTF-8 ("\x1b"), so that external text
// can't send control sequences to the terminal. Printable text is returned as it is.
std::string EscapeControls(const std::string& text);

// A string without quotes, any other value as JSON.
std::string Bare(const Json& value);

// A value on one line, escaped: strings without quotes, elements of an array joined by commas,
// members of an object as NAME=VALUE.
std::string OneLine(const Json& value);

// Rows as aligned columns. Widths and alignment follow from the first rows; a longer value in a
// later row moves the rest of its line. Columns of numbers are right-aligned. Interface indexes are
// followed by the interface's name unless the row has an "if_name".
class TextTable {
public:
    TextTable(const std::vector<std::string>& names, const Json& firstRows);

    std::string Header() const;
    std::string Row(const Json& row) const;
    // The text of one member; empty if the row has no such member.
    static std::string Cell(const Json& row, const std::string& column);

private:
    struct TextColumn {
        std::string name;
        bool rightAligned;
        size_t width;
    };

    template <typename CellText>
    std::string Line(const CellText& cellText) const;

    std::vector<TextColumn> columns_;
};

// An array of objects as a table: a column for each member that occurs.
std::string TableText(const Json& rows);

}  // namespace shell
