// The current row of a session or message, and the reading of its fields.
#pragma once

#include <atomic>

#include "store/table_store.h"

namespace standin {

class CurrentRow {
public:
    void Set(const TableStore& store, RowReference row);
    void Clear();

    bool IsSet() const { return static_cast<bool>(row_); }
    // Only where it is set.
    const StoredRow& Row() const { return *row_; }
    const Table& Description() const { return store_->Description(); }

    // Changes with every other row, which makes the handles of the former row's lists stale.
    uint64_t Stamp() const;

private:
    const TableStore* store_ = nullptr;
    RowReference row_;
    std::atomic<uint32_t> stamp_ = 0;  // compared with stale handles, on any thread
};

// Copies one field out of a record or an item; null is an unknown field.
uint32_t CopyField(const Field* field, const uint8_t* bytes, void* destination, uint32_t size);

const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number);

}  // namespace standin
