#include "store/stored_row.h"

#include <cstring>
#include <new>

namespace standin {

namespace {

using ListBytes = std::optional<std::span<const uint8_t>>;

constexpr uint32_t ABSENT = UINT32_MAX;  // stored instead of a list's size in bytes

size_t StoredSize(const ListBytes& items)
{
    return sizeof(uint32_t) + (items ? items->size() : 0);
}

uint8_t* Append(uint8_t* to, const void* bytes, size_t size)
{
    if (size != 0) {
        std::memcpy(to, bytes, size);
    }
    return to + size;
}

uint8_t* AppendList(uint8_t* to, const ListBytes& items)
{
    const uint32_t size = items ? static_cast<uint32_t>(items->size()) : ABSENT;
    to = Append(to, &size, sizeof(size));
    return items ? Append(to, items->data(), size) : to;
}

ListBytes ListAt(const uint8_t* at)
{
    uint32_t size = 0;
    std::memcpy(&size, at, sizeof(size));
    return size == ABSENT ? ListBytes() : ListBytes({at + sizeof(size), size});
}

}  // namespace

RowReference StoredRow::Make(const Row& row)
{
    const Table& table = row.Description();
    size_t size = sizeof(StoredRow) + table.recordSize;
    for (size_t list = 0; list < table.lists.size(); list++) {
        size += StoredSize(row.Items(list));
    }
    auto* stored = new (::operator new(size)) StoredRow(row.Rank());
    uint8_t* end = Append(stored->Bytes(), row.Record().data(), table.recordSize);
    for (size_t list = 0; list < table.lists.size(); list++) {
        end = AppendList(end, row.Items(list));
    }
    return RowReference(*stored);
}

std::optional<std::span<const uint8_t>> StoredRow::Items(const Table& table, size_t list) const
{
    const uint8_t* at = Record() + table.recordSize;
    for (; list > 0; list--) {
        at += StoredSize(ListAt(at));
    }
    return ListAt(at);
}

Row Detached(const Table& table, const StoredRow& row)
{
    Row detached(table);
    detached.SetRank(row.TablePlace().rank);
    std::memcpy(detached.record_.data(), row.Record(), table.recordSize);
    for (size_t list = 0; list < table.lists.size(); list++) {
        if (const auto items = row.Items(table, list)) {
            detached.lists_[list].emplace(items->begin(), items->end());
        }
    }
    return detached;
}

void StoredRow::Free(const StoredRow* row)
{
    row->~StoredRow();
    ::operator delete(const_cast<StoredRow*>(row));
}

}  // namespace standin
