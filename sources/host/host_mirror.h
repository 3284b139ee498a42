// Writes the kernel's state into the tables.
#pragma once

#include "sources/host/host_rows.h"
#include "sources/mirror.h"

namespace sources {

void MirrorLinks(standin::Transaction& transaction, const std::vector<Link>& links);
void MirrorRoutes(standin::Transaction& transaction, Forwarding& forwarding,
                  std::vector<Route> routes);
void MirrorNextHops(standin::Transaction& transaction, const Forwarding& forwarding);

}  // namespace sources
