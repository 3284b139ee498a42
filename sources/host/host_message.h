// Reads the kernel's netlink messages.
#pragma once

#include <optional>

#include "sources/host/host_state.h"

struct nlmsghdr;

namespace sources {

// RTM_NEWLINK and RTM_DELLINK. Nothing for a bridge's messages about its members, which contain
// only a part of a link's state.
std::optional<Link> LinkFrom(nlmsghdr* message);

// RTM_NEWADDR and RTM_DELADDR.
Address AddressFrom(nlmsghdr* message);

// RTM_NEWROUTE and RTM_DELROUTE. Nothing for routes of other tables, cloned routes and routes for
// one type of service, which do not apply to a destination as such.
std::optional<Route> RouteFrom(nlmsghdr* message);

// Any message of the groups that Notifications joins.
std::optional<KernelChange> ChangeFrom(nlmsghdr* message);

}  // namespace sources
