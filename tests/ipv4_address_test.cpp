// IPv4 addresses of interfaces.
#include <arpa/inet.h>

#include <tarnd_qrb/ipv4_address.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailAllocation;
using support::FailCall;
using support::PlatformCalls;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE      = 0xFFFFFFFF;
constexpr uint32_t UNTOUCHED = 77;
constexpr uint32_t NO_RECORD = 99;  // an interface without one

uint32_t Ip(const std::string& dotted)
{
    return ntohl(inet_addr(dotted.c_str()));
}

// A result code and the outputs, as "0 10.0.0.2 24": addresses and masks dotted, "-" for what was
// not written.
std::string Answer(uint32_t code, std::initializer_list<uint32_t> outputs)
{
    std::string text = std::to_string(code);
    for (const uint32_t output : outputs) {
        const in_addr address = {htonl(output)};
        text += ' ';
        text += output == UNTOUCHED ? "-"
                : output < 256      ? std::to_string(output)
                                    : inet_ntoa(address);
    }
    return text;
}

struct Item {
    const char* address;
    uint8_t     masklen;
    uint8_t     type;
};

class Ipv4Address : public support::PlatformTest {
protected:
    static void Insert(uint32_t ifIndex, const std::vector<Item>& items, uint32_t instance = 0)
    {
        standin::Row row("am_ipv4_address");
        row.Set("if_index", ifIndex).Set("instance_id", instance).MakeList("ipv4_address_list");
        for (const Item& item : items) {
            const uint64_t values[] = {Ip(item.address), item.masklen, item.type};
            row.AddItem("ipv4_address_list", values);
        }
        Commit(row);
    }

    static void InsertWithoutList(uint32_t ifIndex)
    {
        Commit(standin::Row("am_ipv4_address").Set("if_index", ifIndex));
    }

private:
    static void Commit(const standin::Row& row)
    {
        standin::Transaction fill;
        fill.Insert(row);
        fill.Commit();
    }
};

TEST_F(Ipv4Address, RecordIsHandedOverWithItsSession)
{
    Insert(3, {{"10.0.0.1", 24, 1}});
    const uint32_t key     = 3;
    ORM_SESSION    session = 0;
    ORM_NODE       list    = 0;
    ORM_NODE       node    = 0;
    ASSERT_EQ(BDS_IPGetIpv4AddrTblByIfIndex(&session, &key), 0U);
    ASSERT_EQ(OrmNodeGetChild(session, 0, "ipv4_address_list", &list), 0U);
    ASSERT_EQ(OrmNodeGetItemByIdx(list, 0, &node), 0U);
    const auto read = [node] {
        BDS_IPV4_ADDR_ITEM_S item = {UNTOUCHED, UNTOUCHED, UNTOUCHED};
        const uint32_t       ret  = BDS_IPGetIpv4AddrTblItem(node, &item);
        return Answer(ret == NONE ? 1 : ret, {item.address, item.masklen, item.type});
    };
    EXPECT_EQ(read(), "0 10.0.0.1 24 1");
    FailCall("OrmNodeGetFieldById", 3, 61);
    EXPECT_EQ(read(), "1 10.0.0.1 24 -");
    FailCall("OrmNodeGetFieldById", 2, 62);
    EXPECT_EQ(read(), "1 10.0.0.1 - -");
    const std::string name = "BDS_IPGetIpv4AddrTblItem: get ipv4 addr item ";
    EXPECT_EQ(TakeMessages(),
              (Messages{name + "type fail, ret=61\n", name + "masklen fail, ret=62\n"}));
    EXPECT_EQ(OrmCloseSession(session), 0U);
}

TEST_F(Ipv4Address, RecordThatCannotBeHandedOverIsClosed)
{
    const struct {
        const char* operation;
        const char* message;
    } steps[] = {
        {"OrmOpenSessionByDefault", "create db session fail, ret=62\n"},
        {"OrmPrepare", "prepare am_ipv4_address fail, ret=62\n"},
        {"OrmgAmIpv4AddressSetKeyPrimaryKeyInner", "set primary am_ipv4_address fail, ret=62\n"},
        {"OrmExecute", "set primary am_ipv4_address fail, ret=62\n"},
    };
    const std::string name = "BDS_IPGetIpv4AddrTblByIfIndex: get main ipv4 addr ";
    const uint32_t    key  = 3;
    Insert(key, {});
    for (const auto& step : steps) {
        ORM_SESSION session = 0;
        FailCall(step.operation, 1, 62);
        EXPECT_EQ(BDS_IPGetIpv4AddrTblByIfIndex(&session, &key), NONE);
        EXPECT_EQ(TakeMessages(), Messages{name + step.message});
        EXPECT_EQ(PlatformCalls().back(), "OrmCloseSession");
    }
}

