#include "sources/host/host_message.h"

#include <linux/if.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

#include <netlink/attr.h>
#include <netlink/msg.h>

namespace sources {
namespace {

uint32_t NumberIn(nlattr* attribute)
{
    return attribute != nullptr ? nla_get_u32(attribute) : 0;
}

uint32_t Ipv4In(nlattr* attribute)
{
    return ntohl(NumberIn(attribute));
}

std::array<uint8_t, 6> MacIn(nlattr* attribute)
{
    std::array<uint8_t, 6> mac{};
    if (attribute != nullptr && static_cast<size_t>(nla_len(attribute)) == mac.size()) {
        std::memcpy(mac.data(), nla_data(attribute), mac.size());
    }
    return mac;
}

bool IsBridgeMember(nlattr* const* attributes)
{
    nlattr* const info = attributes[IFLA_LINKINFO];
    nlattr* const kind = info != nullptr ? nla_find(static_cast<nlattr*>(nla_data(info)),
                                                    nla_len(info), IFLA_INFO_SLAVE_KIND)
                                         : nullptr;
    return NumberIn(attributes[IFLA_MASTER]) != 0 && kind != nullptr &&
           std::string_view(nla_get_string(kind)) == "bridge";
}

bool Refuses(uint8_t routeType)
{
    return routeType == RTN_BLACKHOLE || routeType == RTN_UNREACHABLE ||
           routeType == RTN_PROHIBIT || routeType == RTN_THROW;
}

// FNV-1a.
class Fingerprint {
public:
    void Add(std::span<const uint8_t> bytes)
    {
        for (const uint8_t byte : bytes) {
            value_ = (value_ ^ byte) * 0x100000001B3;
        }
    }
    void Add(nlattr* attribute)
    {
        Add({reinterpret_cast<const uint8_t*>(attribute), attribute->nla_len});
    }
    uint64_t Value() const { return value_; }

private:
    uint64_t value_ = 0xCBF29CE484222325;
};

// The attributes that describe the next hops. Where the route refers to a next-hop object they
// change with the object.
bool DescribesNextHops(const nlattr* attribute)
{
    static constexpr int TYPES[] = {RTA_OIF,  RTA_GATEWAY, RTA_VIA,       RTA_MULTIPATH,
                                    RTA_FLOW, RTA_ENCAP,   RTA_ENCAP_TYPE};
    return std::ranges::find(TYPES, nla_type(attribute)) != std::end(TYPES);
}

// Calls action(hop, attributes, their length) for each next hop.
template <typename Action>
void ForEachHop(nlattr* multipath, Action action)
{
    auto* hop = static_cast<rtnexthop*>(nla_data(multipath));
    // RTNH_OK reads the length of the hop, so it must not be used at the end.
    for (int left = nla_len(multipath); left >= int{sizeof *hop} && RTNH_OK(hop, left);) {
        action(*hop, reinterpret_cast<nlattr*>(hop + 1), hop->rtnh_len - int{sizeof *hop});
        const int length = RTNH_ALIGN(hop->rtnh_len);
        left -= length;
        void* const next = reinterpret_cast<char*>(hop) + length;
        hop = static_cast<rtnexthop*>(next);
    }
}

// The state flags of next hops are not part of a route's identity.
void AddMultipath(Fingerprint& fingerprint, nlattr* multipath)
{
    ForEachHop(multipath, [&](rtnexthop hop, const nlattr* attributes, int length) {
        hop.rtnh_flags = 0;
        fingerprint.Add({reinterpret_cast<const uint8_t*>(&hop), sizeof hop});
        fingerprint.Add(
            {reinterpret_cast<const uint8_t*>(attributes), static_cast<size_t>(length)});
    });
}

uint64_t FingerprintOf(nlmsghdr* message, bool hasNextHopObject)
{
    const auto* head = static_cast<const rtmsg*>(nlmsg_data(message));
    Fingerprint fingerprint;
    const uint8_t kind[] = {head->rtm_scope, head->rtm_protocol,
                            hasNextHopObject ? uint8_t{RTN_UNICAST} : head->rtm_type};
    fingerprint.Add(kind);
    nlattr* attribute = nlmsg_attrdata(message, sizeof(rtmsg));
    int left = nlmsg_attrlen(message, sizeof(rtmsg));
    for (; nla_ok(attribute, left); attribute = nla_next(attribute, &left)) {
        if (hasNextHopObject && DescribesNextHops(attribute)) {
            continue;
        }
        if (nla_type(attribute) == RTA_MULTIPATH) {
            AddMultipath(fingerprint, attribute);
        } else {
            fingerprint.Add(attribute);
        }
    }
    return fingerprint.Value();
}

std::vector<RouteHop> HopsIn(nlattr* multipath)
{
    std::vector<RouteHop> hops;
    ForEachHop(multipath, [&](const rtnexthop& hop, nlattr* attributes, int length) {
        hops.push_back({{Ipv4In(nla_find(attributes, length, RTA_GATEWAY)),
                         static_cast<uint32_t>(hop.rtnh_ifindex)},
                        (hop.rtnh_flags & RTNH_F_DEAD) != 0});
    });
    return hops;
}

RoutePlacement PlacementOf(uint16_t flags)
{
    if ((flags & NLM_F_REPLACE) != 0) {
        return RoutePlacement::Replacing;
    }
    if ((flags & NLM_F_CREATE) == 0) {
        return RoutePlacement::Unchanged;
    }
    if ((flags & NLM_F_EXCL) != 0) {
        return RoutePlacement::Only;
    }
    return (flags & NLM_F_APPEND) != 0 ? RoutePlacement::Last : RoutePlacement::First;
}

}  // namespace

std::optional<Link> LinkFrom(nlmsghdr* message)
{
    const auto* head = static_cast<const ifinfomsg*>(nlmsg_data(message));
    if (head->ifi_family == AF_BRIDGE) {
        return std::nullopt;
    }
    nlattr* attributes[IFLA_MAX + 1];
    nlmsg_parse(message, sizeof *head, attributes, IFLA_MAX, nullptr);
    nlattr* const name = attributes[IFLA_IFNAME];
    return Link{.index = static_cast<uint32_t>(head->ifi_index),
                .name = name != nullptr ? nla_get_string(name) : "",
                .hardware = head->ifi_type,
                .mtu = NumberIn(attributes[IFLA_MTU]),
                .mac = MacIn(attributes[IFLA_ADDRESS]),
                .up = (head->ifi_flags & IFF_UP) != 0,
                .carrier = (head->ifi_flags & IFF_LOWER_UP) != 0,
                .running = (head->ifi_flags & IFF_UP) != 0 && (head->ifi_flags & IFF_RUNNING) != 0,
                .bridgeMember = IsBridgeMember(attributes)};
}

Address AddressFrom(nlmsghdr* message)
{
    const auto* head = static_cast<const ifaddrmsg*>(nlmsg_data(message));
    nlattr* const local = nlmsg_find_attr(message, sizeof *head, IFA_LOCAL);
    return {.interface = head->ifa_index,
            .address = Ipv4In(local),
            .prefixLength = head->ifa_prefixlen};
}

std::optional<Route> RouteFrom(nlmsghdr* message)
{
    const auto* head = static_cast<const rtmsg*>(nlmsg_data(message));
    nlattr* attributes[RTA_MAX + 1];
    nlmsg_parse(message, sizeof *head, attributes, RTA_MAX, nullptr);
    nlattr* const table = attributes[RTA_TABLE];
    if ((table != nullptr ? nla_get_u32(table) : head->rtm_table) != RT_TABLE_MAIN ||
        head->rtm_tos != 0 || (head->rtm_flags & RTM_F_CLONED) != 0) {
        return std::nullopt;
    }
    Route route{.destination = {Ipv4In(attributes[RTA_DST]), head->rtm_dst_len},
                .metric = NumberIn(attributes[RTA_PRIORITY]),
                .refuses = Refuses(head->rtm_type),
                .nextHopObject = NumberIn(attributes[RTA_NH_ID]),
                .source = Ipv4In(attributes[RTA_PREFSRC]),
                .hops = {},
                .fingerprint = FingerprintOf(message, attributes[RTA_NH_ID] != nullptr)};
    if (route.refuses) {
        return route;
    }
    if (attributes[RTA_MULTIPATH] != nullptr) {
        route.hops = HopsIn(attributes[RTA_MULTIPATH]);
    } else if (attributes[RTA_OIF] != nullptr || attributes[RTA_GATEWAY] != nullptr) {
        route.hops.push_back({{Ipv4In(attributes[RTA_GATEWAY]), NumberIn(attributes[RTA_OIF])},
                              (head->rtm_flags & RTNH_F_DEAD) != 0});
    }
    return route;
}

std::optional<KernelChange> ChangeFrom(nlmsghdr* message)
{
    const int type = message->nlmsg_type;
    switch (type) {
        case RTM_NEWLINK:
        case RTM_DELLINK:
            if (auto link = LinkFrom(message)) {
                return LinkChange{type == RTM_DELLINK, *std::move(link)};
            }
            return std::nullopt;
        case RTM_NEWADDR:
        case RTM_DELADDR:
            return AddressChange{type == RTM_DELADDR, AddressFrom(message)};
        case RTM_NEWROUTE:
        case RTM_DELROUTE:
            if (auto route = RouteFrom(message)) {
                return RouteChange{type == RTM_DELROUTE, PlacementOf(message->nlmsg_flags),
                                   *std::move(route)};
            }
            return std::nullopt;
        case RTM_NEWNEXTHOP:
        case RTM_DELNEXTHOP:
            return NextHopObjectChange{type == RTM_DELNEXTHOP,
                                       (message->nlmsg_flags & (NLM_F_CREATE | NLM_F_REPLACE)) != 0,
                                       NumberIn(nlmsg_find_attr(message, sizeof(nhmsg), NHA_ID))};
        default:
            return std::nullopt;
    }
}

}  // namespace sources
