// A row in the database. Its contents never change: a write replaces it by a new row.
#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "standin/store.h"

namespace standin {

// A row's place in the order of its table. The rank is chosen by the writer; the sequence number
// counts insertions.
struct Place {
    uint64_t rank = 0;
    uint64_t sequence = 0;

    friend auto operator<=>(const Place&, const Place&) = default;
};

class StoredRow;

// A counted reference. Releasing the last one frees the row.
class RowReference {
public:
    RowReference() = default;
    explicit RowReference(const StoredRow& row);
    RowReference(const RowReference& other);
    RowReference(RowReference&& other) noexcept : row_(std::exchange(other.row_, nullptr)) {}
    RowReference& operator=(RowReference other) noexcept
    {
        std::swap(row_, other.row_);
        return *this;
    }
    ~RowReference();

    const StoredRow* Get() const { return row_; }
    const StoredRow& operator*() const { return *row_; }
    const StoredRow* operator->() const { return row_; }
    explicit operator bool() const { return row_ != nullptr; }

private:
    const StoredRow* row_ = nullptr;
};

// The header of a row. The record and the lists, each with its size, follow in the same block of
// memory.
class StoredRow {
public:
    static RowReference Make(const Row& row);

    const uint8_t* Record() const { return reinterpret_cast<const uint8_t*>(this + 1); }

    // The items, contiguous; no value if the list is absent. list: index in Table::lists.
    std::optional<std::span<const uint8_t>> Items(const Table& table, size_t list) const;

    // Set when the row is inserted into a table.
    Place TablePlace() const { return {rank_, sequence_}; }
    uint64_t Sequence() const { return sequence_; }
    void SetPlace(Place place) const
    {
        rank_ = place.rank;
        sequence_ = place.sequence;
    }

private:
    friend class RowReference;

    explicit StoredRow(uint64_t rank) : rank_(rank) {}
    static void Free(const StoredRow* row);

    uint8_t* Bytes() { return reinterpret_cast<uint8_t*>(this + 1); }

    mutable uint64_t sequence_ = 0;  // 0: not yet in a table
    mutable uint64_t rank_;
    mutable std::atomic<uint32_t> references_ = 0;
};

inline RowReference::RowReference(const StoredRow& row) : row_(&row)
{
    row.references_.fetch_add(1, std::memory_order_relaxed);
}

inline RowReference::RowReference(const RowReference& other) : row_(other.row_)
{
    if (row_ != nullptr) {
        row_->references_.fetch_add(1, std::memory_order_relaxed);
    }
}

inline RowReference::~RowReference()
{
    if (row_ != nullptr && row_->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        StoredRow::Free(row_);
    }
}

// Returns a copy of the contents, detached from the database.
Row Detached(const Table& table, const StoredRow& row);

}  // namespace standin