std::string FirstNotOfType6(uint32_t ifIndex)
{
    uint32_t       address = UNTOUCHED;
    uint32_t       masklen = UNTOUCHED;
    const uint32_t ret     = BDS_IPGetMainIpByIfIndex(ifIndex, &address, &masklen);
    EXPECT_TRUE(ret == 0 || ret == NONE);
    return Answer(ret == NONE ? 1 : ret, {address, masklen});
}

TEST_F(Ipv4Address, MainAddressIsTheFirstNotOfType6)
{
    Insert(1, {{"10.0.0.1", 24, 6}, {"10.0.0.2", 25, 2}, {"10.0.0.3", 26, 1}});
    Insert(2, {{"10.0.0.1", 24, 6}});
    Insert(3, {});
    InsertWithoutList(4);
    EXPECT_EQ(FirstNotOfType6(1), "0 10.0.0.2 25");
    EXPECT_TRUE(TakeLog().empty());
    for (const uint32_t ifIndex : {2U, 3U, 4U, NO_RECORD}) {
        EXPECT_EQ(FirstNotOfType6(ifIndex), "1 - -");
    }
    const std::string name = "BDS_IPGetMainIpByIfIndex: get main ipv4 ";
    EXPECT_EQ(TakeMessages(),
              (Messages{
                  name + "fail, ret=0, ifIndex=2\n",
                  name + "get addr list len is zero ret=0, ifIndex=3\n",
                  name + "get addr list fail ret=10058, ifIndex=4\n",
                  "BDS_IPGetIpv4AddrTblByIfIndex: get main ipv4 addr set primary am_ipv4_address "
                  "fail, ret=1001000\n",
                  name + "get db session fail ret=4294967295, ifIndex=99\n",
              }));
}

TEST_F(Ipv4Address, MainAddressPassesOverUnreadableItems)
{
    const std::string name = "BDS_IPGetMainIpByIfIndex: ";
    Insert(1, {{"10.0.0.1", 24, 2}, {"10.0.0.2", 25, 2}});
    FailCall("OrmNodeGetItemByIdx", 1, 63);
    EXPECT_EQ(FirstNotOfType6(1), "0 10.0.0.2 25");
    EXPECT_EQ(TakeMessages(), Messages{name + "get node item by index fail, ret=63\n"});
    FailCall("OrmNodeGetFieldById", 3, 63);
    EXPECT_EQ(FirstNotOfType6(1), "0 10.0.0.2 25");
    EXPECT_EQ(TakeMessages(),
              (Messages{"BDS_IPGetIpv4AddrTblItem: get ipv4 addr item type fail, ret=63\n",
                        name + "get ipv4 address fail, ret=4294967295\n"}));

    // The last item's code is the one that is told.
    Insert(2, {{"10.0.0.1", 24, 6}, {"10.0.0.2", 25, 2}});
    FailCall("OrmNodeGetItemByIdx", 2, 63);
    EXPECT_EQ(FirstNotOfType6(2), "1 - -");
    FailCall("OrmNodeGetSize", 1, 64);
    EXPECT_EQ(FirstNotOfType6(2), "1 - -");
    EXPECT_EQ(TakeMessages(),
              (Messages{name + "get node item by index fail, ret=63\n",
                        name + "get main ipv4 fail, ret=63, ifIndex=2\n",
                        name + "get main ipv4 get addr list len is zero ret=64, ifIndex=2\n"}));
}

std::string FirstOfType1(uint32_t ifIndex)
{
    uint32_t       address = UNTOUCHED;
    uint32_t       masklen = UNTOUCHED;
    const uint32_t ret     = IP_GetMainIpAddr(ifIndex, &address, &masklen);
    return Answer(ret, {address, masklen});
}

