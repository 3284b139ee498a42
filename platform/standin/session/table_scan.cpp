#include "session/table_scan.h"

#include "store/gate.h"

namespace standin {

namespace {

// Rows looked at in one go, so that a writer waits for a short while only.
constexpr size_t mostLooks = 256;

// By the time that a row is delivered, its first fields have arrived.
void Prefetch(const StoredRow& row)
{
    __builtin_prefetch(row.Record());
}

}  // namespace

void TableScan::Start(const TableStore& store, const ScanCondition& condition)
{
    const Inside inside;
    store_ = &store;
    condition_ = &condition;
    delivered_ = fetched_ = 0;
    place_ = 0;
    next_ = 0;
    end_ = store.Order().NextSequence();
}

void TableScan::Stop()
{
    end_ = next_ = 0;
    delivered_ = fetched_ = 0;
}

void TableScan::Fetch()
{
    delivered_ = fetched_ = 0;
    while (fetched_ == 0 && next_ < end_) {
        const Inside inside;
        FetchBatch();
        pins_.SetCount(fetched_);
    }
}

void TableScan::FetchBatch()
{
    const auto& slots = store_->Order().Slots();
    place_ = store_->Order().PlaceOf(next_, place_);
    auto slot = slots.begin() + static_cast<ptrdiff_t>(place_);
    for (size_t looks = 0; looks < mostLooks && fetched_ < Pins::capacity; looks++) {
        if (slot == slots.end() || slot->sequence >= end_) {
            next_ = end_;
            return;
        }
        if (slot->row != nullptr && condition_->Matches(slot->row->Record())) {
            pins_.Set(fetched_++, *slot->row);
            Prefetch(*slot->row);
        }
        ++slot;
        ++place_;
    }
    next_ = slot == slots.end() ? end_ : slot->sequence;
}

}  // namespace standin
