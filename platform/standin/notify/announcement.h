// What a transaction has to tell its subscribers.
#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "notify/delivery.h"

namespace standin {

class Subscriber;

// Made while the transaction can still be undone, since that takes memory; posted, which takes
// none, once it stands. So what is committed is told.
class Announcement {
public:
    Announcement() = default;
    explicit Announcement(std::span<const Change> changes);

    // In the order of the transactions.
    void Post();

private:
    std::vector<std::pair<std::shared_ptr<Subscriber>, Deliveries>> mail_;
};

}  // namespace standin