TEST_F(Ipv4Address, MainAddressIsTheFirstOfType1)
{
    Insert(1, {{"10.0.0.1", 24, 2}, {"10.0.0.2", 25, 1}, {"10.0.0.3", 26, 1}});
    Insert(2, {{"10.0.0.1", 24, 2}});
    EXPECT_EQ(FirstOfType1(1), "0 10.0.0.2 25");
    EXPECT_EQ(FirstOfType1(2), "1 - -");
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(FirstOfType1(NO_RECORD), "1 - -");
    FailCall("OrmNodeGetItemByIdx", 1, 64);  // not passed over
    EXPECT_EQ(FirstOfType1(1), "1 - -");
    FailCall("OrmCloseSession", 1, 64);  // nothing is written before
    EXPECT_EQ(FirstOfType1(1), "1 - -");
    EXPECT_EQ(TakeMessages(),
              (Messages{"IP_GetMainIpAddr: DB error: 1001000\n", "IP_GetMainIpAddr: DB error: 64\n",
                        "IP_GetMainIpAddr: Failed to fetch DB, ret=64\n"}));
}

TEST_F(Ipv4Address, Number)
{
    Insert(1, {{"10.0.0.1", 24, 1}, {"0.0.0.0", 0, 6}, {"10.0.0.1", 24, 1}});
    InsertWithoutList(2);
    EXPECT_EQ(SYSAPI_GetIp4AddrNumByIf(1), 3U);
    EXPECT_EQ(SYSAPI_GetIp4AddrNumByIf(NO_RECORD), 0U);
    EXPECT_TRUE(TakeLog().empty());

    // Only an absent record is silent, and only where the read finds it absent.
    EXPECT_EQ(SYSAPI_GetIp4AddrNumByIf(2), 0U);
    FailCall("OrmPrepare", 1, ORM_NO_RECORD);
    EXPECT_EQ(SYSAPI_GetIp4AddrNumByIf(1), 0U);
    // The count is had by the time the session closes.
    FailCall("OrmCloseSession", 1, 65);
    EXPECT_EQ(SYSAPI_GetIp4AddrNumByIf(1), 3U);
    EXPECT_EQ(TakeMessages(), (Messages{"SYSAPI_GetIp4AddrNumByIf: DB error: 10058\n",
                                        "SYSAPI_GetIp4AddrNumByIf: DB error: 1001000\n",
                                        "SYSAPI_GetIp4AddrNumByIf: Failed to fetch DB, ret=65\n"}));
}

std::string All(uint32_t ifIndex, uint32_t capacity)
{
    SYSAPI_IP4_ADDR_S all[3] = {
        {UNTOUCHED, UNTOUCHED}, {UNTOUCHED, UNTOUCHED}, {UNTOUCHED, UNTOUCHED}};
    const uint32_t ret = SYSAPI_GetIp4AllAddrByIf(ifIndex, all, capacity);
    return Answer(ret, {all[0].address, all[0].masklen, all[1].address, all[1].masklen,
                        all[2].address, all[2].masklen});
}

TEST_F(Ipv4Address, AllAddresses)
{
    Insert(1, {{"10.0.0.1", 24, 6}, {"10.0.0.2", 32, 1}});
    Insert(2, {});
    EXPECT_EQ(All(1, 1), "0 10.0.0.1 24 - - - -");
    EXPECT_EQ(All(1, 2), "0 10.0.0.1 24 10.0.0.2 32 - -");
    EXPECT_EQ(All(1, 3), "0 10.0.0.1 24 10.0.0.2 32 - -");
    EXPECT_EQ(All(2, 3), "0 - - - - - -");
    EXPECT_TRUE(TakeLog().empty());
    FailCall("OrmNodeGetFieldById", 4, 66);  // what was read before stays
    EXPECT_EQ(All(1, 3), "1 10.0.0.1 24 10.0.0.2 - - -");
    EXPECT_EQ(All(1, 0), "1 - - - - - -");
    EXPECT_EQ(TakeMessages(), (Messages{"SYSAPI_GetIp4AllAddrByIf: DB error: 66\n",
                                        "SYSAPI_GetIp4AllAddrByIf: Null value provided\n"}));
}

// The three questions that are answered from a copy of the list.
std::string First(uint32_t ifIndex)
{
    uint32_t       address = UNTOUCHED;
    const uint32_t ret     = BDS_IPGetFirstIpByIfIndex(ifIndex, &address);
    return Answer(ret, {address});
}

