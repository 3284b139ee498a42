// The shell's writes: each on its own, or several that wait for commit.
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

    // Throw UsageError where there is one already, or none.
    void Begin();
    // How many writes were carried out, or forgotten. Commit throws standin::Error and keeps them
    // where one is refused.
    size_t Commit();
    size_t Abort();

    // Now, or with the rest of the open transaction.
    void Write(std::vector<sources::RowWrite> writes);

    // As a table would be after the writes that wait.
    std::vector<standin::Row> RowsOf(const standin::Table& table) const;

private:
    std::vector<sources::RowWrite>& Open();

    sources::Source& source_;
    std::optional<std::vector<sources::RowWrite>> waiting_;
};

}  // namespace shell
