// The kernel's state in the database, compared with what the operating system itself says.
#include <net/if.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <tuple>

#include <arpa/inet.h>
#include <tarnd_qrb/route.h>

#include <standin/database.h>

#include "sources/host.h"
#include "sources/host_mirror.h"
#include "support/network.h"
#include "support/platform.h"
#include "support/rows.h"

namespace {

using sources::Host;
using sources::NextHop;
using sources::Route;
using standin::Row;
using support::AskIp;
using support::Eventually;
using support::Ip;

class HostTest : public support::PlatformTest {};

std::vector<Row> RowsOf(const char* table)
{
    return support::RowsOf(*standin::FindTable(table));
}

uint64_t NumberIn(const char* table, uint64_t interface, const char* field)
{
    const auto row = standin::Find(Row(table).Set("if_index", interface));
    return row ? row->Number(field) : 99;
}

std::string MacOf(uint64_t interface)
{
    const auto row = standin::Find(Row("if_phy").Set("if_index", interface));
    if (!row)
        return "none";
    char       text[18];
    const auto mac = row->Bytes(*standin::FindField(row->Description().fields, "mac_addr"));
    snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3],
             mac[4], mac[5]);
    return text;
}

std::string Dotted(uint32_t address)
{
    const in_addr network{htonl(address)};
    char          text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &network, text, sizeof text);
}

// name, MAC address, carrier, carrier again, running, member of a bridge
using LinkView  = std::tuple<std::string, std::string, bool, bool, bool, bool>;
using LinkViews = std::map<uint64_t, LinkView>;

LinkViews LinksInDatabase()
{
    LinkViews views;
    for (const Row& row : RowsOf("if_base")) {
        const uint64_t index = row.Number("if_index");
        views[index]         = {std::string(row.Text("if_name")),
                                MacOf(index),
                                NumberIn("if_phy", index, "phy_state") == 1,
                                NumberIn("if_link", index, "link_state") == 1,
                                NumberIn("if_route", index, "route_state") == 1,
                                NumberIn("port", index, "switch_port") == 1};
    }
    return views;
}

LinkViews LinksOfSystem()
{
    LinkViews views;
    for (const auto& link : AskIp("-details link")) {
        const std::set<std::string> flags   = link["flags"];
        const bool                  carrier = flags.contains("LOWER_UP");
        const bool                  running = flags.contains("UP") && !flags.contains("NO-CARRIER");
        const bool                  member =
            link.value("/linkinfo/info_slave_kind"_json_pointer, std::string()) == "bridge";
        views[link["ifindex"]] = {link["ifname"], link.value("address", "00:00:00:00:00:00"),
                                  carrier,        carrier,
                                  running,        member};
    }
    return views;
}

bool SameLinks()
{
    return LinksInDatabase() == LinksOfSystem() &&
           RowsOf("if_phy").size() == RowsOf("if_base").size() &&
           RowsOf("port").size() == RowsOf("if_base").size();
}

// Of each interface that has some: "address/length", and its type code.
using AddressViews = std::map<uint64_t, std::vector<std::string>>;

AddressViews AddressesInDatabase()
{
    AddressViews views;
    for (const Row& row : RowsOf("am_ipv4_address")) {
        const auto items = row.Items(0).value();
        for (size_t at = 0; at < items.size(); at += 6) {
            uint32_t address = 0;
            memcpy(&address, &items[at], sizeof address);
            views[row.Number("if_index")].push_back(Dotted(address) + "/" +
                                                    std::to_string(items[at + 4]) + " " +
                                                    std::to_string(items[at + 5]));
        }
    }
    return views;
}

AddressViews AddressesOfSystem()
{
    AddressViews views;
    for (const auto& link : AskIp("-4 address")) {
        for (const auto& info : link["addr_info"]) {
            auto& view = views[link["ifindex"]];
            view.push_back(std::string(info["local"]) + "/" +
                           std::to_string(info["prefixlen"].get<int>()) +
                           (view.empty() ? " 1" : " 2"));
        }
    }
    return views;
}

bool SameAddresses()
{
    return AddressesInDatabase() == AddressesOfSystem();
}

// "gateway interface" for each next hop that the library names; none where it has no route.
std::set<std::string> Inquire(const std::string& destination)
{
    FIB_KEY_S key{};
    FIB_NHP_S hops[FIB_GROUP_MEMBERS_MAX]{};
    uint32_t  count = FIB_GROUP_MEMBERS_MAX;
    key.destAddr    = ntohl(inet_addr(destination.c_str()));
    std::set<std::string> answers;
    if (FIB_InquiryRoutes(&key, hops, &count) == 0) {
        for (uint32_t i = 0; i < count; ++i)
            answers.insert(Dotted(hops[i].firstValue) + " " + std::to_string(hops[i].secondValue));
    }
    return answers;
}

