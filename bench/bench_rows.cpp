#include "bench_rows.h"

#include <cstring>

namespace bench {

standin::Row Interface(uint32_t ifIndex)
{
    constexpr uint32_t TYPES = 17;

    standin::Row row("if_base");
    const std::string number = std::to_string(ifIndex);
    row.Set("if_index", ifIndex)
        .Set("if_name", "GigabitEthernet0/0/" + number)
        .Set("simple_name", "GE0/0/" + number)
        .Set("if_type", ifIndex % TYPES);
    return row;
}

QRB_IF_BASE_S InterfaceRecord(uint32_t ifIndex)
{
    QRB_IF_BASE_S record;
    std::memcpy(&record, Interface(ifIndex).Record().data(), sizeof(record));
    return record;
}

void Fill(std::string_view table, uint32_t count, const std::function<standin::Row(uint32_t)>& row)
{
    constexpr uint32_t ROWS_AT_ONCE = 10000;

    if (standin::CountRows(*standin::FindTable(table)) == count) {
        return;
    }
    standin::Reset();
    for (uint32_t next = 1; next <= count;) {
        standin::Transaction transaction;
        for (uint32_t rows = 0; rows < ROWS_AT_ONCE && next <= count; rows++, next++) {
            transaction.Insert(row(next));
        }
        transaction.Commit();
    }
}

}  // namespace bench
