// Makes the host's tables equal to what the kernel says.
#pragma once

#include "sources/host/host_rows.h"
#include "sources/mirror.h"

namespace sources {

void MirrorLinks(standin::Transaction& transaction, const std::vector<Link>& links);
void MirrorForwarding(standin::Transaction& transaction, const ForwardingRows& wanted);

}  // namespace sources
