// What the fuzzing targets share.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <standin/store.h>

// A statement that must hold: the run stops, and the input is kept, where it doesn't.
#define CHECK(statement)                                                                        \
    do {                                                                                        \
        if (!(statement)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: " #statement "\n", __FILE__, __LINE__); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)

namespace fuzz {

using Input = FuzzedDataProvider;

// A row whose key's numbers, and names, are this number, with some items in each list.
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

// Nothing in the database but one such row in each table.
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
