// Condition texts. An accepted condition selects the same rows as an oracle that compares texts; a
// condition rendered from a row is accepted.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm.h>

#include "fuzz.h"

using namespace standin;

namespace {

constexpr std::string_view joint = " and ";
constexpr std::string_view equals = " = ";

Row MakeRow(const Table& table, uint64_t seed)
{
    constexpr std::string_view texts[] = {"and", "Vlanif10", "0x61", "10"};
    Row row(table);
    for (const Field& field : table.fields) {
        if (field.kind == Kind::Number || field.kind == Kind::Ipv4) {
            row.Set(field.name, field.width < 4 ? seed : seed * 0x01010101U);
        } else if (field.kind == Kind::Text) {
            row.Set(field.name, texts[seed]);
        } else {
            row.SetBytes(field.name,
                         std::vector<uint8_t>(field.width, static_cast<uint8_t>(seed * 0x51)));
        }
    }
    return row;
}

// The values that a condition may compare a field with.
struct Value {
    std::string plain;
    std::string literal;
};

Value Rendered(const Row& row, const Field& field)
{
    if (field.kind == Kind::Number || field.kind == Kind::Ipv4) {
        const std::string number = std::to_string(row.Number(field.name));
        return {number, number};
    }
    constexpr std::string_view digits = "0123456789abcdef";
    std::string literal = "0x";
    for (const uint8_t byte : row.Bytes(field)) {
        literal += {digits[byte >> 4], digits[byte & 15]};
    }
    return {field.kind == Kind::Text ? std::string(row.Text(field.name)) : literal, literal};
}

struct Described {
    const Table& table;
    std::vector<Value> values;  // by field
};

// Rows in the database, and possible values for conditions.
std::vector<Described> MakeRows()
{
    std::vector<Described> rows;
    Transaction transaction;
    for (const Table& table : Tables()) {
        for (uint64_t seed = 0; seed < 4; seed++) {
            const Row row = MakeRow(table, seed);
            transaction.Insert(row);
            rows.push_back({table, {}});
            for (const Field& field : table.fields) {
                rows.back().values.push_back(Rendered(row, field));
            }
        }
    }
    transaction.Commit();
    return rows;
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    for (char& character : lower) {
        character =
            character >= 'A' && character <= 'F' ? static_cast<char>(character | 0x20) : character;
    }
    return lower;
}

std::string WithoutLeadingZeros(std::string_view number)
{
    const size_t digits = number.find_first_not_of('0');
    return std::string(digits == std::string_view::npos ? "0" : number.substr(digits));
}

bool Describes(std::string_view term, const Described& row)
{
    const size_t at = term.find(equals);
    const std::string_view value = term.substr(at + equals.size());
    const Field* field = FindField(row.table.fields, term.substr(0, at));
    CHECK(at != std::string_view::npos && field != nullptr);
    const auto& [plain, literal] = row.values[static_cast<size_t>(field - row.table.fields.data())];
    if (field->kind == Kind::Number || field->kind == Kind::Ipv4) {
        return plain == WithoutLeadingZeros(value);
    }
    return plain == value || literal == Lower(value);
}

bool AllDescribe(std::string_view text, const Described& row)
{
    const size_t end = text.find(' ', text.find(equals) + equals.size());
    return Describes(text.substr(0, end), row) &&
           (end == std::string_view::npos || AllDescribe(text.substr(end + joint.size()), row));
}

std::string DescribeSome(fuzz::Input& input, const Described& row)
{
    std::string text;
    do {
        const size_t field = input.ConsumeIntegralInRange<size_t>(0, row.values.size() - 1);
        text += text.empty() ? "" : joint;
        text += std::string(row.table.fields[field].name) + std::string(equals);
        text += input.ConsumeBool() ? row.values[field].plain : row.values[field].literal;
    } while (input.ConsumeBool());
    return text;
}

ptrdiff_t CountSelected(ORM_SESSION session)
{
    ORM_SCAN scan = 0;
    uint8_t end = 0;
    ptrdiff_t count = 0;
    CHECK(OrmScanStart(session, &scan) == 0);
    while (OrmScanNext(session, scan, &end) == 0 && end == 0) {
        count++;
    }
    CHECK(end == 1);
    CHECK(OrmScanEnd(session, scan) == 0);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<Described> rows = MakeRows();

    fuzz::Input input(data, size);
    const Described& described = rows[input.ConsumeIntegralInRange<size_t>(0, rows.size() - 1)];
    const Table& table = described.table;
    const bool mustWork = input.ConsumeBool();
    const std::string text =
        mustWork ? DescribeSome(input, described) : input.ConsumeRemainingBytesAsString();

    ORM_SESSION session = 0;
    CHECK(OrmOpenSessionByDefault(&session) == 0);
    CHECK(OrmPrepare(session, std::string(table.name).c_str(), QRB_ORM_OP_SCAN) == 0);
    const bool accepted = OrmSetScanCond(session, text.c_str()) == 0;
    CHECK(accepted || !mustWork);
    if (accepted) {
        const auto expected = std::ranges::count_if(rows, [&](const Described& row) {
            return &row.table == &table && AllDescribe(text.c_str(), row);
        });
        CHECK(CountSelected(session) == expected);
        CHECK(!mustWork || AllDescribe(text, described));
    }
    CHECK(OrmCloseSession(session) == 0);
    return 0;
}
