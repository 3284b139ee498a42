// The rows of a table in the order of their insertion, for scans.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace standin {

class StoredRow;

class RowOrder {
public:
    struct Slot {
        uint64_t sequence;     // ascending
        const StoredRow* row;  // null where the row was deleted
    };

    void Append(const StoredRow& row);
    void Put(const StoredRow& row);  // in the slot of the row's sequence
    void Take(const StoredRow& row);

    // The first slot of at least this sequence; guess is looked at first.
    size_t PlaceOf(uint64_t sequence, size_t guess) const;

    const std::deque<Slot>& Slots() const { return slots_; }
    size_t RowCount() const { return rows_; }
    uint64_t NextSequence() const { return nextSequence_; }

    // Whether most slots are of deleted rows; then the same without them.
    bool IsSparse() const;
    RowOrder Compacted() const;

private:
    Slot& SlotOf(const StoredRow& row);

    std::deque<Slot> slots_;  // grows without moving what it holds
    size_t rows_ = 0;
    uint64_t nextSequence_ = 0;
};

}  // namespace standin
