// A row in the database. Its contents never change: a write puts a new row in its place.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "standin/store.h"

namespace standin {

// The header; the record follows, and behind it each list as a count and its items. One block of
// memory for each row.
class StoredRow {
public:
    // Free with DeleteRow.
    static StoredRow* Make(const Row& row);

    const uint8_t* Record() const { return reinterpret_cast<const uint8_t*>(this + 1); }

    // Items one behind another; nothing where the row has no such list. list: its place in
    // Table::lists.
    std::optional<std::span<const uint8_t>> Items(const Table& table, size_t list) const;

    // Where it stands, which is not contents: in the order of insertion. A row takes over the place
    // of the one that it replaces.
    mutable uint64_t sequence = 0;
    // The table's, while the row stands in it, and one for each undelivered message about it.
    mutable std::atomic<uint32_t> references = 1;

private:
    StoredRow() = default;

    uint8_t* Bytes() { return reinterpret_cast<uint8_t*>(this + 1); }
};

void DeleteRow(const StoredRow* row);

struct RowDeleter {
    void operator()(const StoredRow* row) const { DeleteRow(row); }
};
using NewRow = std::unique_ptr<StoredRow, RowDeleter>;

// The contents again, detached from the database.
Row Detached(const Table& table, const StoredRow& row);

}  // namespace standin
