// Commands that write tables: insert, update, replace, delete, and the transaction commands begin,
// commit, abort.
#include <algorithm>
#include <functional>

#include "shell/commands/assignment.h"
#include "shell/commands/command.h"
#include "shell/commands/row_selection.h"
#include "shell/table_lookup.h"

namespace shell {
namespace {

using sources::WriteKind;
using standin::Row;
using standin::Table;

using Assignments = std::vector<Assignment>;

// Commits the writes and prints the number of rows.
Status Do(Shell& shell, std::vector<sources::RowWrite> writes, const char* done)
{
    const size_t count = writes.size();
    shell.Writes().Write(std::move(writes));
    if (shell.Writes().IsOpen()) {
        shell.Out().PrintDone("waiting for commit", shell.Writes().Waiting());
    } else {
        shell.Out().PrintDone(done, count);
    }
    return Status::Success;
}

Status WriteNew(Shell& shell, Words& words, WriteKind kind)
{
    const Table& table = KnownTable(words.Take("table"));
    return Do(shell, {{kind, NewRow(table, TakeAssignments(table, words))}},
              kind == WriteKind::Insert ? "inserted" : "replaced");
}

// Returns the rows that match. Fails if there are none.
std::vector<Row> Chosen(Shell& shell, const Table& table, const Assignments& wanted)
{
    if (wanted.empty()) {
        throw UsageError("missing FIELD=VALUE to select rows of " + std::string(table.name));
    }
    const RowFilter filter(table, wanted);
    std::vector<Row> rows = shell.Writes().RowsOf(table);
    std::erase_if(rows, [&](const Row& row) { return !filter.Matches(row); });
    if (rows.empty()) {
        throw standin::Error(std::string(table.name) + ": no such row");
    }
    return rows;
}

// The key fields select the row, and the other fields are updated.
Status Update(Shell& shell, Words& words)
{
    const Table& table = KnownTable(words.Take("table"));
    Assignments changes = TakeAssignments(table, words);
    const auto rest =
        std::stable_partition(changes.begin(), changes.end(), std::mem_fn(&Assignment::isKey));
    const auto rows = Chosen(shell, table, {changes.begin(), rest});
    if (rows.size() > 1) {
        throw UsageError(std::to_string(rows.size()) + " rows match; give the whole key");
    }
    if (rest == changes.end()) {
        throw UsageError("missing FIELD=VALUE to change");
    }
    return Do(shell, {{WriteKind::Update, Changed(rows[0], {rest, changes.end()})}}, "updated");
}

Status Delete(Shell& shell, Words& words)
{
    const Table& table = KnownTable(words.Take("table"));
    std::vector<sources::RowWrite> writes;
    for (const Row& row : Chosen(shell, table, TakeAssignments(table, words))) {
        writes.push_back({WriteKind::Delete, row});
    }
    return Do(shell, std::move(writes), "deleted");
}

Status Begin(Shell& shell, Words& words)
{
    words.ExpectEnd();
    shell.Writes().Begin();
    return Status::Success;
}

Status Commit(Shell& shell, Words& words)
{
    words.ExpectEnd();
    shell.Out().PrintDone("committed", shell.Writes().Commit());
    return Status::Success;
}

Status Abort(Shell& shell, Words& words)
{
    words.ExpectEnd();
    shell.Out().PrintDone("discarded", shell.Writes().Abort());
    return Status::Success;
}

}  // namespace

// clang-format off
std::vector<Command> WriteCommands()
{
    const auto insert  = [](Shell& shell, Words& words) { return WriteNew(shell, words, WriteKind::Insert); };
    const auto replace = [](Shell& shell, Words& words) { return WriteNew(shell, words, WriteKind::Replace); };
    return {
        {"insert", "TABLE FIELD=VALUE...", "Inserts a row. Fields that are not given are zero or empty.", insert},
        {"update", "TABLE FIELD=VALUE...", "Updates the other given fields of the row that the key fields select. += adds ids to a set, -= removes them.", Update},
        {"replace", "TABLE FIELD=VALUE...", "Inserts a row, or replaces the row with the same key.", replace},
        {"delete", "TABLE FIELD=VALUE...", "Deletes the rows that match all conditions.", Delete},
        {"begin", "", "Begins a transaction: later writes are executed by commit.", Begin},
        {"commit", "", "Executes the writes of the transaction, all or none.", Commit},
        {"abort", "", "Discards the writes of the transaction.", Abort},
    };
}
// clang-format on

}  // namespace shell
