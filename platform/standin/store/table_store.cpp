#include "store/table_store.h"

#include <utility>

namespace standin {

TableStore::TableStore(const Table& table)
    : table_(&table), indexes_(table.keys.begin(), table.keys.end())
{
}

const Key* TableStore::TakenKey(const StoredRow& row, const StoredRow* except) const
{
    for (const KeyIndex& index : indexes_) {
        const StoredRow* present = index.FindLike(row);
        if (present != nullptr && present != except) {
            return &index.Description();
        }
    }
    return nullptr;
}

void TableStore::Insert(const StoredRow& row)
{
    order_.Append(row);
    for (KeyIndex& index : indexes_) {
        index.Insert(row);
    }
}

void TableStore::Replace(const StoredRow& present, const StoredRow& row)
{
    row.sequence = present.sequence;
    order_.Put(row);
    for (KeyIndex& index : indexes_) {
        if (index.SameKeyIn(present, row)) {
            index.Exchange(present, row);
        } else {
            index.Remove(present);
            index.Insert(row);
        }
    }
}

void TableStore::Remove(const StoredRow& row)
{
    order_.Take(row);
    for (KeyIndex& index : indexes_) {
        index.Remove(row);
    }
}

void TableStore::Restore(const StoredRow& row)
{
    order_.Put(row);
    for (KeyIndex& index : indexes_) {
        index.Insert(row);
    }
}

TableStore::Room TableStore::MakeRoom(size_t inserts) const
{
    Room room;
    for (size_t key = 0; key < indexes_.size(); key++) {
        if (!indexes_[key].Fits(inserts)) {
            room.indexes.emplace_back(key, indexes_[key].Resized(inserts));
        }
    }
    if (order_.IsSparse()) {
        room.order = order_.Compacted();
    }
    return room;
}

void TableStore::Exchange(Room& room)
{
    for (auto& [key, index] : room.indexes) {
        std::swap(indexes_[key], index);
    }
    if (room.order) {
        std::swap(order_, *room.order);
    }
}

RowOrder TableStore::TakeAll()
{
    TableStore none(*table_);
    std::swap(indexes_, none.indexes_);
    std::swap(order_, none.order_);
    return std::move(none.order_);
}

namespace {

// Lives as long as the process: other threads may still read when main returns.
std::vector<TableStore>& Stores()
{
    static auto& stores = *new std::vector<TableStore>(Tables().begin(), Tables().end());
    return stores;
}

}  // namespace

TableStore& StoreOf(const Table& table)
{
    return Stores()[static_cast<size_t>(&table - Tables().data())];
}

TableStore* FindStore(std::string_view table)
{
    const Table* found = FindTable(table);
    return found == nullptr ? nullptr : &StoreOf(*found);
}

}  // namespace standin
