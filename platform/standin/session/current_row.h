// The current row of a session or message, and access to its fields.
#pragma once

#include <atomic>

#include "store/table_store.h"

namespace standin {

class CurrentRow {
public:
    void Set(const TableStore& store, RowReference row);
    void Clear();

    bool IsSet() const { return static_cast<bool>(row_); }
    // Only if a row is set.
    const StoredRow& Row() const { return *row_; }
    const Table& Description() const { return store_->Description(); }

    // Changes with each new row, which invalidates handles of the former row's lists.
    uint64_t Stamp() const;

private:
    const TableStore* store_ = nullptr;
    RowReference row_;
    std::atomic<uint32_t> stamp_ = 0;  // compared with stale handles, on any thread
};

// Copies one field of a record or an item; null means an unknown field.
uint32_t CopyField(const Field* field, const uint8_t* bytes, void* destination, uint32_t size);

const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number);

}  // namespace standin
