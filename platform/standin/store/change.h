// What a write did to one row.
#pragma once

#include <cstdint>

#include "store/table_store.h"

namespace standin {

struct Change {
    TableStore* store;
    uint32_t event;           // ORM_EVENT_*
    const StoredRow* before;  // null where there was none
    const StoredRow* after;   // null where there is none now
};

}  // namespace standin
