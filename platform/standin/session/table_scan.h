// A walk over the rows that a table has when it starts, in the order of their insertion.
//
// Between two batches of rows it holds nothing of the table, only where it is: the sequence number
// to go on from. So writers don't wait for it, and what they write meanwhile doesn't confuse it.
#pragma once

#include "session/scan_condition.h"
#include "store/pins.h"
#include "store/table_store.h"

namespace standin {

class TableScan {
public:
    explicit TableScan(Pins& pins) : pins_(pins) {}

    // Without a condition, condition is empty. It must outlive the scan.
    void Start(const TableStore& store, const ScanCondition& condition);
    void Stop();

    // The next matching row, pinned until the next call, or null at the end.
    const StoredRow* Next()
    {
        if (delivered_ == fetched_) {
            Fetch();
        }
        return delivered_ == fetched_ ? nullptr : pins_.At(delivered_++);
    }

private:
    void Fetch();
    void FetchBatch();

    Pins& pins_;
    const TableStore* store_ = nullptr;
    const ScanCondition* condition_ = nullptr;
    uint32_t delivered_ = 0;  // of the batch
    uint32_t fetched_ = 0;
    uint64_t next_ = 0;  // sequence to go on from
    uint64_t end_ = 0;   // sequence of the first row that came too late
    size_t place_ = 0;   // where next_ was found last
};

}  // namespace standin
