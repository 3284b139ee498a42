// Helpers shared by the fuzzing targets.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <standin/store.h>

// Aborts the run if the condition is false; the fuzzer then stores the input.
#define CHECK(statement)                                                                        \
    do {                                                                                        \
        if (!(statement)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: " #statement "\n", __FILE__, __LINE__); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)

namespace fuzz {

using Input = FuzzedDataProvider;

// A row whose key fields and names are this number, with some items in each list.
inline standin::Row PlainRow(const standin::Table& table, uint32_t number, uint32_t items)
{
    standin::Row row(table);
    for (const standin::Key& key : table.keys) {
        for (const standin::Field* member : key.members) {
            member->kind == standin::Kind::Text ? row.Set(member->name, std::to_string(number))
                                                : row.Set(member->name, number);
        }
    }
    for (const standin::List& list : table.lists) {
        for (uint32_t item = 0; item < items; item++) {
            row.AddItem(list.name, std::vector<uint64_t>(list.fields.size(), item));
        }
    }
    return row;
}

// Resets the database to one such row in each table.
inline void StartOver()
{
    standin::Transaction transaction;
    for (const standin::Table& table : standin::Tables()) {
        transaction.Insert(PlainRow(table, 0, 2));
    }
    standin::Reset();
    transaction.Commit();
}

}  // namespace fuzz
