#include "shell/commands/pending_writes.h"

#include <algorithm>
#include <utility>

#include "shell/words.h"

namespace shell {
namespace {

using standin::Row;

bool HaveOneKey(const Row& a, const Row& b)
{
    const standin::Key& key = a.Description().keys[0];
    return std::ranges::equal(a.Record().subspan(key.offset, key.width),
                              b.Record().subspan(key.offset, key.width));
}

void Apply(const sources::RowWrite& write, std::vector<Row>& rows)
{
    const auto like = [&](const Row& row) { return HaveOneKey(row, write.row); };
    const auto at = std::ranges::find_if(rows, like);
    if (write.kind == sources::WriteKind::Delete) {
        std::erase_if(rows, like);
    } else if (at != rows.end()) {
        *at = write.row;
    } else {
        rows.push_back(write.row);
    }
}

}  // namespace

std::vector<sources::RowWrite>& PendingWrites::Open()
{
    if (!waiting_) {
        throw UsageError("no transaction is open; begin opens one");
    }
    return *waiting_;
}

void PendingWrites::Begin()
{
    if (waiting_) {
        throw UsageError("a transaction is already open; commit or abort ends it");
    }
    waiting_.emplace();
}

size_t PendingWrites::Commit()
{
    source_.Commit(Open());
    const size_t count = Abort();
    unsaved_ += count;
    return count;
}

size_t PendingWrites::Abort()
{
    const size_t count = Open().size();
    waiting_.reset();
    return count;
}

void PendingWrites::Write(std::vector<sources::RowWrite> writes)
{
    if (waiting_) {
        std::ranges::move(writes, std::back_inserter(*waiting_));
    } else {
        source_.Commit(writes);
        unsaved_ += writes.size();
    }
}

std::vector<Row> PendingWrites::RowsOf(const standin::Table& table) const
{
    std::vector<Row> rows;
    standin::ForEachRow(table, [&](const Row& row) { rows.push_back(row); });
    if (waiting_) {
        for (const sources::RowWrite& write : *waiting_) {
            if (&write.row.Description() == &table) {
                Apply(write, rows);
            }
        }
    }
    return rows;
}

}  // namespace shell
