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

    // The change last fetched; null before the first, and after the last.
    const Change* LastOf(size_t fetched) const
    {
        return fetched == 0 || fetched > changes.size() ? nullptr : &changes[fetched - 1];
    }
};

// A list, because splicing a delivery needs no memory.
using Deliveries = std::list<Delivery>;

}  // namespace standin
