// The kernel's state in the database, compared with the output of the system's tools.
#include <arpa/inet.h>
#include <net/if.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <utility>

#include <standin/store.h>
#include <tarnd_qrb/route.h>

#include "sources/host/host_mirror.h"
#include "sources/host/host_source.h"
#include "sources/json/json_row.h"
#include "support/fault_injection.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using sources::HostSource;
using sources::Json;
using standin::Row;
using support::Eventually;
using support::Ip;

class HostTest : public support::PlatformTest {};

// Null on failure.
Json AskIp(const std::string& arguments)
{
    const auto [status, output] = support::Run("ip -json " + arguments + " 2>/dev/null");
    return status == 0 ? Json::parse(output) : Json();
}

std::vector<Row> RowsOf(const char* table)
{
    return support::RowsOf(*standin::FindTable(table));
}

// Each link has a row in each of its tables, and one more for its addresses; there are no others.
bool SameInterfaces()
{
    const std::string noMac = "00:00:00:00:00:00";
    const Json links = AskIp("-details address");
    size_t withAddress = 0;
    for (const Json& link : links) {
        const auto rowOf = [index = link["ifindex"].get<uint64_t>()](const char* table) {
            const auto row = standin::Find(Row(table).Set("if_index", index));
            return row ? sources::RowToJson(*row) : Json::object();
        };
        const std::set<std::string> flags = link["flags"];
        const bool carrier = flags.contains("LOWER_UP");
        const bool running = flags.contains("UP") && !flags.contains("NO-CARRIER");
        const std::string master = link.value("/linkinfo/info_slave_kind"_json_pointer, "");
        std::set<Json> expected;
        std::set<Json> addresses;
        for (int type = 1; const Json& info : link["addr_info"]) {
            if (info["family"] == "inet") {
                expected.insert({info["local"], info["prefixlen"], std::exchange(type, 2)});
            }
        }
        for (const Json& item :
             rowOf("am_ipv4_address").value("ipv4_address_list", Json::array())) {
            addresses.insert({item["address"], item["masklen"], item["type"]});
        }
        withAddress += expected.empty() ? 0U : 1U;
        if (rowOf("if_base").value("if_name", "") != link["ifname"] ||
            rowOf("if_phy").value("mac_addr", noMac) != link.value("address", noMac) ||
            rowOf("if_phy").value("phy_state", 0) != (carrier ? 1 : 0) ||
            rowOf("if_link").value("link_state", 0) != (carrier ? 1 : 0) ||
            rowOf("if_route").value("route_state", 0) != (running ? 1 : 0) ||
            rowOf("port").value("switch_port", 0) != (master == "bridge" ? 1 : 0) ||
            addresses != expected) {
            return false;
        }
    }
    return RowsOf("am_ipv4_address").size() == withAddress &&
           std::ranges::all_of(sources::LINK_TABLES, [&](const char* table) {
               return RowsOf(table).size() == links.size();
           });
}

