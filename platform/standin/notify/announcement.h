// The messages of one transaction to its subscribers.
#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "notify/subscriber.h"

namespace standin {

// Made while the transaction can still be undone, since that takes memory. Posting takes none, so
// every committed change is announced.
class Announcement {
public:
    Announcement() = default;
    explicit Announcement(std::span<const Change> changes);

    // In the order of the transactions.
    void Post();

private:
    std::vector<std::pair<std::shared_ptr<Subscriber>, Deliveries>> messages_;
};

}  // namespace standin
