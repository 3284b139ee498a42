#include "sources/json/json_file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

namespace sources {
namespace {

using standin::Table;

using RowSink = std::function<void(standin::Row)>;

// Builds rows while the text is parsed, so that no more than one row is in memory as JSON.
class RowReader final : public nlohmann::json_sax<Json> {
public:
    explicit RowReader(const RowSink& onRow) : onRow_(onRow) {}

    bool null() override { return Add(nullptr); }
    bool boolean(bool value) override { return Add(value); }
    bool number_integer(number_integer_t value) override { return Add(value); }
    bool number_unsigned(number_unsigned_t value) override { return Add(value); }
    bool number_float(number_float_t value, const string_t&) override { return Add(value); }
    bool string(string_t& value) override { return Add(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(size_t) override { return Open(Json::object()); }
    bool start_array(size_t) override { return Open(Json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }
    bool key(string_t& name) override;
    bool parse_error(size_t position, const std::string& token,
                     const nlohmann::detail::exception& error) override;

private:
    // An object or array that has not ended yet. The first is the file's object, the second a
    // table's array, which never holds its rows.
    struct Level {
        Json value;
        std::string key;   // of the member being read
        size_t count = 0;  // elements read so far
    };

    bool Open(Json container);
    bool Close();
    bool Add(Json value);
    void AddRow(const Json& value);
    void Check(const Json& value) const;
    template <typename Action>
    void Here(const Action& action) const;
    std::string Path() const;
    [[noreturn]] void Refuse(const std::string& reason) const { throw JsonError(reason, Path()); }

    const RowSink& onRow_;
    const Table* table_ = nullptr;
    std::vector<Level> levels_;
};

bool RowReader::key(string_t& name)
{
    Level& level = levels_.back();
    level.key = std::move(name);
    if (level.value.contains(level.key)) {
        Refuse("is given twice");
    }
    if (levels_.size() == 1) {
        table_ = standin::FindTable(level.key);
        if (table_ == nullptr) {
            Refuse("there is no such table");
        }
    }
    return true;
}

bool RowReader::parse_error(size_t, const std::string&, const nlohmann::detail::exception& error)
{
    const std::string text = error.what();
    const size_t place = text.find("line ");
    if (place == std::string::npos) {
        Refuse(text.substr(text.find("] ") + 2));
    }
    throw JsonError(text.substr(place));
}

bool RowReader::Open(Json container)
{
    Check(container);
    levels_.push_back({std::move(container), {}, 0});
    return true;
}

bool RowReader::Close()
{
    Json value = std::move(levels_.back().value);
    levels_.pop_back();
    return levels_.empty() || Add(std::move(value));
}

bool RowReader::Add(Json value)
{
    Check(value);
    Level& level = levels_.back();
    if (levels_.size() == 2) {
        AddRow(value);
    } else if (level.value.is_object()) {
        level.value.emplace(level.key, std::move(value));
    } else {
        level.value.push_back(std::move(value));
    }
    ++level.count;
    return true;
}

void RowReader::AddRow(const Json& value)
{
    Here([&] { onRow_(RowFromJson(*table_, value)); });
}

void RowReader::Check(const Json& value) const
{
    if (levels_.empty() && !value.is_object()) {
        RefuseType(value, "an object of tables");
    }
    if (levels_.size() == 1 && !value.is_array()) {
        Here([&] { RefuseType(value, "an array of rows"); });
    }
}

// Runs the action. A JsonError that it throws gets the path from the top of the file.
template <typename Action>
void RowReader::Here(const Action& action) const
{
    try {
        action();
    } catch (const JsonError& error) {
        throw error.Under(Path());
    }
}

std::string RowReader::Path() const
{
    std::string path;
    for (const Level& level : levels_) {
        path += "/" + (level.value.is_array() ? std::to_string(level.count) : level.key);
    }
    return path;
}

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
        std::ifstream text(file, std::ios::binary);
        if (!text) {
            throw standin::Error(std::strerror(errno));
        }
        RowReader reader(onRow);
        Json::sax_parse(text, &reader);
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
