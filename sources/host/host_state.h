// Links, IPv4 addresses and IPv4 routes as the kernel describes them, and their changes.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace sources {

struct Link {
    uint32_t index = 0;
    std::string name;
    uint32_t hardware = 0;  // ARPHRD_*
    uint32_t mtu = 0;
    std::array<uint8_t, 6> mac{};
    bool up = false;  // administratively
    bool carrier = false;
    bool running = false;  // administratively up, and operating
    bool bridgeMember = false;
};

// What decides whether the kernel uses routes over a link.
struct LinkState {
    bool up;
    bool carrier;
    bool running;

    friend bool operator==(const LinkState&, const LinkState&) = default;
};

inline LinkState StateOf(const Link& link)
{
    return {link.up, link.carrier, link.running};
}

// IPv4 addresses are numbers whose most significant byte is the first octet.
struct Address {
    uint32_t interface = 0;
    uint32_t address = 0;
    uint8_t prefixLength = 0;
};

struct NextHop {
    uint32_t gateway = 0;  // 0 where the destination is on the link itself
    uint32_t interface = 0;

    friend auto operator<=>(const NextHop&, const NextHop&) = default;
};

struct Destination {
    uint32_t address = 0;
    uint8_t prefixLength = 0;

    friend auto operator<=>(const Destination&, const Destination&) = default;
};

struct DestinationHash {
    size_t operator()(const Destination& destination) const
    {
        constexpr uint64_t GOLDEN_RATIO = 0x9E3779B97F4A7C15;  // of 2^64
        const uint64_t number = uint64_t{destination.address} << 6 | destination.prefixLength;
        return number * GOLDEN_RATIO >> 20;
    }
};

struct RouteHop {
    NextHop nextHop;
    bool dead = false;  // the kernel does not use it now

    friend bool operator==(const RouteHop&, const RouteHop&) = default;
};

// A route of the main table that applies to every type of service.
struct Route {
    Destination destination;
    uint32_t metric = 0;
    bool refuses = false;  // blackhole, unreachable, prohibit, throw
    uint32_t nextHopObject = 0;
    uint32_t source = 0;         // preferred source address
    std::vector<RouteHop> hops;  // none if the route refuses
    uint64_t fingerprint = 0;    // hash of the attributes that identify it among equal metrics

    bool Uses(uint32_t interface) const
    {
        for (const RouteHop& hop : hops) {
            if (hop.nextHop.interface == interface) {
                return true;
            }
        }
        return false;
    }

    friend bool operator==(const Route&, const Route&) = default;
};

struct LinkChange {
    bool removed;
    Link link;  // all of its state after the change
};

struct AddressChange {
    bool removed;
    Address address;
};

// Where a route comes among those of equal destination and metric. Replacing: the kernel announces
// alike that a route takes the place of the first one, and that it has changed with its next-hop
// object.
enum class RoutePlacement : uint8_t { Only, First, Replacing, Last, Unchanged };

struct RouteChange {
    bool removed;
    RoutePlacement placement;  // of a route that was not removed
    Route route;
};

struct NextHopObjectChange {
    bool removed;
    bool byUser;  // made or replaced: the kernel announces the routes that change with it
    uint32_t id;
};

using KernelChange = std::variant<LinkChange, AddressChange, RouteChange, NextHopObjectChange>;

}  // namespace sources
