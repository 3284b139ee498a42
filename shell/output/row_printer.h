// Prints rows incrementally: the first rows are printed before the last ones are read.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "shell/output/printer.h"

namespace shell {

// As a table, or with one field per line; as JSON an array on one line.
class RowPrinter {
public:
    RowPrinter(Printer& printer, std::vector<std::string> columns, bool fieldPerLine)
        : printer_(printer), columns_(std::move(columns)), fieldPerLine_(fieldPerLine)
    {
    }

    void Print(Json row);
    // Must be called after the last row.
    void Finish();

private:
    static constexpr size_t SAMPLE_ROWS = 100;  // determine the widths of the columns

    void PrintSample();
    void PrintFields(const Json& row);

    Printer& printer_;
    const std::vector<std::string> columns_;
    const bool fieldPerLine_;
    size_t count_ = 0;
    Json sample_ = Json::array();
    std::optional<TextTable> table_;
};

}  // namespace shell
