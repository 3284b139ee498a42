// One table's rows, found by each key and in the order of the table.
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

    // Under a ReadGuard, or by the writer. key: its place in Table::keys.
    const StoredRow* Find(size_t key, const uint8_t* bytes) const
    {
        return indexes_[key].Find(bytes);
    }
    const RowOrder& Order() const { return order_; }
    uint64_t NextSequence() const { return nextSequence_; }

    // The key of row that a row other than the excepted one has, or null.
    const Key* TakenKey(const StoredRow& row, const StoredRow* except) const;

    // Under a WriteGuard. Keys are free. What fails for want of memory changes nothing.
    void Insert(const RowReference& row);   // behind all rows of its rank
    void Restore(const RowReference& row);  // where it was when it was removed
    void Replace(const StoredRow& present, const RowReference& row);
    void Remove(const StoredRow& row);

    // Removes every row, and returns them.
    RowOrder TakeAll();

private:
    const Table* table_;
    std::vector<KeyIndex> indexes_;
    RowOrder order_;
    uint64_t nextSequence_ = 0;
};

// What a write did to one row.
struct Change {
    TableStore* store;
    uint32_t event;       // ORM_EVENT_*
    RowReference before;  // none where there was no row
    RowReference after;   // none where there is no row any more
};

// The store of a table; key and table descriptions are those of Tables().
TableStore& StoreOf(const Table& table);

// Null where there is no such table.
TableStore* FindStore(std::string_view table);

}  // namespace standin
