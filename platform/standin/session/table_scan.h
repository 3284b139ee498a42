// A scan of the rows that a table has when the scan starts, in the order of the table.
//
// It references a small batch of rows at a time. Between batches it has only the place to continue
// from, so writers don't wait for it, and inserted or removed rows don't affect the position.
#pragma once

#include "session/scan_condition.h"
#include "store/table_store.h"

namespace standin {

class TableScan {
public:
    // condition selects rows, and must outlive the scan; an empty one selects all.
    void Start(const TableStore& store, const ScanCondition& condition);
    void Stop();

    // The next matching row, or none at the end.
    RowReference Next()
    {
        if (returned_ == rows_.size()) {
            Fetch();
        }
        return returned_ == rows_.size() ? RowReference() : std::move(rows_[returned_++]);
    }

private:
    void Fetch();

    const TableStore* store_ = nullptr;
    const ScanCondition* condition_ = nullptr;
    std::vector<RowReference> rows_;
    size_t returned_ = 0;        // of these rows
    std::optional<Place> next_;  // place to continue from; no value at the end
    uint64_t end_ = 0;           // sequence number of the first row inserted after the start
};

}  // namespace standin
