// One delivery of a subscription: consecutive rows of one table that a transaction changed by the
// same operation. References the rows before and after the change.
#pragma once

#include <chrono>
#include <list>
#include <vector>

#include "store/table_store.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

struct Delivery {
    ORM_SUB_CALLBACK callback;
    std::vector<Change> changes;  // never empty
    std::chrono::steady_clock::time_point committed;
};

// A list, because splicing a delivery needs no memory.
using Deliveries = std::list<Delivery>;

}  // namespace standin
