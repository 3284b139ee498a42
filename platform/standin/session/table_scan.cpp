#include "session/table_scan.h"

#include "store/reader_writer_lock.h"

namespace standin {

void TableScan::Start(const TableStore& store, const ScanCondition& condition)
{
    Stop();
    store_ = &store;
    condition_ = &condition;
    next_ = Place();
    const ReadGuard guard;
    end_ = store.NextSequence();
}

void TableScan::Stop()
{
    rows_.clear();
    returned_ = 0;
    next_.reset();
}

void TableScan::Fetch()
{
    rows_.clear();
    returned_ = 0;
    while (rows_.empty() && next_) {
        const ReadGuard guard;
        const auto run = store_->Order().RunFrom(*next_);
        rows_.reserve(run.rows.size());
        for (const RowReference& row : run.rows) {
            if (row->Sequence() < end_ && condition_->Matches(row->Record())) {
                rows_.push_back(row);
            }
        }
        next_ = run.next;
    }
}

}  // namespace standin
