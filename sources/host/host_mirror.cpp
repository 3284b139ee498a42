#include "sources/host/host_mirror.h"

namespace sources {
namespace {

using standin::Row;
using standin::Transaction;

// The prefix length of the longest prefix that has no row yet; 0 where all have one.
uint64_t LongestNewPrefix(const Rows& longestFirst)
{
    for (const Row& forward : longestFirst) {
        if (!standin::Find(forward)) {
            return forward.Number("prefixLen");
        }
    }
    return 0;
}

}  // namespace

void MirrorLinks(Transaction& transaction, const std::vector<Link>& links)
{
    std::array<Rows, linkTables.size()> wanted;
    for (const Link& link : links) {
        const Rows rows = LinkRows(link);
        for (size_t i = 0; i < wanted.size(); ++i) {
            wanted[i].push_back(rows[i]);
        }
    }
    for (size_t i = 0; i < wanted.size(); ++i) {
        MirrorTable(transaction, *standin::FindTable(linkTables[i]), wanted[i]);
    }
}

void MirrorForwarding(Transaction& transaction, const ForwardingRows& wanted)
{
    // Rows are scanned in the order of their insertion: what is shorter than a new prefix is
    // written again behind it, so that the first entry that covers an address stays the longest.
    const uint64_t longestNew = LongestNewPrefix(wanted.forwards);
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpStandard"), wanted.nextHops);
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigNhpGroupNode"), wanted.groupNodes);
    MirrorTable(transaction, *standin::FindTable("Fib.ConfigIpv4Fwd"), wanted.forwards,
                [=](const Row& row, const Row&) { return row.Number("prefixLen") >= longestNew; });
}

}  // namespace sources
