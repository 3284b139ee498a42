// One message of a subscription: neighbouring rows of one table that a transaction changed by the
// same operation. Keeps the rows before and after alive.
#pragma once

#include <chrono>
#include <list>
#include <span>
#include <vector>

#include "store/table_store.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

class Delivery {
public:
    using Time = std::chrono::steady_clock::time_point;

    Delivery(ORM_SUB_CALLBACK callback, std::span<const Change> changes, Time committed)
        : callback_(callback), changes_(changes.begin(), changes.end()), committed_(committed)
    {
    }

    const std::vector<Change>& Changes() const { return changes_; }

    void Run(ORM_MESSAGE message) const;

    // When the transaction of the message whose callback runs on this thread was committed.
    static Time Running();
    // That message; 0 on other threads.
    static ORM_MESSAGE RunningMessage();

private:
    ORM_SUB_CALLBACK callback_;
    std::vector<Change> changes_;  // never empty
    Time committed_;
};

// A list, since moving a delivery from one to another needs no memory.
using Deliveries = std::list<Delivery>;

}  // namespace standin
