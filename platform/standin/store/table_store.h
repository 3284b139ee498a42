// One table's rows, found by each key and in the order of their insertion.
#pragma once

#include <optional>
#include <vector>

#include "store/key_index.h"
#include "store/row_order.h"

namespace standin {

class TableStore {
public:
    explicit TableStore(const Table& table);

    const Table& Description() const { return *table_; }

    // For readers inside the gate, and for the writer. key: its place in Table::keys.
    const StoredRow* Find(size_t key, const void* bytes) const { return indexes_[key].Find(bytes); }
    const StoredRow* FindLike(const StoredRow& row) const { return indexes_[0].FindLike(row); }
    const RowOrder& Order() const { return order_; }

    // The key of row that a row other than the excepted one has, or null.
    const Key* TakenKey(const StoredRow& row, const StoredRow* except) const;

    // The writer, alone inside the gate. Keys are free, and room was made.
    void Insert(const StoredRow& row);
    void Replace(const StoredRow& present, const StoredRow& row);
    void Remove(const StoredRow& row);
    void Restore(const StoredRow& row);  // right after Remove: as if nothing had been

    // What has to grow or shrink is built beside the tables while readers go on, and put in place
    // by Exchange, after which it holds what is to be thrown away.
    struct Room {
        std::vector<std::pair<size_t, KeyIndex>> indexes;
        std::optional<RowOrder> order;
    };
    Room MakeRoom(size_t inserts) const;
    void Exchange(Room& room);

    // Everything, out of the table.
    RowOrder TakeAll();

private:
    const Table* table_;
    std::vector<KeyIndex> indexes_;
    RowOrder order_;
};

// The store of a table; key and table descriptions are those of Tables().
TableStore& StoreOf(const Table& table);

// Null where there is no such table.
TableStore* FindStore(std::string_view table);

}  // namespace standin
