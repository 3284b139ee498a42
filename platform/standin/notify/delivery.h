// One message of a subscription: neighbouring rows of one table that a transaction changed by the
// same operation.
#pragma once

#include <chrono>
#include <list>
#include <span>
#include <vector>

#include "store/change.h"
#include "store/limbo.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

// Holds on to the rows, before and after.
class Delivery {
public:
    using Time = std::chrono::steady_clock::time_point;

    Delivery(ORM_SUB_CALLBACK callback, std::span<const Change> changes, Time committed)
        : callback_(callback), changes_(changes.begin(), changes.end()), committed_(committed)
    {
        ForEachRow([](const StoredRow* row) { row->references++; });
    }
    ~Delivery() { ForEachRow(Release); }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    const std::vector<Change>& Changes() const { return changes_; }
    Time Committed() const { return committed_; }

    void Run(ORM_MESSAGE message) const { callback_(message, changes_.front().event); }

private:
    template <typename OnRow>
    void ForEachRow(OnRow onRow)
    {
        for (const Change& change : changes_) {
            for (const StoredRow* row : {change.before, change.after}) {
                if (row != nullptr) {
                    onRow(row);
                }
            }
        }
    }

    ORM_SUB_CALLBACK callback_;
    std::vector<Change> changes_;  // never empty
    Time committed_;
};

// A list holds no memory for deliveries that are gone, and gives one away without needing any.
using Deliveries = std::list<Delivery>;

}  // namespace standin
