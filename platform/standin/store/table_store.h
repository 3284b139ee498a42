// The rows of one table, with an index for each key and the table's order.
#pragma once

#include <cstdint>
#include <vector>

#include "store/key_index.h"
#include "store/row_order.h"

namespace standin {

class TableStore {
public:
    explicit TableStore(const Table& table);

    const Table& Description() const { return *table_; }

    // Requires a ReadGuard, or the calling thread is the writer. key: index in Table::keys.
    const StoredRow* Find(size_t key, const uint8_t* bytes) const
    {
        return indexes_[key].Find(bytes);
    }
    const RowOrder& Order() const { return order_; }
    uint64_t NextSequence() const { return nextSequence_; }

    // The key of row that a row other than the excepted one has, or null.
    const Key* TakenKey(const StoredRow& row, const StoredRow* except) const;

    // Require a WriteGuard and free keys. If out of memory, they fail without a change.
    // Inserts after all rows of its rank, or, if it was removed, at its former place.
    void Insert(const RowReference& row);
    void Replace(const StoredRow& present, const RowReference& row);
    void Remove(const StoredRow& row);

    // Removes and returns all rows.
    RowOrder TakeAll();

private:
    const Table* table_;
    std::vector<KeyIndex> indexes_;
    RowOrder order_;
    uint64_t nextSequence_ = 1;
};

// A change of one row by a write.
struct Change {
    TableStore* store;
    uint32_t event;       // ORM_EVENT_*
    RowReference before;  // null for an insertion
    RowReference after;   // null for a deletion
};

// Returns the store of a table, which must be one of Tables().
TableStore& StoreOf(const Table& table);

// Returns null if there is no table of that name.
TableStore* FindStore(std::string_view table);

}  // namespace standin
