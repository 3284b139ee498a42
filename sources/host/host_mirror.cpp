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

void MirrorAddresses(Transaction& transaction, const std::vector<Address>& addresses)
{
    MirrorTable(transaction, *standin::FindTable("am_ipv4_address"), AddressRows(addresses));
}

void MirrorForwarding(Transaction& transaction, const Forwarding& forwarding)
{
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpStandard"),
                forwarding.NextHopRows());
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpGroupNode"),
                forwarding.GroupNodeRows());
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigIpv4Fwd"), forwarding.ForwardRows());
}

RowChanges LinkRowChanges(const LinkChange& change)
{
    RowChanges changes;
    if (change.removed) {
        changes.removed = LinkRows(change.link);
    } else {
        changes.present = LinkRows(change.link);
    }
    return changes;
}

}  // namespace sources
