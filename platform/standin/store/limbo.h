// Where rows wait that have left their table, until no session stands on them.
#pragma once

namespace standin {

class StoredRow;

// One reference less; the last one sends the row to limbo.
void Release(const StoredRow* row) noexcept;

// Frees the rows in limbo that nobody stands on; a glance where there are none.
void SweepLimbo() noexcept;

}  // namespace standin