// The next hops that the library returns include the one that the kernel uses; it returns none if
// the kernel has no route.
bool SameRoute(const std::string& destination)
{
    FIB_KEY_S key{};
    FIB_NHP_S hops[FIB_GROUP_MEMBERS_MAX]{};
    uint32_t count = FIB_GROUP_MEMBERS_MAX;
    key.destAddr = ntohl(inet_addr(destination.c_str()));
    const bool found = FIB_InquiryRoutes(&key, hops, &count) == 0;
    const Json route = AskIp("route get " + destination);
    if (route.is_null()) {
        return !found;
    }
    const std::string device = route[0]["dev"];
    const std::string gateway = route[0].value("gateway", "0.0.0.0");
    return found && std::any_of(hops, hops + count, [&](const FIB_NHP_S& hop) {
               return hop.firstValue == ntohl(inet_addr(gateway.c_str())) &&
                      hop.secondValue == if_nametoindex(device.c_str());
           });
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

std::set<uint64_t> Numbers(const char* table, const char* field)
{
    std::set<uint64_t> numbers;
    for (const Row& row : RowsOf(table)) {
        numbers.insert(row.Number(field));
    }
    return numbers;
}

// Each group belongs to a route, and each next hop to a group.
bool EveryNextHopIsUsed()
{
    std::set<uint64_t> used = Numbers("Fib.ConfigIpv4Fwd", "nhpGroupId");
    used.erase(0);  // of routes without a next hop
    return Numbers("Fib.ConfigNhpGroupNode", "nhpGroupId") == used &&
           Numbers("Fib.ConfigNhpStandard", "nhpIndex") ==
               Numbers("Fib.ConfigNhpGroupNode", "primaryNhpId");
}

bool SameAsSystem()
{
    return SameInterfaces() && SameRoutes() && LongestPrefixesFirst();
}

TEST_F(HostTest, ReadsThisMachine)
{
    const HostSource host;
    EXPECT_GT(RowsOf("if_base").size(), 0U);
    EXPECT_TRUE(SameInterfaces());
}

void ExpectToFollow(const char* before, std::initializer_list<const char*> changes)
{
    Ip(before);
    HostSource host;
    EXPECT_TRUE(SameAsSystem());
    host.Follow();
    for (const char* change : changes) {
        Ip(change);
        EXPECT_TRUE(Eventually(SameAsSystem)) << change;
    }
    EXPECT_TRUE(Eventually(EveryNextHopIsUsed));
}

TEST_F(HostTest, FollowsLinks)
{
    IN_OWN_NETWORK([] {
        ExpectToFollow(
            "link add veth0 type veth peer name veth1",
            {"link set lo up", "link set veth0 up", "link set veth1 up", "link set veth1 down",
             "link set veth1 up", "link add br0 type bridge", "link set veth0 master br0",
             "link set br0 up", "link set veth0 nomaster", "link set veth0 name other",
             "link set veth1 address 02:00:00:00:00:09", "link set veth1 down",
             "link set veth1 name veth0", "link del br0", "link del other"});
    });
}

// The changes include some that remove routes without a notification, and competing routes: longer
// prefixes after shorter ones, metrics, unreachable routes, groups, dead next hops.
TEST_F(HostTest, FollowsAddressesAndRoutes)
{
    IN_OWN_NETWORK([] {
        ExpectToFollow(
            "link add veth0 type veth peer name veth1; link set veth0 up; link set veth1 up;"
            "addr add 10.0.0.1/24 dev veth0; addr add 10.1.0.1/24 dev veth1;"
            "addr add 10.0.0.99/24 dev veth0;"
            "route add default via 10.0.0.2; route add 10.2.0.0/16 via 10.0.0.3",
            {"route add 10.2.3.0/24 via 10.1.0.4",
             "route add 10.0.0.0/8 via 10.1.0.5",
             "route add 10.3.0.0/16 via 10.0.0.6 metric 50",
             "route add 10.3.0.0/16 via 10.1.0.6 metric 20",
             "route del 10.3.0.0/16 metric 20",
             "route add unreachable 10.4.0.0/16",
             "route add blackhole 192.0.2.0/24",
             "route add 10.5.0.0/16 nexthop via 10.0.0.7 nexthop via 10.1.0.7",
             "route replace 10.5.0.0/16 nexthop via 10.0.0.8 nexthop via 10.1.0.8 weight 3",
             "nexthop add id 7 via 10.0.0.9 dev veth0; route add 10.6.0.0/16 nhid 7",
             "nexthop replace id 7 via 10.1.0.9 dev veth1",
             "route add 172.16.0.0/12 dev veth1",
             "route del default",
             "nexthop del id 7",
             "addr add 10.2.0.1 peer 10.2.0.2 dev veth1",
             "addr add 10.6.0.9/24 dev veth1",
             "addr del 10.0.0.1/24 dev veth0",
             "addr flush dev veth1",
             "link set veth1 down",
             "link del veth0"});
    });
}

TEST_F(HostTest, AnOverrunDoesNotLoseTheFinalState)
{
    IN_OWN_NETWORK([] {
        Ip("link add one type veth peer name two; link add three type veth peer name four");
        const sources::HostOptions smallest{.receiveBuffer = 1};
        HostSource host(smallest);
        sources::Notifications witness(smallest.receiveBuffer);
        // Two links swap names; others are created, deleted and changed.
        Ip("link set one name spare; link set two name one; link set spare name two;"
           "link set three up; link set four up; addr add 10.0.0.1/24 dev three;"
           "route add 10.2.0.0/16 via 10.0.0.3; link add br0 type bridge;"
           "link set four master br0; link add gone type veth; link del gone");
        EXPECT_TRUE(witness.Take().overrun);
        host.Follow();
        EXPECT_TRUE(Eventually(SameAsSystem));
        Ip("link set four nomaster; addr add 10.0.0.2/24 dev three");
        EXPECT_TRUE(Eventually(SameAsSystem));
    });
}

// An id outlives its value by the grace period and is never assigned to another one.
TEST(HostNumbering, NumbersLastForTheGracePeriodAndAreNeverReused)
{
    using std::chrono::milliseconds;
    sources::Numbering<char> numbering;
    const struct {
        milliseconds time;
        const char* acquired;
        const char* released;
        const char* numbered;
        bool hasUnused;
    } steps[] = {
        {milliseconds(0), "a", "", "a1", false},      {milliseconds(5000), "ba", "", "a1b2", false},
        {milliseconds(6000), "", "aa", "a1b2", true}, {milliseconds(6999), "a", "", "a1b2", true},
        {milliseconds(7000), "", "a", "a1b2", true},  {milliseconds(7999), "", "", "a1b2", true},
        {milliseconds(8000), "", "", "b2", false},    {milliseconds(8000), "a", "b", "a3b2", true},
        {milliseconds(9000), "", "", "a3", false}};
    for (const auto& step : steps) {
        const std::chrono::steady_clock::time_point now(step.time);
        for (const char thing : std::string(step.acquired)) {
            numbering.Acquire(numbering.Find(thing));
        }
        for (const char thing : std::string(step.released)) {
            numbering.Release(numbering.Find(thing), now);
        }
        numbering.Expire(now, [](const auto&) {});
        std::string numbered;
        numbering.ForEach(
            [&](const auto& item) { numbered += item.first + std::to_string(item.second.number); });
        EXPECT_EQ(numbered, step.numbered);
        EXPECT_EQ(numbering.HasUnused(), step.hasUnused);
    }
}

// Prefixes of every length that cover the destination are added and removed during inquiries.
TEST_F(HostTest, InquiriesSucceedWhileOtherPrefixesChange)
{
    IN_OWN_NETWORK([] {
        Ip("link add veth0 type veth peer name veth1; link set veth0 up; link set veth1 up;"
           "addr add 10.9.0.1/24 dev veth0; route add default via 10.9.0.200");
        HostSource host;
        host.Follow();
        std::set<uint32_t> gateways;
        std::atomic<int> failures = 0;
        std::jthread inquirer([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                FIB_KEY_S key{};
                FIB_NHP_S hop{};
                key.destAddr = 0x0A020304;
                if (FIB_InquiryRoute(&key, &hop) == 0) {
                    gateways.insert(hop.firstValue);
                } else {
                    ++failures;
                }
            }
        });
        for (int round = 0; round < 3; ++round) {
            for (const char* action : {"add", "del"}) {
                for (const int length : {8, 32, 16, 24, 12, 31, 9, 20}) {
                    const uint32_t prefix = 0x0A020304U & (~0U << (32 - length));
                    in_addr network{htonl(prefix)};
                    const std::string destination =
                        inet_ntoa(network) + ("/" + std::to_string(length));
                    Ip(std::string("route ") + action + " " + destination + " via 10.9.0." +
                       std::to_string(length));
                    std::this_thread::sleep_for(std::chrono::milliseconds(3));
                }
            }
        }
        EXPECT_TRUE(Eventually([] { return RowsOf("Fib.ConfigNhpStandard").size() == 2; }));
        inquirer.request_stop();
        inquirer.join();
        EXPECT_EQ(failures, 0);
        EXPECT_GT(gateways.size(), 2U);
    });
}

}  // namespace
