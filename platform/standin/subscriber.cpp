#include "subscriber.h"

#include "change.h"
#include "codes.h"

namespace standin {

void Publish(std::span<const Change>) {}

uint32_t CloseSubscriptionSession(uint64_t)
{
    return Refusal::UnknownHandle;
}

}  // namespace standin
