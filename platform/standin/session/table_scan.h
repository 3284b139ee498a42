// A scan of the rows that a table has when it starts, in the order of the table.
//
// It takes references to a short run of rows at a time. Between two runs it keeps nothing of the
// table but the place to go on from, so writers don't wait for it, and what they write meanwhile
// changes no other row's turn.
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
    std::optional<Place> next_;  // place to go on from; nothing at the end
    uint64_t end_ = 0;           // sequence of the first row that came after the start
};

}  // namespace standin