std::string Addresses(uint32_t ifIndex, uint32_t capacity)
{
    uint32_t       addresses[3] = {UNTOUCHED, UNTOUCHED, UNTOUCHED};
    uint32_t       count        = UNTOUCHED;
    const uint32_t ret          = BDS_IPIFGetThisIfIpAddr(ifIndex, addresses, capacity, &count);
    return Answer(ret, {count, addresses[0], addresses[1], addresses[2]});
}

TEST_F(Ipv4Address, CopyOfTheList)
{
    Insert(1, {{"10.0.0.3", 24, 6}, {"10.0.0.2", 24, 1}});
    EXPECT_EQ(First(1), "0 10.0.0.3");
    EXPECT_EQ(Addresses(1, 0), "0 0 - - -");
    EXPECT_EQ(Addresses(1, 1), "0 1 10.0.0.3 - -");
    EXPECT_EQ(Addresses(1, 3), "0 2 10.0.0.3 10.0.0.2 -");
    EXPECT_EQ(BDS_IPIFIsThisIfIpAddr(1, Ip("10.0.0.2")), 1U);
    EXPECT_EQ(BDS_IPIFIsThisIfIpAddr(1, Ip("10.0.0.4")), 0U);
    EXPECT_EQ(BDS_IPIFIsThisIfIpAddr(1, 0), 0U);
    EXPECT_EQ(First(NO_RECORD), "1 -");
    EXPECT_EQ(Addresses(NO_RECORD, 3), "0 0 - - -");
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(BDS_IPIFIsThisIfIpAddr(NO_RECORD, Ip("10.0.0.1")), 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"BDS_IPIFIsThisIfIpAddr: Interface 99 without addresses passed\n"});
}

TEST_F(Ipv4Address, CopyThatFails)
{
    Insert(1, {{"10.0.0.1", 24, 1}, {"10.0.0.2", 24, 1}});
    FailAllocation(1);
    EXPECT_EQ(First(1), "1 -");
    FailAllocation(1);
    EXPECT_EQ(Addresses(1, 3), "1 - - - -");
    FailAllocation(1);
    EXPECT_EQ(BDS_IPIFIsThisIfIpAddr(1, Ip("10.0.0.1")), 0U);
    EXPECT_EQ(TakeMessages(),
              (Messages{"BDS_IPGetFirstIpByIfIndex: Failed to calloc fetched addrs\n",
                        "BDS_IPIFGetThisIfIpAddr: Failed to calloc fetched addrs\n",
                        "BDS_IPIFIsThisIfIpAddr: Failed to calloc fetched addrs\n"}));
    // What can't be read counts as 0, and as an address of the interface.
    FailCall("OrmOpenSessionByDefault", 2, 67);
    EXPECT_EQ(First(1), "0 0");
    FailCall("OrmNodeGetItemByIdx", 2, 67);
    EXPECT_EQ(Addresses(1, 3), "0 2 10.0.0.1 0 -");
    EXPECT_EQ(TakeMessages(),
              (Messages{"SYSAPI_GetIp4AllAddrByIf: Failed to fetch DB, ret=67\n",
                        "BDS_IPGetFirstIpByIfIndex: Failed to get all addresses by if, ifIndex=1, "
                        "ret=1\n",
                        "SYSAPI_GetIp4AllAddrByIf: DB error: 67\n",
                        "BDS_IPIFGetThisIfIpAddr: Failed to get all addresses by if, ifIndex=1, "
                        "ret=1\n"}));
}

std::string BestMatch(uint32_t ifIndex, const char* peer)
{
    uint32_t       masklen = UNTOUCHED;
    uint32_t       network = UNTOUCHED;
    uint32_t       address = UNTOUCHED;
    const uint32_t ret =
        BDS_IPGetIFBestMatchIpAddr(ifIndex, Ip(peer), &masklen, &network, &address);
    return Answer(ret, {address, masklen, network});
}

