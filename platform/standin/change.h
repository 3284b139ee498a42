// What a write did to one row.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "table_store.h"

namespace standin {

struct Change {
    TableStore*      store;
    uint32_t         event;   // ORM_EVENT_*
    const StoredRow* before;  // null where there was none
    const StoredRow* after;   // null where there is none now
};

// Notes one committed transaction for every subscription that covers it. Called in the order of the
// transactions, while both rows of each change are alive.
void Publish(std::span<const Change> changes);

}  // namespace standin
