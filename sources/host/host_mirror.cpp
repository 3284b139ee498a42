#include "sources/host/host_mirror.h"

namespace sources {

using standin::Transaction;

void MirrorLinks(Transaction& transaction, const std::vector<Link>& links)
{
    std::array<Rows, LINK_TABLES.size()> desired;
    for (const Link& link : links) {
        const Rows rows = LinkRows(link);
        for (size_t i = 0; i < desired.size(); ++i) {
            desired[i].push_back(rows[i]);
        }
    }
    for (size_t i = 0; i < desired.size(); ++i) {
        MirrorTable(transaction, *standin::FindTable(LINK_TABLES[i]), desired[i]);
    }
}

void MirrorNextHops(Transaction& transaction, const Forwarding& forwarding)
{
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpStandard"),
                forwarding.NextHopRows());
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpGroupNode"),
                forwarding.GroupNodeRows());
}

void MirrorRoutes(Transaction& transaction, Forwarding& forwarding, std::vector<Route> routes)
{
    const Rows rows = forwarding.ForwardRows(std::move(routes), std::chrono::steady_clock::now());
    MirrorNextHops(transaction, forwarding);
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigIpv4Fwd"), rows);
}

}  // namespace sources
