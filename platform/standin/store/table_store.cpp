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

void TableStore::Insert(const RowReference& row)
{
    if (row->Sequence() == 0) {
        row->SetPlace({row->TablePlace().rank, nextSequence_++});
    }
    for (KeyIndex& index : indexes_) {
        index.Reserve();
    }
    order_.Insert(row);
    for (KeyIndex& index : indexes_) {
        index.Insert(*row);
    }
}

void TableStore::Replace(const StoredRow& present, const RowReference& row)
{
    row->SetPlace(present.TablePlace());
    for (KeyIndex& index : indexes_) {
        index.Erase(present);
        index.Insert(*row);
    }
    order_.Replace(row);
}

void TableStore::Remove(const StoredRow& row)
{
    for (KeyIndex& index : indexes_) {
        index.Erase(row);
    }
    order_.Erase(row.TablePlace());
}

RowOrder TableStore::TakeAll()
{
    TableStore empty(*table_);
    std::swap(indexes_, empty.indexes_);
    std::swap(order_, empty.order_);
    return std::move(empty.order_);
}

namespace {

// Never destroyed: other threads may still read when the process ends.
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
