// The shell's writes: each is committed at once, or collected in a transaction until commit.
#pragma once

#include <optional>
#include <vector>

#include "sources/source.h"

namespace shell {

class PendingWrites {
public:
    explicit PendingWrites(sources::Source& source) : source_(source) {}

    bool IsOpen() const { return waiting_.has_value(); }
    size_t Waiting() const { return waiting_ ? waiting_->size() : 0; }

    // Begin throws UsageError if a transaction is open, the others if none is. Commit and Abort
    // return the number of writes. If a write is refused, Commit throws standin::Error and the
    // transaction stays open.
    void Begin();
    size_t Commit();
    size_t Abort();

    // Adds the writes to the open transaction. Without one, commits them at once.
    void Write(std::vector<sources::RowWrite> writes);

    // Number of writes committed since the last call of SetSaved.
    size_t Unsaved() const { return unsaved_; }
    void SetSaved() { unsaved_ = 0; }

    // Returns the rows of a table with the uncommitted writes applied.
    std::vector<standin::Row> RowsOf(const standin::Table& table) const;

private:
    std::vector<sources::RowWrite>& Open();

    sources::Source& source_;
    std::optional<std::vector<sources::RowWrite>> waiting_;
    size_t unsaved_ = 0;
};

}  // namespace shell
