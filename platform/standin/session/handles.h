// Handles are numbers, not addresses, so that any value passed in can be checked: the kind in the
// uppermost bits, so that neither a small number nor an address is a handle; then the number of the
// session in the pool; the rest distinguishes the uses of that session.
#pragma once

#include <cstdint>

namespace standin {

enum class HandleKind : uint64_t {
    None,
    Session,
    Message,
    Subscription,
    Parameter,
    Scan,
    List,
    Item
};

constexpr unsigned SESSION_BITS = 16;
constexpr unsigned USE_BITS = 44;

constexpr uint64_t LowBits(uint64_t value, unsigned bits)
{
    return value & ((uint64_t{1} << bits) - 1);
}

constexpr uint64_t MakeHandle(HandleKind kind, uint32_t session, uint64_t use)
{
    return static_cast<uint64_t>(kind) << (SESSION_BITS + USE_BITS) |
           uint64_t{session} << USE_BITS | LowBits(use, USE_BITS);
}

constexpr HandleKind KindOf(uint64_t handle)
{
    return static_cast<HandleKind>(handle >> (SESSION_BITS + USE_BITS));
}

constexpr uint32_t SessionNumberOf(uint64_t handle)
{
    return static_cast<uint32_t>(LowBits(handle >> USE_BITS, SESSION_BITS));
}

// The lower bits of a list's or an item's handle.
struct NodeUse {
    static constexpr unsigned STAMP_BITS = 20;
    static constexpr unsigned LIST_BITS = 4;
    static constexpr unsigned ITEM_BITS = 20;
    static_assert(STAMP_BITS + LIST_BITS + ITEM_BITS == USE_BITS);

    uint64_t stamp;  // of the session's current row
    uint64_t list;
    uint64_t item;

    static constexpr NodeUse Of(uint64_t handle)
    {
        return {LowBits(handle >> (LIST_BITS + ITEM_BITS), STAMP_BITS),
                LowBits(handle >> ITEM_BITS, LIST_BITS), LowBits(handle, ITEM_BITS)};
    }
    constexpr uint64_t Packed() const
    {
        return LowBits(stamp, STAMP_BITS) << (LIST_BITS + ITEM_BITS) | list << ITEM_BITS | item;
    }
};

}  // namespace standin
