// Condition texts. What is accepted selects the rows that the text describes, by a second opinion
// that compares texts; and a text that describes a row is accepted.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <standin/database.h>
#include <tarnd_platform/orm.h>

#include "fuzz.h"

using namespace standin;

namespace {

constexpr std::string_view joint  = " and ";
constexpr std::string_view equals = " = ";

Row MakeRow(const Table& table, uint64_t seed)
{
    constexpr std::string_view texts[] = {"a", "Vlanif10", "0x61", "10"};
    Row                        row(table);
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

std::vector<Row> MakeRows()
{
    std::vector<Row> rows;
    Transaction      transaction;
    for (const Table& table : Tables()) {
        for (uint64_t seed = 0; seed < 4; seed++) {
            rows.push_back(MakeRow(table, seed));
            transaction.Insert(rows.back());
        }
    }
    transaction.Commit();
    return rows;
}

std::string Hexadecimal(std::span<const uint8_t> bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string                text   = "0x";
    for (const uint8_t byte : bytes) {
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}

std::string Rendered(const Row& row, const Field& field, bool asText)
{
    if (field.kind == Kind::Number || field.kind == Kind::Ipv4) {
        return std::to_string(row.Number(field.name));
    }
    return asText && field.kind == Kind::Text ? std::string(row.Text(field.name))
                                              : Hexadecimal(row.Bytes(field));
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

bool Describes(std::string_view term, const Row& row)
{
    const size_t           at    = term.find(equals);
    const std::string_view value = term.substr(at + equals.size());
    const Field*           field = FindField(row.Description().fields, term.substr(0, at));
    CHECK(at != std::string_view::npos && field != nullptr);
    if (field->kind == Kind::Number || field->kind == Kind::Ipv4) {
        return Rendered(row, *field, true) == WithoutLeadingZeros(value);
    }
    return Rendered(row, *field, true) == value || Rendered(row, *field, false) == Lower(value);
}

bool AllDescribe(std::string_view text, const Row& row)
{
    const size_t end = text.find(joint);
    return Describes(text.substr(0, end), row) &&
           (end == std::string_view::npos || AllDescribe(text.substr(end + joint.size()), row));
}

std::string DescribeSome(fuzz::Input& input, const Row& row)
{
    std::string text;
    do {
        const Field& field = row.Description().fields[input.ConsumeIntegralInRange<size_t>(
            0, row.Description().fields.size() - 1)];
        text += text.empty() ? "" : joint;
        text += std::string(field.name) + std::string(equals);
        text += Rendered(row, field, input.ConsumeBool());
    } while (input.ConsumeBool());
    return text;
}

ptrdiff_t CountSelected(ORM_SESSION session)
{
    ORM_SCAN  scan  = 0;
    uint8_t   end   = 0;
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
    static const std::vector<Row> rows = MakeRows();

    fuzz::Input       input(data, size);
    const Row&        described = rows[input.ConsumeIntegralInRange<size_t>(0, rows.size() - 1)];
    const Table&      table     = described.Description();
    const bool        mustWork  = input.ConsumeBool();
    const std::string text =
        mustWork ? DescribeSome(input, described) : input.ConsumeRemainingBytesAsString();

    ORM_SESSION session = 0;
    CHECK(OrmOpenSessionByDefault(&session) == 0);
    CHECK(OrmPrepare(session, std::string(table.name).c_str(), QRB_ORM_OP_SCAN) == 0);
    const bool accepted = OrmSetScanCond(session, text.c_str()) == 0;
    CHECK(accepted || !mustWork);
    if (accepted) {
        const auto expected = std::ranges::count_if(rows, [&](const Row& row) {
            return &row.Description() == &table && AllDescribe(text.c_str(), row);
        });
        CHECK(CountSelected(session) == expected);
        CHECK(!mustWork || AllDescribe(text, described));
    }
    CHECK(OrmCloseSession(session) == 0);
    return 0;
}
