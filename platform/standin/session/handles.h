// Handles are numbers that say what they stand for, not addresses: whatever is handed in can be
// checked. Uppermost the kind, so that neither a small number nor an address is a handle; then the
// place of the session in the pool; the rest tells one use of that place from another.
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

constexpr unsigned placeBits = 16;
constexpr unsigned useBits = 44;

constexpr uint64_t LowBits(uint64_t value, unsigned bits)
{
    return value & ((uint64_t{1} << bits) - 1);
}

constexpr uint64_t MakeHandle(HandleKind kind, uint32_t place, uint64_t use)
{
    return static_cast<uint64_t>(kind) << (placeBits + useBits) | uint64_t{place} << useBits |
           LowBits(use, useBits);
}

constexpr HandleKind KindOf(uint64_t handle)
{
    return static_cast<HandleKind>(handle >> (placeBits + useBits));
}

constexpr uint32_t PlaceOf(uint64_t handle)
{
    return static_cast<uint32_t>(LowBits(handle >> useBits, placeBits));
}

// What the lower bits of a list's or an item's handle hold.
struct NodeUse {
    static constexpr unsigned stampBits = 20;
    static constexpr unsigned listBits = 4;
    static constexpr unsigned itemBits = 20;
    static_assert(stampBits + listBits + itemBits == useBits);

    uint64_t stamp;  // of the session's position
    uint64_t list;
    uint64_t item;

    static constexpr NodeUse Of(uint64_t handle)
    {
        return {LowBits(handle >> (listBits + itemBits), stampBits),
                LowBits(handle >> itemBits, listBits), LowBits(handle, itemBits)};
    }
    constexpr uint64_t Packed() const
    {
        return LowBits(stamp, stampBits) << (listBits + itemBits) | list << itemBits | item;
    }
};

}  // namespace standin