// The one that the kernel would use now; empty where it has no route.
std::string RouteOfSystem(const std::string& destination)
{
    const auto answer = AskIp("route get " + destination);
    if (answer.is_null())
        return "";
    const std::string device = answer[0]["dev"];
    return answer[0].value("gateway", "0.0.0.0") + " " +
           std::to_string(if_nametoindex(device.c_str()));
}

bool SameRoute(const std::string& destination)
{
    const auto answers = Inquire(destination);
    const auto used    = RouteOfSystem(destination);
    return used.empty() ? answers.empty() : answers.contains(used);
}

bool SameRoutes()
{
    static const std::string destinations[] = {"10.0.0.77",  "10.1.0.77", "10.2.3.4",    "10.2.9.9",
                                               "10.3.0.1",   "10.4.0.1",  "10.5.0.1",    "10.6.0.1",
                                               "172.16.1.1", "192.0.2.1", "198.51.100.7"};
    return std::ranges::all_of(destinations, SameRoute);
}

bool LongestPrefixesFirst()
{
    return std::ranges::is_sorted(RowsOf("Fib.ConfigIpv4Fwd"), std::greater(),
                                  [](const Row& row) { return row.Number("prefixLen"); });
}

std::string SysfsValue(const std::string& interface, const char* attribute)
{
    std::ifstream file(std::filesystem::path("/sys/class/net") / interface / attribute);
    std::string   value;
    file >> value;
    return value;
}

TEST_F(HostTest, NamesAndAddressesOfThisMachine)
{
    const Host host;
    size_t     interfaces = 0;
    auto*      all        = if_nameindex();
    ASSERT_NE(all, nullptr);
    for (const auto* one = all; one->if_index != 0; ++one, ++interfaces) {
        const auto row = standin::Find(Row("if_base").Set("if_index", one->if_index));
        ASSERT_TRUE(row) << one->if_name;
        EXPECT_EQ(row->Text("if_name"), one->if_name);
        EXPECT_EQ(MacOf(one->if_index), SysfsValue(one->if_name, "address"));
        EXPECT_EQ(NumberIn("if_link", one->if_index, "link_state") == 1,
                  SysfsValue(one->if_name, "carrier") == "1");
    }
    if_freenameindex(all);
    EXPECT_EQ(RowsOf("if_base").size(), interfaces);
    EXPECT_TRUE(SameAddresses());
}

TEST_F(HostTest, FollowsLinks)
{
    IN_OWN_NETWORK([] {
        Ip("link add veth0 type veth peer name veth1");
        Host host;
        EXPECT_TRUE(SameLinks());
        host.Follow();
        for (const char* change :
             {"link set lo up", "link set veth0 up", "link set veth1 up", "link set veth1 down",
              "link set veth1 up", "link add br0 type bridge", "link set veth0 master br0",
              "link set br0 up", "link set veth0 nomaster", "link set veth0 name other",
              "link set veth1 address 02:00:00:00:00:09", "link set veth1 down",
              "link set veth1 name veth0", "link del br0", "link del other"}) {
            Ip(change);
            EXPECT_TRUE(Eventually(SameLinks)) << change;
        }
    });
}

TEST_F(HostTest, FollowsAddresses)
{
    IN_OWN_NETWORK([] {
        Ip("link add veth0 type veth peer name veth1; addr add 10.0.0.1/24 dev veth0;"
           "addr add 10.0.0.9/24 dev veth0");
        Host host;
        EXPECT_TRUE(SameAddresses());
        host.Follow();
        for (const char* change :
             {"addr add 10.1.0.1/16 dev veth0", "addr add 10.2.0.1 peer 10.2.0.2 dev veth1",
              "addr del 10.0.0.1/24 dev veth0", "addr flush dev veth1", "link del veth0"}) {
            Ip(change);
            EXPECT_TRUE(Eventually(SameAddresses)) << change;
        }
        EXPECT_TRUE(RowsOf("am_ipv4_address").empty());
    });
}