TEST_F(Ipv4Address, BestMatch)
{
    Insert(1, {{"10.0.0.1", 24, 1}, {"192.168.1.1", 24, 2}, {"192.168.1.2", 16, 2}});
    Insert(2, {{"10.0.0.1", 24, 1}, {"0.0.0.0", 0, 2}});
    Insert(3, {{"10.0.0.1", 24, 1}, {"172.16.0.1", 0, 2}});
    Insert(4, {{"10.0.0.1", 24, 1}, {"10.0.0.2", 200, 2}});
    Insert(5, {});
    EXPECT_EQ(BestMatch(1, "192.168.1.9"), "0 192.168.1.2 16 192.168.0.0");  // last, not longest
    EXPECT_EQ(BestMatch(1, "10.0.0.9"), "0 10.0.0.1 24 10.0.0.0");
    EXPECT_EQ(BestMatch(1, "1.1.1.1"), "0 10.0.0.1 24 10.0.0.0");  // for want of another
    EXPECT_EQ(BestMatch(2, "1.1.1.1"), "0 10.0.0.1 24 10.0.0.0");  // 0.0.0.0 never fits
    EXPECT_EQ(BestMatch(3, "1.1.1.1"), "0 172.16.0.1 0 0");        // length 0 fits everybody
    EXPECT_EQ(BestMatch(4, "10.0.0.2"), "0 10.0.0.2 200 10.0.0.2");
    EXPECT_EQ(BestMatch(4, "10.0.0.3"), "0 10.0.0.1 24 10.0.0.0");  // above 32 fits only itself
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_EQ(BestMatch(5, "10.0.0.9"), "1 - - -");
    EXPECT_EQ(BestMatch(NO_RECORD, "10.0.0.9"), "1 - - -");
    FailCall("OrmNodeGetItemByIdx", 2, 68);  // the best so far stays
    EXPECT_EQ(BestMatch(1, "192.168.1.9"), "1 10.0.0.1 24 10.0.0.0");
    const std::string name = "BDS_IPGetIFBestMatchIpAddr: ";
    EXPECT_EQ(TakeMessages(), (Messages{name + "There is no ip address on interface!",
                                        name + "DB error: 1001000\n", name + "DB error: 68\n"}));
}

std::string Mask(uint32_t ifIndex, const char* address)
{
    uint32_t       mask = UNTOUCHED;
    const uint32_t ret  = IP_GetMask(ifIndex, Ip(address), &mask);
    return Answer(ret, {mask});
}

TEST_F(Ipv4Address, Mask)
{
    Insert(1, {{"10.0.0.1", 0, 2},
               {"10.0.0.2", 1, 2},
               {"10.0.0.3", 24, 2},
               {"10.0.0.4", 32, 2},
               {"10.0.0.5", 33, 2},
               {"10.0.0.6", 255, 2},
               {"10.0.0.3", 8, 1}});
    EXPECT_EQ(Mask(1, "10.0.0.1"), "0 0");
    EXPECT_EQ(Mask(1, "10.0.0.2"), "0 128.0.0.0");
    EXPECT_EQ(Mask(1, "10.0.0.3"), "0 255.255.255.0");  // the first with the address counts
    EXPECT_EQ(Mask(1, "10.0.0.4"), "0 255.255.255.255");
    EXPECT_EQ(Mask(1, "10.0.0.5"), "0 255.255.255.255");
    EXPECT_EQ(Mask(1, "10.0.0.6"), "0 255.255.255.255");
    EXPECT_EQ(Mask(1, "10.0.0.7"), "1 -");
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(Mask(NO_RECORD, "10.0.0.1"), "1 -");
    FailCall("OrmCloseSession", 1, 69);
    EXPECT_EQ(Mask(1, "10.0.0.3"), "1 255.255.255.0");
    EXPECT_EQ(TakeMessages(), (Messages{"IP_GetMask: DB error: 1001000\n",
                                        "IP_GetMask: Failed to fetch DB, ret=69\n"}));
}

