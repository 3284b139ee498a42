#include "store/thread_slot.h"

namespace standin {

std::atomic<ThreadSlot*> threadSlots = nullptr;
constinit thread_local ThreadSlot* ownSlot = nullptr;

namespace {

struct GiveBackAtThreadEnd {
    ~GiveBackAtThreadEnd()
    {
        ownSlot->owned.store(false, std::memory_order_release);
        ownSlot = nullptr;
    }
};

ThreadSlot* ReuseSlot()
{
    for (ThreadSlot* slot = threadSlots; slot != nullptr; slot = slot->next) {
        bool owned = false;
        if (slot->owned.compare_exchange_strong(owned, true)) {
            return slot;
        }
    }
    return nullptr;
}

ThreadSlot* AddSlot()
{
    auto* slot = new ThreadSlot;
    slot->next = threadSlots;
    while (!threadSlots.compare_exchange_weak(slot->next, slot)) {
    }
    return slot;
}

}  // namespace

ThreadSlot& TakeThreadSlot()
{
    ThreadSlot* slot = ReuseSlot();
    ownSlot = slot != nullptr ? slot : AddSlot();
    static thread_local const GiveBackAtThreadEnd giveBack;
    return *ownSlot;
}

}  // namespace standin
