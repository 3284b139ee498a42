// One message of a subscription: neighbouring rows of one table that a transaction changed by the
// same operation.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "change.h"
#include "limbo.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

// Holds on to the rows, before and after.
class Delivery {
public:
    Delivery(ORM_SUB_CALLBACK callback, std::span<const Change> changes)
        : callback_(callback), changes_(changes.begin(), changes.end())
    {
        ForEachRow([](const StoredRow* row) { row->references++; });
    }
    ~Delivery() { ForEachRow(Release); }
    Delivery(Delivery&& other) noexcept
        : callback_(other.callback_), changes_(std::exchange(other.changes_, {}))
    {
    }
    Delivery& operator=(Delivery&&) = delete;

    const std::vector<Change>& Changes() const { return changes_; }

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

    ORM_SUB_CALLBACK    callback_;
    std::vector<Change> changes_;  // never empty
};

}  // namespace standin
