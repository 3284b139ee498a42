// Random changes of links, addresses, routes and next-hop objects: whatever happens, what the host
// source has followed equals what a fresh reading of the kernel yields.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <map>
#include <ostream>
#include <random>

#include <standin/store.h>

#include "sources/host/host_kernel.h"
#include "sources/host/host_rows.h"
#include "sources/host/host_source.h"
#include "support/fault_injection.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace sources {

// For messages of failed comparisons.
static void PrintTo(const NextHop& hop, std::ostream* out)
{
    *out << standin::Ipv4ToText(hop.gateway) << "%" << hop.interface;
}

static void PrintTo(const Destination& destination, std::ostream* out)
{
    *out << standin::Ipv4ToText(destination.address) << "/" << int{destination.prefixLength};
}

}  // namespace sources

namespace {

// Lines for "ip -batch". Few names and numbers, so that they collide often.
class RandomChanges {
public:
    explicit RandomChanges(uint32_t seed) : random_(seed) {}

    std::string Next()
    {
        switch (Below(10)) {
            case 0:
            case 1:
                return LinkLine();
            case 2:
            case 3:
                return AddressLine();
            case 4:
                return NextHopObjectLine();
            default:
                return RouteLine();
        }
    }

private:
    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
    std::string Number(uint32_t limit) { return std::to_string(Below(limit)); }
    std::string One(std::initializer_list<const char*> texts)
    {
        return texts.begin()[Below(static_cast<uint32_t>(texts.size()))];
    }

    std::string Device() { return One({"veth0", "veth1", "dummy0", "dummy1", "br0"}); }
    std::string Host() { return "10." + Number(3) + ".0." + std::to_string(1 + Below(4)); }
    std::string Hop() { return "via " + Host() + " dev " + Device() + " onlink"; }

    std::string LinkLine()
    {
        const std::string device = Device();
        switch (Below(8)) {
            case 0:
                return "link add " + One({"dummy0", "dummy1"}) + " type dummy";
            case 1:
                return "link del " + One({"dummy0", "dummy1"});
            case 2:
                return "link set " + device + " " + One({"master br0", "nomaster", "mtu 1400"});
            case 3:  // a name that is free for a moment
                return "link set " + device + " name spare\nlink set " + Device() + " name " +
                       device + "\nlink set spare name " + Device();
            case 4:
                return "link set dev " + One({"dummy0", "dummy1"}) + " carrier " +
                       One({"on", "off"});
            default:
                return "link set " + device + One({" up", " up", " down"});
        }
    }

    std::string AddressLine()
    {
        if (Below(20) == 0) {
            return "addr flush dev " + Device();
        }
        return "addr " + One({"add ", "add ", "del "}) + Host() + One({"/24", "/16", "/32"}) +
               " dev " + Device();
    }

    std::string NextHopObjectLine()
    {
        const std::string object = " id " + std::to_string(1 + Below(4));
        switch (Below(6)) {
            case 0:
                return "nexthop del" + One({" id 1", " id 2", " id 3", " id 11", " id 12"});
            case 1:
                return "nexthop replace id " + One({"11", "12"}) + " group " +
                       One({"1/2", "2/3", "1/2/3", "3", "1,3/4"});
            case 2:
                return "nexthop replace" + object + " blackhole";
            default:
                return "nexthop replace" + object + " " + Hop();
        }
    }

    std::string RouteLine()
    {
        std::string destination =
            One({"default", "10.0.0.0/8", "10.50.0.0/16", "10.50.1.0/24", "10.50.1.7/32"});
        destination +=
            One({"", "", " metric 5", " metric 10", " tos 4"}) + One({"", "", " mtu 1400"});
        destination += Below(8) == 0 ? " table 100" : "";
        const std::string verb =
            "route " + One({"add ", "append ", "prepend ", "replace ", "change ", "del "});
        const std::string source = Below(4) == 0 ? " src " + Host() : "";
        switch (Below(8)) {
            case 0:
                return verb + One({"blackhole ", "unreachable ", "prohibit ", "throw "}) +
                       destination;
            case 1:
                return verb + destination + source + " nexthop " + Hop() + " nexthop " + Hop();
            case 2:
            case 3:
                return verb + destination + source + " nhid " + One({"1", "2", "3", "11", "12"});
            case 4:
                return "route del " + destination;
            case 5:
                return verb + destination + source + " dev " + Device();
            default:
                return verb + destination + source + " " + Hop();
        }
    }

