#include "sources/host/host_kernel.h"

#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/route/addr.h>
#include <netlink/route/link.h>
#include <netlink/route/route.h>

namespace sources {
namespace {

void Check(int result, const std::string& what)
{
    if (result < 0) {
        throw std::runtime_error(what + ": " + nl_geterror(result));
    }
}

Socket Connect()
{
    Socket socket(nl_socket_alloc());
    if (!socket) {
        throw std::bad_alloc();
    }
    Check(nl_connect(socket.get(), NETLINK_ROUTE), "cannot open a netlink socket");
    return socket;
}

uint32_t Ipv4(const nl_addr* address)
{
    uint32_t number = 0;
    if (address != nullptr && nl_addr_get_len(address) == sizeof number) {
        std::memcpy(&number, nl_addr_get_binary_addr(address), sizeof number);
    }
    return ntohl(number);
}

std::array<uint8_t, 6> Mac(const nl_addr* address)
{
    std::array<uint8_t, 6> mac{};
    if (address != nullptr && nl_addr_get_len(address) == mac.size()) {
        std::memcpy(mac.data(), nl_addr_get_binary_addr(address), mac.size());
    }
    return mac;
}

bool IsBridgeMember(rtnl_link* link)
{
    const char* kind = rtnl_link_get_slave_type(link);
    return rtnl_link_get_master(link) != 0 && kind != nullptr && std::string_view(kind) == "bridge";
}

Link ReadLink(nl_object* object)
{
    auto* link = reinterpret_cast<rtnl_link*>(object);
    const unsigned flags = rtnl_link_get_flags(link);
    return {.index = static_cast<uint32_t>(rtnl_link_get_ifindex(link)),
            .name = rtnl_link_get_name(link),
            .hardware = rtnl_link_get_arptype(link),
            .mtu = rtnl_link_get_mtu(link),
            .mac = Mac(rtnl_link_get_addr(link)),
            .carrier = (flags & IFF_LOWER_UP) != 0,
            .running = (flags & IFF_UP) != 0 && (flags & IFF_RUNNING) != 0,
            .bridgeMember = IsBridgeMember(link)};
}

Address ReadAddress(nl_object* object)
{
    auto* address = reinterpret_cast<rtnl_addr*>(object);
    return {.interface = static_cast<uint32_t>(rtnl_addr_get_ifindex(address)),
            .address = Ipv4(rtnl_addr_get_local(address)),
            .prefixLength = static_cast<uint8_t>(rtnl_addr_get_prefixlen(address))};
}

// The next hops without duplicates and without dead ones, which the kernel does not use.
std::vector<NextHop> LiveNextHops(rtnl_route* route)
{
    std::vector<NextHop> live;
    for (int i = 0; i < rtnl_route_get_nnexthops(route); ++i) {
        rtnl_nexthop* const hop = rtnl_route_nexthop_n(route, i);
        const NextHop nextHop{Ipv4(rtnl_route_nh_get_gateway(hop)),
                              static_cast<uint32_t>(rtnl_route_nh_get_ifindex(hop))};
        if ((rtnl_route_nh_get_flags(hop) & RTNH_F_DEAD) == 0 &&
            std::ranges::find(live, nextHop) == live.end()) {
            live.push_back(nextHop);
        }
    }
    return live;
}

bool Refuses(uint8_t routeType)
{
    return routeType == RTN_BLACKHOLE || routeType == RTN_UNREACHABLE ||
           routeType == RTN_PROHIBIT || routeType == RTN_THROW;
}

void AppendRoute(std::vector<Route>& routes, nl_object* object)
{
    auto* route = reinterpret_cast<rtnl_route*>(object);
    // A route for one type of service does not apply to all packets to its destination.
    if (rtnl_route_get_table(route) != RT_TABLE_MAIN || rtnl_route_get_tos(route) != 0 ||
        (rtnl_route_get_flags(route) & RTM_F_CLONED) != 0) {
        return;
    }
    const nl_addr* destination = rtnl_route_get_dst(route);
    Route read{.destination = Ipv4(destination),
               .prefixLength = static_cast<uint8_t>(nl_addr_get_prefixlen(destination)),
               .metric = rtnl_route_get_priority(route),
               .nextHops = {}};
    const bool refuses = Refuses(rtnl_route_get_type(route));
    if (!refuses) {
        read.nextHops = LiveNextHops(route);
    }
    if (refuses || !read.nextHops.empty()) {
        routes.push_back(std::move(read));
    }
}

// Link messages of the bridge family describe bridge ports and have only some of a link's
// attributes.
bool IsOfBridge(nl_msg* message)
{
    const auto* head = static_cast<const rtgenmsg*>(nlmsg_data(nlmsg_hdr(message)));
    return head->rtgen_family == AF_BRIDGE;
}

using OnObject = std::function<void(nl_object*)>;

// Receives one reply or one notification and calls onObject for each object in it.
int Receive(nl_sock* socket, OnObject onObject)
{
    const auto onMessage = [](nl_msg* message, void* argument) noexcept -> int {
        if (IsOfBridge(message)) {
            return NL_SKIP;
        }
        nl_msg_parse(
            message,
            [](nl_object* object, void* callback) noexcept {
                (*static_cast<OnObject*>(callback))(object);
            },
            argument);
        return NL_OK;
    };
    nl_socket_modify_cb(socket, NL_CB_VALID, NL_CB_CUSTOM, onMessage, &onObject);
    return nl_recvmsgs_default(socket);
}

// Dumps all objects of one kind. Repeats the dump if the kernel reports that it was interrupted by
// a change.
template <typename Item>
std::vector<Item> Dump(nl_sock* socket, int request, int family,
                       void (*append)(std::vector<Item>&, nl_object*), const char* what)
{
    std::vector<Item> items;
    int result = 0;
    do {
        items.clear();
        Check(nl_rtgen_request(socket, request, family, NLM_F_DUMP), what);
        result = Receive(socket, [&](nl_object* object) { append(items, object); });
    } while (result == -NLE_DUMP_INTR);
    Check(result, what);
    return items;
}

}  // namespace

void SocketDeleter::operator()(nl_sock* socket) const
{
    nl_socket_free(socket);
}

Kernel::Kernel() : socket_(Connect()) {}

std::vector<Link> Kernel::Links()
{
    const auto append = [](auto& links, nl_object* object) { links.push_back(ReadLink(object)); };
    return Dump<Link>(socket_.get(), RTM_GETLINK, AF_UNSPEC, append, "cannot read the links");
}

std::vector<Address> Kernel::Addresses()
{
    const auto append = [](auto& addresses, nl_object* object) {
        addresses.push_back(ReadAddress(object));
    };
    return Dump<Address>(socket_.get(), RTM_GETADDR, AF_INET, append, "cannot read the addresses");
}

std::vector<Route> Kernel::Routes()
{
    return Dump(socket_.get(), RTM_GETROUTE, AF_INET, AppendRoute, "cannot read the routes");
}

void Kernel::WaitForPendingChanges()
{
    // A query of a single link takes the RTNL lock, which is held during all such changes. Dumps of
    // addresses and routes don't take it.
    constexpr int LOOPBACK = 1;
    rtnl_link* link = nullptr;
    Check(rtnl_link_get_kernel(socket_.get(), LOOPBACK, nullptr, &link), "cannot read the links");
    rtnl_link_put(link);
}

Notifications::Notifications(int receiveBuffer) : socket_(Connect())
{
    nl_sock* const socket = socket_.get();
    const std::string what = "cannot follow the kernel";
    nl_socket_disable_seq_check(socket);
    Check(nl_socket_set_nonblocking(socket), what);
    Check(nl_socket_set_buffer_size(socket, receiveBuffer, 0), what);
    Check(nl_socket_add_memberships(socket, RTNLGRP_LINK, RTNLGRP_IPV4_IFADDR, RTNLGRP_IPV4_ROUTE,
                                    RTNLGRP_NEXTHOP, RTNLGRP_NONE),
          what);
}

int Notifications::Descriptor() const
{
    return nl_socket_get_fd(socket_.get());
}

KernelChanges Notifications::Take()
{
    constexpr int LIMIT = 1000;  // write received changes although more keep arriving
    KernelChanges changes;
    const auto onObject = [&](nl_object* object) {
        const int type = nl_object_get_msgtype(object);
        if (type == RTM_NEWLINK || type == RTM_DELLINK) {
            changes.links.push_back({type == RTM_DELLINK, ReadLink(object)});
        }
    };
    for (int taken = 0; taken < LIMIT; ++taken) {
        const int result = Receive(socket_.get(), onObject);
        if (result == -NLE_AGAIN) {
            break;
        }
        changes.any = true;
        if (result < 0) {
            changes.overrun = true;
        }
    }
    return changes;
}

}  // namespace sources
