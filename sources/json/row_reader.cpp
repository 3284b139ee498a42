#include "sources/json/row_reader.h"

#include <utility>

namespace sources {

bool RowReader::key(string_t& name)
{
    Level& level = levels_.back();
    level.key = std::move(name);
    const bool isKnown = level.value.contains(level.key);
    if (isKnown) {
        Note(text_.TokenBegin(), JsonError("is given twice", Path()));
        isRowWrong_ = true;
    }
    if (levels_.size() == 1) {
        table_ = standin::FindTable(level.key);
        if (table_ == nullptr && !isKnown) {
            Note(text_.TokenBegin(), JsonError("there is no such table", Path()));
        }
    }
    text_.EndToken();
    return KeepsReading();
}

// The text can't be read any further.
bool RowReader::parse_error(size_t, const std::string&, const nlohmann::detail::exception& error)
{
    const std::string text = error.what();
    const size_t place = text.find("line ");
    if (place == std::string::npos) {
        Note(text_.TokenBegin(), JsonError(text.substr(text.find("] ") + 2), Path()));
    } else {
        errors_.push_back(text.substr(place));
    }
    return false;
}

bool RowReader::Open(Json container)
{
    NotePlace();
    if (!IsExpected(container)) {
        return false;
    }
    levels_.push_back({std::move(container), {}, 0});
    return true;
}

bool RowReader::Close()
{
    text_.EndToken();
    Json value = std::move(levels_.back().value);
    levels_.pop_back();
    return levels_.empty() || AddValue(std::move(value));
}

bool RowReader::Add(Json value)
{
    NotePlace();
    return IsExpected(value) && AddValue(std::move(value));
}

// False where the text can't be read any further.
bool RowReader::AddValue(Json value)
{
    Level& level = levels_.back();
    if (levels_.size() == 2) {
        AddRow(value);
    } else if (level.value.is_object()) {
        level.value.emplace(level.key, std::move(value));
    } else {
        level.value.push_back(std::move(value));
    }
    ++level.count;
    return KeepsReading();
}

void RowReader::AddRow(const Json& row)
{
    if (table_ == nullptr || isRowWrong_) {
        return;
    }
    try {
        onRow_(RowFromJson(*table_, row));
    } catch (const JsonError& error) {
        Note(places_[ValueNumber(row, error.Path())], error.Under(Path()));
    }
}

// At the begin of each value.
void RowReader::NotePlace()
{
    if (levels_.size() == 2) {
        places_.clear();
        isRowWrong_ = false;
    }
    if (levels_.size() >= 2) {
        places_.push_back(text_.TokenBegin());
    }
    text_.EndToken();
}

// The file is an object of tables, and a table an array of rows.
bool RowReader::IsExpected(const Json& value)
{
    try {
        if (levels_.empty() && !value.is_object()) {
            RefuseType(value, "an object of tables");
        }
        if (levels_.size() == 1 && !value.is_array()) {
            RefuseType(value, "an array of rows");
        }
    } catch (const JsonError& error) {
        Note(text_.TokenBegin(), error.Under(Path()));
        return false;
    }
    return true;
}

void RowReader::Note(const TextPlace& place, const JsonError& error)
{
    errors_.push_back("line " + std::to_string(place.line) + ", column " +
                      std::to_string(place.column) + ": " + error.what());
}

std::string RowReader::Path() const
{
    std::string path;
    for (const Level& level : levels_) {
        path += "/" + (level.value.is_array() ? std::to_string(level.count) : level.key);
    }
    return path;
}

}  // namespace sources