TEST_F(Ipv4Address, Owner)
{
    Insert(5, {{"10.0.0.1", 24, 1}}, 7);
    Insert(4, {{"10.0.0.9", 24, 1}, {"10.0.0.1", 24, 6}}, 8);
    Insert(3, {{"10.0.0.1", 24, 1}}, 8);
    for (const auto ownerOf : {IP_GetIfindexbyIpAddr, BDS_IPGetIfindexbyIpAddr}) {
        uint32_t owner = UNTOUCHED;
        EXPECT_EQ(ownerOf(Ip("10.0.0.1"), 7, &owner), 0U);
        EXPECT_EQ(owner, 5U);
        EXPECT_EQ(ownerOf(Ip("10.0.0.1"), 8, &owner), 0U);
        EXPECT_EQ(owner, 4U);
        EXPECT_EQ(ownerOf(Ip("10.0.0.9"), 7, &owner), 1U);
        EXPECT_EQ(owner, NONE);
    }
    EXPECT_EQ(BDS_IPIsLocalIfAddr(Ip("10.0.0.9"), 8), 1U);
    EXPECT_EQ(BDS_IPIsLocalIfAddr(Ip("10.0.0.9"), 7), 0U);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Ipv4Address, OwnerScanAdvancesPastTheMatch)
{
    Insert(5, {{"10.0.0.1", 24, 1}, {"10.0.0.2", 24, 1}});
    Insert(6, {{"10.0.0.1", 24, 1}});
    EXPECT_EQ(BDS_IPIsLocalIfAddr(Ip("10.0.0.1"), 0), 1U);
    EXPECT_EQ(PlatformCalls(),
              (Messages{"OrmOpenSessionByDefault", "OrmPrepare", "OrmScanStart", "OrmScanNext",
                        "OrmGetFieldById", "OrmGetFieldById", "OrmNodeGetChild", "OrmNodeGetSize",
                        "OrmNodeGetItemByIdx", "OrmNodeGetFieldById", "OrmScanNext", "OrmScanEnd",
                        "OrmCloseSession"}));
    uint32_t owner = UNTOUCHED;
    FailCall("OrmScanNext", 2, 70);
    EXPECT_EQ(IP_GetIfindexbyIpAddr(Ip("10.0.0.1"), 0, &owner), 1U);
    FailCall("OrmScanEnd", 1, 71);
    EXPECT_EQ(IP_GetIfindexbyIpAddr(Ip("10.0.0.1"), 0, &owner), 1U);
    FailCall("OrmCloseSession", 1, 72);
    EXPECT_EQ(BDS_IPIsLocalIfAddr(Ip("10.0.0.1"), 0), 0U);
    EXPECT_EQ(TakeMessages(), (Messages{"IP_GetIfindexbyIpAddr: DB error: 70\n",
                                        "IP_GetIfindexbyIpAddr: DB error: 71\n",
                                        "IP_GetIfindexbyIpAddr: Failed to fetch DB, ret=72\n"}));
    EXPECT_EQ(owner, UNTOUCHED);
}

TEST_F(Ipv4Address, NullIsRefused)
{
    uint32_t x = UNTOUCHED;
    EXPECT_EQ(IP_GetMainIpAddr(1, nullptr, &x), 1U);
    EXPECT_EQ(IP_GetMainIpAddr(1, &x, nullptr), 1U);
    EXPECT_EQ(SYSAPI_GetIp4AllAddrByIf(1, nullptr, 3), 1U);
    EXPECT_EQ(BDS_IPIFGetThisIfIpAddr(1, nullptr, 1, &x), 1U);
    EXPECT_EQ(BDS_IPIFGetThisIfIpAddr(1, &x, 1, nullptr), 1U);
    EXPECT_EQ(BDS_IPGetFirstIpByIfIndex(1, nullptr), 1U);
    EXPECT_EQ(BDS_IPGetIFBestMatchIpAddr(1, 0, nullptr, &x, &x), 1U);
    EXPECT_EQ(BDS_IPGetIFBestMatchIpAddr(1, 0, &x, nullptr, &x), 1U);
    EXPECT_EQ(BDS_IPGetIFBestMatchIpAddr(1, 0, &x, &x, nullptr), 1U);
    EXPECT_EQ(IP_GetMask(1, 0, nullptr), 1U);
    EXPECT_EQ(BDS_IPGetIfindexbyIpAddr(0, 0, nullptr), 1U);
    const Messages messages = TakeMessages();
    EXPECT_EQ(messages.size(), 11U);
    EXPECT_EQ(messages.back(), "IP_GetIfindexbyIpAddr: Null value provided\n");
    // What has a fixed answer doesn't mind.
    EXPECT_EQ(BDS_IPv6GetValidGlobalAddrByIfIndex(1, nullptr), 1U);
    EXPECT_EQ(IP6_Addr_GetValidGlobalAddrOnIf(1, nullptr), 0U);
    EXPECT_TRUE(PlatformCalls().empty());
}

}  // namespace
