// Reads the rows of a JSON text one by one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sources/json/json_place.h"
#include "sources/json/json_row.h"

namespace sources {

using RowSink = std::function<void(standin::Row)>;

// Builds rows while the text is parsed, so that no more than one row is in memory as JSON. After an
// error the rest is read too, as far as it can be, so that more errors are found.
class RowReader final : public nlohmann::json_sax<Json> {
public:
    RowReader(PlacedText& text, const RowSink& onRow) : text_(text), onRow_(onRow) {}

    // "line 12, column 5: /port/3/pvid: 70000 is out of range 0 to 65535", in the order of the
    // text; at most MOST_ERRORS.
    const std::vector<std::string>& Errors() const { return errors_; }

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
    static constexpr size_t MOST_ERRORS = 10;

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
    bool AddValue(Json value);
    void AddRow(const Json& row);
    void NotePlace();
    bool IsExpected(const Json& value);
    bool KeepsReading() const { return errors_.size() < MOST_ERRORS; }
    void Note(const TextPlace& place, const JsonError& error);
    std::string Path() const;

    PlacedText& text_;
    const RowSink& onRow_;
    const standin::Table* table_ = nullptr;  // null: its rows are skipped
    std::vector<Level> levels_;
    std::vector<TextPlace> places_;  // of the values of the row being read
    bool isRowWrong_ = false;        // has an error already
    std::vector<std::string> errors_;
};

}  // namespace sources