    std::mt19937 random_;
};

using RouteMap = std::map<sources::Destination, std::vector<sources::NextHop>>;

std::vector<standin::Row> FollowedRows(const char* table)
{
    return support::RowsOf(*standin::FindTable(table));
}

RouteMap FollowedRoutes()
{
    std::map<uint64_t, sources::NextHop> hops;
    for (const standin::Row& row : FollowedRows("Fib.ConfigNhpStandard")) {
        hops[row.Number("nhpIndex")] = {static_cast<uint32_t>(row.Number("next_hop")),
                                        static_cast<uint32_t>(row.Number("out_if_index"))};
    }
    std::map<uint64_t, std::vector<sources::NextHop>> groups;
    for (const standin::Row& row : FollowedRows("Fib.ConfigNhpGroupNode")) {
        groups[row.Number("nhpGroupId")].push_back(hops[row.Number("primaryNhpId")]);
    }
    RouteMap routes;
    for (const standin::Row& row : FollowedRows("Fib.ConfigIpv4Fwd")) {
        routes[{static_cast<uint32_t>(row.Number("destAddr")),
                static_cast<uint8_t>(row.Number("prefixLen"))}] = groups[row.Number("nhpGroupId")];
    }
    return routes;
}

// The kernel lists the routes to a destination in the order in which it tries them.
RouteMap FreshRoutes(sources::Kernel& kernel)
{
    std::vector<sources::Route> all = kernel.Routes();
    std::ranges::stable_sort(all, {}, &sources::Route::metric);
    RouteMap routes;
    for (const sources::Route& route : all) {
        std::vector<sources::NextHop> live;
        for (const sources::RouteHop& hop : route.hops) {
            if (!hop.dead && std::ranges::find(live, hop.nextHop) == live.end()) {
                live.push_back(hop.nextHop);
            }
        }
        if (route.refuses || !live.empty()) {
            routes.emplace(route.destination, live);
        }
    }
    return routes;
}

bool FollowedEqualsFresh(sources::Kernel& kernel)
{
    const std::vector<sources::Link> links = kernel.Links();
    kernel.WaitForPendingChanges();
    for (size_t i = 0; i < sources::LINK_TABLES.size(); ++i) {
        std::vector<standin::Row> fresh;
        for (const sources::Link& link : links) {
            fresh.push_back(sources::LinkRows(link)[i]);
        }
        if (!std::ranges::is_permutation(FollowedRows(sources::LINK_TABLES[i]), fresh)) {
            return false;
        }
    }
    const auto prefixLength = [](const standin::Row& row) { return row.Number("prefixLen"); };
    return std::ranges::is_sorted(FollowedRows("Fib.ConfigIpv4Fwd"), std::greater(),
                                  prefixLength) &&
           std::ranges::is_permutation(FollowedRows("am_ipv4_address"),
                                       sources::AddressRows(kernel.Addresses())) &&
           FollowedRoutes() == FreshRoutes(kernel);
}

// Some of the changes are refused.
void ChangeByIp(const std::string& lines)
{
    FILE* const ip = popen("ip -force -batch - >/dev/null 2>&1", "w");
    ASSERT_NE(ip, nullptr);
    std::fputs(lines.c_str(), ip);
    pclose(ip);
}

void SetIpv4(const char* setting, int value)
{
    std::ofstream(std::string("/proc/sys/net/ipv4/conf/all/") + setting) << value;
}

struct RandomRun {
    const char* name;
    sources::HostOptions options;
    uint32_t mostAtOnce;  // changes between comparisons
    bool overruns;
};

class HostRandomTest : public support::PlatformTest,
                       public testing::WithParamInterface<RandomRun> {};

// TARND_HOST_CHANGES: how many, TARND_HOST_SEED: which.
TEST_P(HostRandomTest, FollowedStateEqualsAFreshReading)
{
    const char* const number = std::getenv("TARND_HOST_CHANGES");
    const char* const seedText = std::getenv("TARND_HOST_SEED");
    const int changes = number != nullptr ? std::atoi(number) : 300;
    const int seed = seedText != nullptr ? std::atoi(seedText) : 1;
    IN_OWN_NETWORK([&] {
        const RandomRun& run = GetParam();
        std::mt19937 random(static_cast<uint32_t>(seed));
        RandomChanges randomChanges(static_cast<uint32_t>(seed));
        SetIpv4("ignore_routes_with_linkdown", seed & 1);
        SetIpv4("promote_secondaries", seed >> 1 & 1);
        ChangeByIp(
            "link set lo up\nlink add veth0 type veth peer name veth1\nlink add br0 type bridge\n"
            "link set veth0 up\nlink set veth1 up\nlink set br0 up\n");
        sources::HostSource host(run.options);
        host.Follow();
        sources::Kernel kernel;
        for (int done = 0; done < changes;) {
            std::string lines;
            for (auto left = 1 + random() % run.mostAtOnce; left > 0; --left, ++done) {
                lines += randomChanges.Next() + "\n";
            }
            ChangeByIp(lines);
            if (!support::Eventually([&] { return FollowedEqualsFresh(kernel); })) {
                EXPECT_EQ(FollowedRoutes(), FreshRoutes(kernel));
                FAIL() << "seed " << seed << ", after " << done << " changes, the last of them:\n"
                       << lines;
            }
        }
        RecordProperty("fullReadings", static_cast<int>(host.FullReadings()));
        if (run.overruns) {
            EXPECT_GT(host.FullReadings(), 1U);
        } else {
            EXPECT_LT(host.FullReadings(), 1U + static_cast<uint32_t>(changes) / 5);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(
    Host, HostRandomTest,
    testing::Values(RandomRun{"OneByOne", {}, 1, false}, RandomRun{"Bursts", {}, 30, false},
                    RandomRun{"WithoutFilters", {.filteredQueries = false}, 4, false},
                    RandomRun{"Overruns", {.receiveBuffer = 1}, 30, true}),
    [](const auto& test) { return test.param.name; });

}  // namespace
