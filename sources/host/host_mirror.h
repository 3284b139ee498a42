// Makes the host's tables equal to what was read from the kernel.
#pragma once

#include "sources/host/host_forwarding.h"
#include "sources/host/host_rows.h"
#include "sources/mirror.h"

namespace sources {

void MirrorLinks(standin::Transaction& transaction, const std::vector<Link>& links);
void MirrorAddresses(standin::Transaction& transaction, const std::vector<Address>& addresses);
void MirrorForwarding(standin::Transaction& transaction, const Forwarding& forwarding);

// The rows of one link.
RowChanges LinkRowChanges(const LinkChange& change);

}  // namespace sources
