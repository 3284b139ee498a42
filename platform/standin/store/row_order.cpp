#include "store/row_order.h"

#include <algorithm>

#include "store/stored_row.h"

namespace standin {

void RowOrder::Append(const StoredRow& row)
{
    slots_.push_back({nextSequence_, &row});
    row.sequence = nextSequence_++;
    rows_++;
}

void RowOrder::Put(const StoredRow& row)
{
    Slot& slot = SlotOf(row);
    rows_ += slot.row == nullptr ? 1 : 0;
    slot.row = &row;
}

void RowOrder::Take(const StoredRow& row)
{
    SlotOf(row).row = nullptr;
    rows_--;
}

size_t RowOrder::PlaceOf(uint64_t sequence, size_t guess) const
{
    if (guess < slots_.size() && slots_[guess].sequence == sequence) {
        return guess;
    }
    const auto found = std::ranges::lower_bound(slots_, sequence, {}, &Slot::sequence);
    return static_cast<size_t>(found - slots_.begin());
}

// Where nothing was compacted away, a row's distance from the first is its place.
RowOrder::Slot& RowOrder::SlotOf(const StoredRow& row)
{
    return slots_[PlaceOf(row.sequence, row.sequence - slots_.front().sequence)];
}

bool RowOrder::IsSparse() const
{
    constexpr size_t tolerated = 64;
    return slots_.size() > 2 * rows_ + tolerated;
}

RowOrder RowOrder::Compacted() const
{
    RowOrder compacted;
    std::ranges::copy_if(slots_, std::back_inserter(compacted.slots_),
                         [](const Slot& slot) { return slot.row != nullptr; });
    compacted.rows_ = rows_;
    compacted.nextSequence_ = nextSequence_;
    return compacted;
}

}  // namespace standin
