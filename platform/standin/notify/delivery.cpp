#include "notify/delivery.h"

#include <utility>

namespace standin {

namespace {

thread_local Delivery::Time running;
thread_local ORM_MESSAGE runningMessage = 0;

}  // namespace

void Delivery::Run(ORM_MESSAGE message) const
{
    const Time outer = std::exchange(running, committed_);  // a callback may read others' messages
    const ORM_MESSAGE outerMessage = std::exchange(runningMessage, message);
    callback_(message, changes_.front().event);
    running = outer;
    runningMessage = outerMessage;
}

Delivery::Time Delivery::Running()
{
    return running;
}

ORM_MESSAGE Delivery::RunningMessage()
{
    return runningMessage;
}

}  // namespace standin
