// The record that a session stands on, and the reading of its fields, lists and items.
#pragma once

#include <atomic>

#include "store/table_store.h"

namespace standin {

class CurrentRow {
public:
    // The row stays while the position is on it: pinned by a session, or held by a message.
    void MoveTo(const TableStore& store, const StoredRow& row);
    void Leave();

    bool IsOn(const Table& table) const;
    const StoredRow* Row() const { return row_; }
    const TableStore* Store() const { return store_; }

    uint32_t CopyField(std::string_view field, void* destination, uint32_t size) const;
    uint32_t CopyField(uint32_t field, void* destination, uint32_t size) const;

    // Changes with every move, so that what was handed out before can be told apart.
    uint64_t Stamp() const;

private:
    uint32_t Copy(const Field* field, void* destination, uint32_t size) const;

    const TableStore* store_ = nullptr;
    const StoredRow* row_ = nullptr;
    std::atomic<uint32_t> stamp_ = 0;  // looked at through stale handles, on any thread
};

// Copies one field out of a record or an item; null is an unknown field.
uint32_t CopyFieldOf(const Field* field, const uint8_t* bytes, void* destination, uint32_t size);

const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number);

}  // namespace standin
