// Carrying out a transaction.
#pragma once

#include <vector>

#include "store/change.h"
#include "store/stored_row.h"

namespace standin {

struct PreparedWrite {
    TableStore* store;
    uint32_t event;  // ORM_EVENT_*
    NewRow row;      // of a deletion, only the primary key counts
};

// All of them in order, or, with an Error for the first that is refused, none.
void Commit(std::vector<PreparedWrite> writes);

// Takes every row out of every table.
void EmptyTables();

}  // namespace standin
