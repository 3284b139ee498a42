#include "notify/delivery.h"

#include <utility>

namespace standin {

namespace {

thread_local Delivery::Time running;

}  // namespace

void Delivery::Run(ORM_MESSAGE message) const
{
    const Time outer = std::exchange(running, committed_);  // a callback may read others' messages
    callback_(message, changes_.front().event);
    running = outer;
}

Delivery::Time Delivery::Running()
{
    return running;
}

}  // namespace standin
