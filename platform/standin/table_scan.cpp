#include "table_scan.h"

#include "gate.h"

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

void TableScan::Start(const TableStore& store, const Condition& condition)
{
    const Inside inside;
    store_     = &store;
    condition_ = &condition;
    delivered_ = fetched_ = 0;
    place_                = 0;
    next_                 = 0;
    end_                  = store.Order().NextSequence();
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
    const RowOrder& order = store_->Order();
    const size_t    slots = order.SlotCount();
    size_t          place = order.PlaceOf(next_, place_);
    for (size_t looks = 0; looks < mostLooks && fetched_ < Pins::capacity; looks++, place++) {
        if (place == slots || order.At(place).sequence >= end_) {
            next_ = end_;
            return;
        }
        const StoredRow* row = order.At(place).row;
        if (Wants(row)) {
            pins_.Set(fetched_++, *row);
            Prefetch(*row);
        }
    }
    next_  = place == slots ? end_ : order.At(place).sequence;
    place_ = place;
}

bool TableScan::Wants(const StoredRow* row) const
{
    return row != nullptr && (condition_->IsEmpty() || condition_->Matches(row->Record()));
}

}  // namespace standin
