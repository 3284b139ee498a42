// Destinations by something that their routes use: an interface, a next-hop object, an address.
#pragma once

#include <unordered_map>
#include <vector>

#include "sources/host/host_state.h"

namespace sources {

class RouteIndex {
public:
    // Counted: a destination stays until each use is removed.
    void Add(uint32_t used, const Destination& destination) { ++uses_[used][destination]; }
    void Remove(uint32_t used, const Destination& destination)
    {
        const auto destinations = uses_.find(used);
        const auto use = destinations->second.find(destination);
        if (--use->second > 0) {
            return;
        }
        destinations->second.erase(use);
        if (destinations->second.empty()) {
            uses_.erase(destinations);
        }
    }

    // A copy, because what is done to the destinations changes the index.
    std::vector<Destination> Of(uint32_t used) const
    {
        std::vector<Destination> destinations;
        const auto found = uses_.find(used);
        if (found != uses_.end()) {
            destinations.reserve(found->second.size());
            for (const auto& [destination, count] : found->second) {
                destinations.push_back(destination);
            }
        }
        return destinations;
    }

    bool Contains(uint32_t used) const { return uses_.contains(used); }
    void Clear() { uses_.clear(); }

private:
    std::unordered_map<uint32_t, std::unordered_map<Destination, uint32_t, DestinationHash>> uses_;
};

}  // namespace sources
