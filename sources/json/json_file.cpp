#include "sources/json/json_file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

#include "sources/json/row_reader.h"

namespace sources {
namespace {

using standin::Table;

// Like Json::dump on one line, with a space after each comma and colon.
std::string Line(const Json& value)
{
    if (!value.is_structured()) {
        return value.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    std::string line;
    for (const auto& member : value.items()) {
        line += line.empty() ? "" : ", ";
        line += value.is_object() ? Line(member.key()) + ": " : "";
        line += Line(member.value());
    }
    return value.is_object() ? "{" + line + "}" : "[" + line + "]";
}

std::string RowsOf(const Table& table)
{
    std::string rows;
    standin::ForEachRow(table, [&](const standin::Row& row) {
        rows += rows.empty() ? "\n    " : ",\n    ";
        rows += Line(RowToJson(row));
    });
    return rows.empty() ? "[]" : "[" + rows + "\n  ]";
}

std::string Dump(std::span<const Table> tables)
{
    std::string text;
    for (const Table& table : tables) {
        text += text.empty() ? "{\n  " : ",\n  ";
        text += Line(std::string(table.name)) + ": " + RowsOf(table);
    }
    return text + "\n}\n";
}

std::string Joined(const std::vector<std::string>& texts, const std::string& separator)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : separator) + text;
    }
    return all;
}

// Runs the action. An error that it throws gets the name of the file in front.
template <typename Action>
void NamingFile(const std::filesystem::path& file, const Action& action)
{
    try {
        action();
    } catch (const std::runtime_error& error) {
        throw standin::Error(file.string() + ": " + error.what());
    }
}

}  // namespace

void ReadJson(const std::filesystem::path& file, const RowSink& onRow)
{
    NamingFile(file, [&] {
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            throw standin::Error(std::strerror(errno));
        }
        PlacedText text(*stream.rdbuf());
        RowReader reader(text, onRow);
        Json::sax_parse(PlacedText::Iterator(text), PlacedText::Iterator(), &reader);
        if (!reader.Errors().empty()) {
            throw standin::Error(Joined(reader.Errors(), "\n" + file.string() + ": "));
        }
    });
}

void LoadJson(const std::filesystem::path& file, const std::function<void()>& onRow)
{
    standin::Transaction transaction;
    ReadJson(file, [&](standin::Row row) {
        transaction.Insert(std::move(row));
        onRow();
    });
    NamingFile(file, [&] { transaction.Commit(); });
}

std::string DumpJson()
{
    return Dump(standin::Tables());
}

std::string DumpJson(const Table& table)
{
    return Dump({&table, 1});
}

}  // namespace sources
