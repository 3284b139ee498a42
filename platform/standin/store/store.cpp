// The writing side's functions, and the plain ways to look at what was written.
#include "standin/store.h"

#include "session/session_pool.h"
#include "store/commit.h"
#include "store/gate.h"
#include "store/limbo.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

void Transaction::Insert(Row row)
{
    writes_.push_back({Operation::Insert, std::move(row)});
}

void Transaction::Update(Row row)
{
    writes_.push_back({Operation::Update, std::move(row)});
}

void Transaction::Replace(Row row)
{
    writes_.push_back({Operation::Replace, std::move(row)});
}

void Transaction::Delete(const Row& key)
{
    writes_.push_back({Operation::Delete, key});
}

void Transaction::Commit()
{
    std::vector<PreparedWrite> prepared;
    prepared.reserve(writes_.size());
    for (const Write& write : writes_) {
        prepared.push_back({&StoreOf(write.row.Description()),
                            static_cast<uint32_t>(write.operation),
                            NewRow(StoredRow::Make(write.row))});
    }
    standin::Commit(std::move(prepared));
    writes_.clear();
}

std::optional<Row> Find(const Row& key)
{
    const Table& table = key.Description();
    const Key& primary = table.keys.front();
    const Inside inside;
    const auto* row = StoreOf(table).Find(0, key.Record().data() + primary.offset);
    return row != nullptr ? std::optional(Detached(table, *row)) : std::nullopt;
}

void ForEachRow(const Table& table, const std::function<void(const Row&)>& onRow)
{
    // A session's pins keep a row alive while onRow looks at it, whatever it writes.
    uint64_t handle = 0;
    auto closing = [](Session* session) { CloseSession(*session); };
    const std::unique_ptr<Session, decltype(closing)> session(
        OpenSession(HandleKind::Session, &handle), closing);
    if (session == nullptr) {
        throw Error("too many sessions");
    }
    const ScanCondition everything;
    TableScan scan(session->pins);
    scan.Start(StoreOf(table), everything);
    while (const StoredRow* row = scan.Next()) {
        onRow(Detached(table, *row));
    }
}

size_t CountRows(const Table& table)
{
    const Inside inside;
    return StoreOf(table).Order().RowCount();
}

void Reset()
{
    EmptyTables();
}

}  // namespace standin
