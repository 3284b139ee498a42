// Memory of a row of each table, including keys and order.
#include <malloc.h>

#include <functional>

#include <benchmark/benchmark.h>

#include "bench_rows.h"

namespace {

using standin::Field;
using standin::Kind;
using standin::List;
using standin::Row;
using standin::Table;

constexpr uint32_t ROWS = 100000;

// A row with unique keys and one item in every list.
Row RowOf(const Table& table, uint32_t number)
{
    Row row(table);
    for (const standin::Key& key : table.keys) {
        for (const Field* member : key.members) {
            if (member->kind == Kind::Text) {
                row.Set(member->name, "name " + std::to_string(number));
            } else {
                row.Set(member->name, number & ((uint64_t{1} << 8 * member->width) - 1));
            }
        }
    }
    for (const List& list : table.lists) {
        row.AddItem(list.name, std::vector<uint64_t>(list.fields.size()));
    }
    return row;
}

size_t RecordAndLists(const Table& table)
{
    size_t size = table.recordSize;
    for (const List& list : table.lists) {
        size += list.itemSize;
    }
    return size;
}

size_t InUse()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void RowMemory(benchmark::State& state, const Table& table)
{
    for (auto _ : state) {
        standin::Reset();
        const size_t before = InUse();
        bench::Fill(table.name, ROWS, [&](uint32_t number) { return RowOf(table, number); });
        state.counters["bytes_a_row"] = static_cast<double>(InUse() - before) / ROWS;
        state.counters["record_and_lists"] = static_cast<double>(RecordAndLists(table));
    }
    standin::Reset();
}

const bool registered = [] {
    for (const Table& table : standin::Tables()) {
        const std::string name = "row_memory/" + std::string(table.name);
        benchmark::RegisterBenchmark(name.c_str(), RowMemory, std::cref(table))
            ->Iterations(1)
            ->Repetitions(1);
    }
    return true;
}();

}  // namespace
