// Addresses of interfaces: every query is compared with a direct evaluation of the lists.
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include <standin/store.h>
#include <tarnd_qrb/ipv4_address.h>

#include "fuzz.h"

using standin::Row;
using standin::Transaction;

namespace {

constexpr uint32_t none = 0xFFFFFFFF;
constexpr uint32_t untouched = 0xABABABAB;

struct Item {
    uint32_t address;
    uint8_t masklen;
    uint8_t type;
};

struct Interface {
    uint32_t index;
    uint32_t instance;
    std::vector<Item> items;
};

uint32_t MaskOf(uint8_t masklen)
{
    uint32_t mask = 0;
    for (int bit = 0; bit < std::min<int>(masklen, 32); bit++) {
        mask |= 0x80000000U >> bit;
    }
    return mask;
}

// Few different bytes, so that addresses are often equal or in one subnet.
uint32_t TakeAddress(fuzz::Input& input)
{
    constexpr std::array<uint8_t, 4> bytes = {0, 1, 10, 255};
    uint32_t address = 0;
    for (int byte = 0; byte < 4; byte++) {
        address = address << 8 | input.PickValueInArray(bytes);
    }
    return input.ConsumeProbability<float>() < 0.9F ? address : input.ConsumeIntegral<uint32_t>();
}

Item TakeItem(fuzz::Input& input)
{
    const uint32_t address = TakeAddress(input);
    const auto masklen = input.ConsumeIntegralInRange<uint8_t>(0, 40);
    return {address, masklen, input.ConsumeIntegralInRange<uint8_t>(0, 7)};
}

std::vector<Interface> TakeInterfaces(fuzz::Input& input)
{
    std::vector<Interface> interfaces(input.ConsumeIntegralInRange<size_t>(1, 3));
    for (size_t i = 0; i < interfaces.size(); i++) {
        interfaces[i].index = static_cast<uint32_t>(i);
        interfaces[i].instance = input.ConsumeIntegralInRange<uint32_t>(0, 1);
        for (size_t left = input.ConsumeIntegralInRange<size_t>(0, 6); left > 0; left--) {
            interfaces[i].items.push_back(TakeItem(input));
        }
    }
    return interfaces;
}

void Store(const std::vector<Interface>& interfaces)
{
    Transaction transaction;
    for (const Interface& interface : interfaces) {
        Row row("am_ipv4_address");
        row.Set("if_index", interface.index).Set("instance_id", interface.instance);
        row.MakeList("ipv4_address_list");
        for (const Item& item : interface.items) {
            row.AddItem("ipv4_address_list",
                        std::array<uint64_t, 3>{item.address, item.masklen, item.type});
        }
        transaction.Replace(row);
    }
    transaction.Commit();
}

template <typename Wanted>
std::optional<Item> First(const Interface& interface, Wanted wanted)
{
    const auto found = std::ranges::find_if(interface.items, wanted);
    return found != interface.items.end() ? std::optional(*found) : std::nullopt;
}

void CheckMain(const Interface& interface)
{
    const auto typeOne = First(interface, [](const Item& item) { return item.type == 1; });
    const auto notSix = First(interface, [](const Item& item) { return item.type != 6; });
    uint32_t address = untouched;
    uint32_t masklen = untouched;
    CHECK(IP_GetMainIpAddr(interface.index, &address, &masklen) == (typeOne ? 0 : 1));
    CHECK(address == (typeOne ? typeOne->address : untouched));
    CHECK(masklen == (typeOne ? typeOne->masklen : untouched));
    CHECK(BDS_IPGetMainIpByIfIndex(interface.index, &address, &masklen) == (notSix ? 0 : none));
    CHECK(!notSix || (address == notSix->address && masklen == notSix->masklen));
}

void CheckAll(const Interface& interface, uint32_t capacity)
{
    const size_t size = interface.items.size();
    const size_t read = std::min<size_t>(size, capacity);
    std::vector<SYSAPI_IP4_ADDR_S> all(capacity);
    std::vector<uint32_t> addresses(capacity);
    uint32_t count = untouched;
    uint32_t first = untouched;
    CHECK(SYSAPI_GetIp4AddrNumByIf(interface.index) == size);
    CHECK(SYSAPI_GetIp4AllAddrByIf(interface.index, all.data(), capacity) == 0);
    CHECK(BDS_IPIFGetThisIfIpAddr(interface.index, addresses.data(), capacity, &count) == 0);
    CHECK(count == read);
    for (size_t i = 0; i < read; i++) {
        CHECK(all[i].address == interface.items[i].address && addresses[i] == all[i].address);
        CHECK(all[i].masklen == interface.items[i].masklen);
    }
    CHECK(BDS_IPGetFirstIpByIfIndex(interface.index, &first) == (size > 0 ? 0 : 1));
    CHECK(first == (size > 0 ? interface.items[0].address : untouched));
}

void CheckOne(const Interface& interface, uint32_t address)
{
    const auto same = First(interface, [=](const Item& item) { return item.address == address; });
    uint32_t mask = untouched;
    CHECK(BDS_IPIFIsThisIfIpAddr(interface.index, address) == (same ? 1 : 0));
    CHECK(IP_GetMask(interface.index, address, &mask) == (same ? 0 : 1));
    CHECK(mask == (same ? MaskOf(same->masklen) : untouched));
}

void CheckBest(const Interface& interface, uint32_t peer)
{
    uint32_t masklen = untouched;
    uint32_t network = untouched;
    uint32_t address = untouched;
    const bool found =
        BDS_IPGetIFBestMatchIpAddr(interface.index, peer, &masklen, &network, &address) == 0;
    CHECK(found == !interface.items.empty());
    if (!found) {
        return;
    }
    Item best = interface.items[0];
    for (size_t i = 1; i < interface.items.size(); i++) {
        const Item& item = interface.items[i];
        const uint32_t mask = MaskOf(item.masklen);
        if (item.address != 0 && (item.address & mask) == (peer & mask)) {
            best = item;
        }
    }
    CHECK(address == best.address && masklen == best.masklen);
    CHECK(network == (best.address & MaskOf(best.masklen)));
}

void CheckOwner(const std::vector<Interface>& interfaces, uint32_t address, uint32_t instance)
{
    const auto owner = std::ranges::find_if(interfaces, [=](const Interface& interface) {
        return interface.instance == instance &&
               First(interface, [=](const Item& item) { return item.address == address; });
    });
    const bool found = owner != interfaces.end();
    uint32_t index = untouched;
    CHECK(IP_GetIfindexbyIpAddr(address, instance, &index) == (found ? 0 : 1));
    CHECK(index == (found ? owner->index : none));
    CHECK(BDS_IPIsLocalIfAddr(address, instance) == (found ? 1 : 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::vector<Interface> interfaces = TakeInterfaces(input);
    const uint32_t address = TakeAddress(input);
    Store(interfaces);
    for (const Interface& interface : interfaces) {
        CheckMain(interface);
        CheckAll(interface, input.ConsumeIntegralInRange<uint32_t>(1, 8));
        CheckOne(interface, address);
        CheckBest(interface, address);
    }
    CheckOwner(interfaces, address, input.ConsumeIntegralInRange<uint32_t>(0, 1));
    standin::Reset();
    return 0;
}
