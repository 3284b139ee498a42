// The prefix match against a comparison bit by bit, and route inquiries against the three tables
// joined in the obvious way.
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include <standin/store.h>
#include <tarnd_qrb/route.h>

#include "fuzz.h"

using standin::Row;
using standin::Transaction;

namespace {

bool Covers(uint32_t address, uint8_t prefixLen, uint32_t probe, uint8_t probeLen)
{
    if (prefixLen > 32 || prefixLen > probeLen) {
        return false;
    }
    for (int bit = 31; bit > 31 - prefixLen; bit--) {
        if ((address >> bit & 1) != (probe >> bit & 1)) {
            return false;
        }
    }
    return true;
}

struct Forward {
    uint32_t address;
    uint32_t prefixLen;
    uint32_t group;
    bool operator==(const Forward& other) const
    {
        return address == other.address && prefixLen == other.prefixLen;
    }
};

struct Member {
    uint32_t group;
    uint32_t nextHop;
    bool operator==(const Member&) const = default;
};

struct Routes {
    std::vector<Forward> forwards;
    std::vector<Member> members;
    std::vector<uint32_t> nextHops;  // indexes
};

template <typename Element>
void AddNew(std::vector<Element>& elements, const Element& added)
{
    if (std::ranges::count(elements, added) == 0) {
        elements.push_back(added);
    }
}

Routes TakeRoutes(fuzz::Input& input, uint32_t destination)
{
    Routes routes;
    for (size_t left = input.ConsumeIntegralInRange<size_t>(0, 4); left > 0; left--) {
        const auto flipped = input.ConsumeIntegralInRange<uint32_t>(0, 32);
        const auto prefixLen =
            input.ConsumeIntegralInRange<uint32_t>(0, 40) + (input.ConsumeBool() ? 256 : 0);
        const uint32_t address = destination ^ static_cast<uint32_t>(uint64_t{1} << flipped);
        AddNew(routes.forwards, {address, prefixLen, input.ConsumeIntegralInRange<uint32_t>(0, 2)});
    }
    for (size_t left = input.ConsumeIntegralInRange<size_t>(0, 24); left > 0; left--) {
        const auto group = input.ConsumeIntegralInRange<uint32_t>(0, 2);
        AddNew(routes.members, {group, input.ConsumeIntegralInRange<uint32_t>(0, 15)});
    }
    const auto present = input.ConsumeIntegral<uint16_t>();
    for (uint32_t nextHop = 0; nextHop < 16; nextHop++) {
        if ((present >> nextHop & 1) != 0) {
            routes.nextHops.push_back(nextHop);
        }
    }
    return routes;
}

void Store(const Routes& routes)
{
    Transaction transaction;
    for (const Forward& forward : routes.forwards) {
        transaction.Insert(Row("Fib.ConfigIpv4Fwd")
                               .Set("destAddr", forward.address)
                               .Set("prefixLen", forward.prefixLen)
                               .Set("nhpGroupId", forward.group));
    }
    for (const Member& member : routes.members) {
        transaction.Insert(Row("Fib.ConfigNhpGroupNode")
                               .Set("nhpGroupId", member.group)
                               .Set("primaryNhpId", member.nextHop));
    }
    for (const uint32_t nextHop : routes.nextHops) {
        transaction.Insert(Row("Fib.ConfigNhpStandard")
                               .Set("nhpIndex", nextHop)
                               .Set("next_hop", 100 + nextHop)
                               .Set("out_if_index", 200 + nextHop));
    }
    transaction.Commit();
}

// The next hops' indexes of a destination, as many as a group has.
std::vector<uint32_t> NextHops(const Routes& routes, uint32_t destination)
{
    std::vector<uint32_t> nextHops;
    const auto forward = std::ranges::find_if(routes.forwards, [=](const Forward& one) {
        return Covers(one.address, static_cast<uint8_t>(one.prefixLen), destination, 32);
    });
    for (const Member& member : routes.members) {
        if (forward != routes.forwards.end() && member.group == forward->group) {
            nextHops.push_back(member.nextHop);
        }
    }
    return nextHops;
}

bool IsNextHop(const Routes& routes, uint32_t index, const FIB_NHP_S& nextHop)
{
    const bool known = std::ranges::count(routes.nextHops, index) != 0;
    CHECK(nextHop.firstValue == (known ? 100 + index : 0));
    CHECK(nextHop.secondValue == (known ? 200 + index : 0));
    return known;
}

void CheckInquiries(const Routes& routes, uint32_t destination, uint32_t capacity)
{
    const std::vector<uint32_t> expected = NextHops(routes, destination);
    const FIB_KEY_S key = {{}, destination};
    FIB_NHP_S one = {};
    const bool answered = FIB_InquiryRoute(&key, &one) == 0;
    CHECK(answered == (!expected.empty() && IsNextHop(routes, expected[0], one)));

    std::vector<FIB_NHP_S> several(capacity);
    uint32_t count = capacity;
    const bool all = FIB_InquiryRoutes(&key, several.data(), &count) == 0;
    if (expected.empty()) {
        CHECK(!all && count == capacity);
        return;
    }
    const size_t most = std::min<size_t>(FIB_GROUP_MEMBERS_MAX, expected.size());
    CHECK(count == std::min<size_t>(capacity, most));
    size_t filled = 0;
    while (filled < count && IsNextHop(routes, expected[filled], several[filled])) {
        filled++;
    }
    CHECK(all == (filled == count));
}

void CheckMatch(fuzz::Input& input)
{
    const auto address = input.ConsumeIntegral<uint32_t>();
    const FIB_PREFIX_S prefix = {address, input.ConsumeIntegral<uint8_t>()};
    const auto shared = input.ConsumeIntegralInRange<uint32_t>(0, 32);
    const uint32_t probed = address ^ static_cast<uint32_t>(uint64_t{1} << shared);
    const FIB_PREFIX_S probe = {probed, input.ConsumeIntegral<uint8_t>()};
    CHECK((FIB_AM_PrefixMatch(&prefix, &probe) != 0) ==
          Covers(address, prefix.prefixLen, probed, probe.prefixLen));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    CheckMatch(input);

    const auto destination = input.ConsumeIntegral<uint32_t>();
    const auto capacity = input.ConsumeIntegralInRange<uint32_t>(1, 12);
    const Routes routes = TakeRoutes(input, destination);
    Store(routes);
    CheckInquiries(routes, destination, capacity);
    standin::Reset();
    return 0;
}
