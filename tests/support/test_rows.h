// Rows of the database: made, written, read back and chosen at random.
#pragma once

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <standin/store.h>

namespace support {

inline standin::Row Base(uint64_t index, std::string_view name)
{
    return standin::Row("if_base").Set("if_index", index).Set("if_name", name);
}
inline standin::Row Base(uint64_t index)
{
    return Base(index, std::to_string(index));
}
inline standin::Row Phy(uint64_t index, uint64_t speed = 0)
{
    return standin::Row("if_phy").Set("if_index", index).Set("speed", speed);
}
inline standin::Row PhyState(uint64_t index, uint64_t state)
{
    return Phy(index).Set("phy_state", state);
}
inline standin::Row RouteState(uint64_t index, uint64_t state)
{
    return standin::Row("if_route").Set("if_index", index).Set("route_state", state);
}
inline standin::Row Port(uint64_t index, uint64_t pvid, uint64_t use)
{
    standin::Row row = standin::Row("port").Set("if_index", index).Set("pvid", pvid);
    return row.Set("port_index", index << 8).Set("switch_port", use);
}

namespace writes {

using Writing = void (*)(standin::Transaction&, const standin::Row&);

inline constexpr Writing Insert = [](auto& transaction, auto& row) { transaction.Insert(row); };
inline constexpr Writing Delete = [](auto& transaction, auto& row) { transaction.Delete(row); };
inline constexpr Writing Update = [](auto& transaction, auto& row) { transaction.Update(row); };
inline constexpr Writing Replace = [](auto& transaction, auto& row) { transaction.Replace(row); };

// In one transaction.
inline void Write(Writing write, const std::vector<standin::Row>& rows)
{
    standin::Transaction transaction;
    for (const standin::Row& row : rows) {
        write(transaction, row);
    }
    transaction.Commit();
}

}  // namespace writes

inline std::vector<standin::Row> RowsOf(const standin::Table& table)
{
    std::vector<standin::Row> rows;
    standin::ForEachRow(table, [&](const standin::Row& row) { rows.push_back(row); });
    return rows;
}

// Table by table.
inline std::vector<standin::Row> AllRows()
{
    std::vector<standin::Row> rows;
    for (const standin::Table& table : standin::Tables()) {
        std::ranges::move(RowsOf(table), std::back_inserter(rows));
    }
    return rows;
}

// Random rows with any contents that the table description allows.
class RandomRows {
public:
    explicit RandomRows(uint64_t seed) : random_(seed) {}

    // This number of rows of each table.
    std::vector<standin::Row> ForAllTables(int number)
    {
        std::vector<standin::Row> rows;
        for (const standin::Table& table : standin::Tables()) {
            for (int i = 0; i < number; ++i) {
                standin::Row& row = rows.emplace_back(table);
                for (const standin::Field& field : table.fields) {
                    Fill(row, field);
                }
                for (const standin::List& list : table.lists) {
                    FillList(row, list);
                }
            }
        }
        return rows;
    }

    uint64_t Below(uint64_t end) { return random_() % end; }

    void Fill(standin::Row& row, const standin::Field& field)
    {
        using standin::Kind;
        switch (field.kind) {
            case Kind::Number:
            case Kind::Ipv4:
                row.Set(field.name, Number(field));
                break;
            case Kind::Mac:
            case Kind::Set:
                row.SetBytes(field.name, Bytes(field.width));
                break;
            case Kind::Text:
                row.Set(field.name, Text(standin::LongestText(field)));
                break;
        }
    }

private:
    void FillList(standin::Row& row, const standin::List& list)
    {
        const auto items = Below(4);
        if (items > 0) {
            row.MakeList(list.name);
        }
        for (uint64_t i = 1; i < items; ++i) {
            std::vector<uint64_t> values;
            for (const standin::Field& field : list.fields) {
                values.push_back(Number(field));
            }
            row.AddItem(list.name, values);
        }
    }

    uint64_t Number(const standin::Field& field) { return random_() >> (64 - 8 * field.width); }

    // Runs of equal bytes as well: long ranges, and none.
    std::vector<uint8_t> Bytes(size_t size)
    {
        std::vector<uint8_t> bytes(size, Below(2) == 0 ? 0 : 0xff);
        for (size_t i = Below(size); i < size; i += 1 + Below(size)) {
            bytes[i] = static_cast<uint8_t>(Below(256));
        }
        return bytes;
    }

    std::string Text(size_t longest)
    {
        constexpr std::string_view characters = "aZ0/ \"\\\t\x7f{}[],:";
        std::string text = Below(2) == 0 ? "\xc3\xbc" : "";
        for (size_t i = text.size(), size = Below(longest + 1); i < size; ++i) {
            text += characters[Below(characters.size())];
        }
        return text;
    }

    std::mt19937_64 random_;
};

}  // namespace support
