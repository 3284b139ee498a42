#include "sources/mirror.h"

#include <algorithm>
#include <unordered_map>

namespace sources {

using standin::Key;
using standin::Row;
using standin::Table;
using standin::Transaction;

std::string_view KeyBytes(const Row& row, const Key& key)
{
    return {reinterpret_cast<const char*>(row.Record().data()) + key.offset, key.width};
}

std::string_view PrimaryKey(const Row& row)
{
    return KeyBytes(row, row.Description().keys.front());
}

void MirrorTable(Transaction& transaction, const Table& table, const Rows& desired)
{
    std::unordered_map<std::string_view, const Row*> missing;
    for (const Row& row : desired) {
        missing.emplace(PrimaryKey(row), &row);
    }

    Rows changed;
    standin::ForEachRow(table, [&](const Row& row) {
        const auto found = missing.find(PrimaryKey(row));
        const auto keepsKey = [&](const Key& key) {
            return KeyBytes(row, key) == KeyBytes(*found->second, key);
        };
        if (found == missing.end() || row.Rank() != found->second->Rank() ||
            !std::ranges::all_of(table.keys, keepsKey)) {
            transaction.Delete(row);
            return;
        }
        if (row != *found->second) {
            changed.push_back(*found->second);
        }
        missing.erase(found);
    });
    for (const Row& row : changed) {
        transaction.Update(row);
    }
    for (const Row& row : desired) {
        if (missing.contains(PrimaryKey(row))) {
            transaction.Insert(row);
        }
    }
}

void MirrorRow(Transaction& transaction, const Row& desired)
{
    const auto row = standin::Find(desired);
    if (!row) {
        transaction.Insert(desired);
    } else if (*row != desired) {
        transaction.Update(desired);
    }
}

void RemoveRow(Transaction& transaction, const Row& key)
{
    if (standin::Find(key)) {
        transaction.Delete(key);
    }
}

void MirrorRows(Transaction& transaction, const RowChanges& changes)
{
    for (const Row& row : changes.removed) {
        RemoveRow(transaction, row);
    }
    for (const Row& row : changes.present) {
        MirrorRow(transaction, row);
    }
}

}  // namespace sources
