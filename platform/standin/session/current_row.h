// The current row of a session or message, and access to its fields.
#pragma once

#include <algorithm>
#include <atomic>

#include "contract/refusal.h"
#include "session/handles.h"
#include "store/table_store.h"
#include "tarnd_platform/orm.h"

namespace standin {

class CurrentRow {
public:
    void Set(const TableStore& store, RowReference row)
    {
        Clear();
        store_ = &store;
        row_ = std::move(row);
    }
    void Clear()
    {
        row_ = RowReference();
        stamp_.store(stamp_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    bool IsSet() const { return static_cast<bool>(row_); }
    // Only if a row is set.
    const StoredRow& Row() const { return *row_; }
    const Table& Description() const { return store_->Description(); }

    // Changes with each new row, which invalidates handles of the former row's lists.
    uint64_t Stamp() const
    {
        return LowBits(stamp_.load(std::memory_order_relaxed), NodeUse::STAMP_BITS);
    }

private:
    const TableStore* store_ = nullptr;
    RowReference row_;
    std::atomic<uint32_t> stamp_ = 0;  // compared with stale handles, on any thread
};

// Copies one field of a record or an item; null means an unknown field.
inline uint32_t CopyField(const Field* field, const uint8_t* bytes, void* destination,
                          uint32_t size)
{
    if (field == nullptr) {
        return Refusal::UnknownField;
    }
    if (size != field->width) {
        return Refusal::WrongSize;
    }
    std::memcpy(destination, bytes + field->offset, size);
    return ORM_OK;
}

inline const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number)
{
    // If the numbers have no gaps, a field's number is its index.
    if (number < fields.size() && fields[number].number == number) {
        return &fields[number];
    }
    const auto found = std::ranges::find(fields, number, &Field::number);
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace standin
