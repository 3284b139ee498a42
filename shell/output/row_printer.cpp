#include "shell/output/row_printer.h"

#include <algorithm>
#include <utility>

namespace shell {

void RowPrinter::Print(Json row)
{
    ++count_;
    if (printer_.IsJson()) {
        printer_.PrintRaw(count_ == 1 ? "[" : ",");
        printer_.PrintValue(row);
    } else if (fieldPerLine_) {
        PrintFields(row);
    } else if (table_) {
        printer_.PrintRaw(table_->Row(row));
    } else {
        sample_.push_back(std::move(row));
        if (sample_.size() == SAMPLE_ROWS) {
            PrintSample();
        }
    }
}

void RowPrinter::Finish()
{
    if (printer_.IsJson()) {
        printer_.PrintRaw(count_ == 0 ? "[]\n" : "]\n");
    } else if (!fieldPerLine_ && !table_) {
        PrintSample();
    }
}

void RowPrinter::PrintSample()
{
    table_.emplace(columns_, sample_);
    std::string text = table_->Header();
    for (const Json& row : sample_) {
        text += table_->Row(row);
    }
    sample_.clear();
    printer_.PrintRaw(text);
    printer_.Flush();
}

void RowPrinter::PrintFields(const Json& row)
{
    const size_t width = std::ranges::max(columns_, {}, &std::string::size).size() + 2;
    std::string text = count_ > 1 ? "\n" : "";
    for (const std::string& column : columns_) {
        text +=
            column + std::string(width - column.size(), ' ') + TextTable::Cell(row, column) + "\n";
    }
    printer_.PrintRaw(text);
}

}  // namespace shell