// Among the changes are some that take routes away without a word, and all kinds of competition:
// longer prefixes after shorter ones, metrics, refusals, groups, dead next hops.
TEST_F(HostTest, FollowsRoutes)
{
    IN_OWN_NETWORK([] {
        Ip("link add veth0 type veth peer name veth1; link set veth0 up; link set veth1 up;"
           "addr add 10.0.0.1/24 dev veth0; addr add 10.1.0.1/24 dev veth1;"
           "route add default via 10.0.0.2; route add 10.2.0.0/16 via 10.0.0.3");
        Host host;
        EXPECT_TRUE(SameRoutes());
        host.Follow();
        for (const char* change :
             {"route add 10.2.3.0/24 via 10.1.0.4", "route add 10.0.0.0/8 via 10.1.0.5",
              "route add 10.3.0.0/16 via 10.0.0.6 metric 50",
              "route add 10.3.0.0/16 via 10.1.0.6 metric 20", "route del 10.3.0.0/16 metric 20",
              "route add unreachable 10.4.0.0/16", "route add blackhole 192.0.2.0/24",
              "route add 10.5.0.0/16 nexthop via 10.0.0.7 nexthop via 10.1.0.7",
              "route replace 10.5.0.0/16 nexthop via 10.0.0.8 nexthop via 10.1.0.8 weight 3",
              "nexthop add id 7 via 10.0.0.9 dev veth0; route add 10.6.0.0/16 nhid 7",
              "nexthop replace id 7 via 10.1.0.9 dev veth1", "route add 172.16.0.0/12 dev veth1",
              "route del default", "nexthop del id 7", "addr add 10.6.0.9/24 dev veth1",
              "addr del 10.0.0.1/24 dev veth0", "link set veth1 down", "link del veth0"}) {
            Ip(change);
            EXPECT_TRUE(Eventually(SameRoutes)) << change;
            EXPECT_TRUE(LongestPrefixesFirst()) << change;
        }
        EXPECT_TRUE(Eventually([] { return RowsOf("Fib.ConfigNhpStandard").empty(); }));
        EXPECT_TRUE(RowsOf("Fib.ConfigNhpGroupNode").empty());
    });
}

TEST_F(HostTest, AnOverrunLosesNothingThatLasts)
{
    IN_OWN_NETWORK([] {
        constexpr int smallest = 1;
        Ip("link add one type veth peer name two; link add three type veth peer name four");
        Host                   host(smallest);
        sources::Notifications witness(smallest);
        // Two links change names; others come, go and change.
        Ip("link set one name spare; link set two name one; link set spare name two;"
           "link set three up; link set four up; addr add 10.0.0.1/24 dev three;"
           "route add 10.2.0.0/16 via 10.0.0.3; link add br0 type bridge;"
           "link set four master br0; link add gone type veth; link del gone");
        EXPECT_TRUE(witness.Take().overrun);
        host.Follow();
        const auto allSame = [] { return SameLinks() && SameAddresses() && SameRoutes(); };
        EXPECT_TRUE(Eventually(allSame));
        Ip("link set four nomaster; addr add 10.0.0.2/24 dev three");
        EXPECT_TRUE(Eventually(allSame));
    });
}

TEST_F(HostTest, NumbersOfGroupsLastAndAreNeverGivenTwice)
{
    sources::Forwarding forwarding;
    const Route         first{0x0A010000, 16, 0, {{1, 2}}};
    const Route         second{0x0A020000, 24, 0, {{3, 4}, {1, 2}}};
    const auto          groups = [](const sources::ForwardingRows& rows) {
        std::map<uint64_t, uint64_t> groupOf;
        for (const Row& row : rows.forwards)
            groupOf[row.Number("destAddr")] = row.Number("nhpGroupId");
        return groupOf;
    };
    auto       before = groups(forwarding.RowsOf({first}));
    const auto both   = forwarding.RowsOf({second, first});
    EXPECT_EQ(both.nextHops.size(), 2U);
    EXPECT_EQ(both.groupNodes.size(), 3U);
    EXPECT_EQ(groups(both)[first.destination], before[first.destination]);
    forwarding.RowsOf({second});
    const auto again = groups(forwarding.RowsOf({first, second}));
    EXPECT_EQ(again.at(second.destination), groups(both)[second.destination]);
    EXPECT_GT(again.at(first.destination), again.at(second.destination));
}

// Random routing tables, one after another, mirrored onto each other's rows.
TEST_F(HostTest, TheFirstCoveringEntryIsAlwaysTheLongest)
{
    std::mt19937        random(7);
    sources::Forwarding forwarding;
    const auto below    = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    const auto anyRoute = [&] {
        const auto     length = below(9);
        const uint32_t prefix = length == 0 ? 0 : below(1U << length) << (32 - length);
        return Route{prefix, static_cast<uint8_t>(length), below(3), {{below(4), 1}}};
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<Route> routes(below(20));
        std::ranges::generate(routes, anyRoute);
        const auto           wanted = forwarding.RowsOf(routes);
        standin::Transaction transaction;
        sources::MirrorForwarding(transaction, wanted);
        transaction.Commit();
        ASSERT_TRUE(LongestPrefixesFirst());
        const auto rows = RowsOf("Fib.ConfigIpv4Fwd");
        ASSERT_TRUE(std::ranges::is_permutation(rows, wanted.forwards));
        ASSERT_TRUE(std::ranges::is_permutation(RowsOf("Fib.ConfigNhpStandard"), wanted.nextHops));
    }
}

}  // namespace
