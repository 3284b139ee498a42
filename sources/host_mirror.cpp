#include "sources/host_mirror.h"

#include <string_view>
#include <unordered_map>

namespace sources {
namespace {

using standin::Row;
using standin::Table;
using standin::Transaction;

std::string_view PrimaryKey(const Row& row)
{
    const standin::Key& key = row.Description().keys.front();
    return {reinterpret_cast<const char*>(row.Record().data()) + key.offset, key.width};
}

// The prefix length of the longest prefix that has no row yet; 0 where all have one.
uint64_t LongestNewPrefix(const Rows& longestFirst)
{
    for (const Row& forward : longestFirst) {
        if (!standin::Find(forward))
            return forward.Number("prefixLen");
    }
    return 0;
}

}  // namespace

void MirrorTable(Transaction& transaction, const Table& table, const Rows& wanted,
                 const MayStay& mayStay)
{
    std::unordered_map<std::string_view, const Row*> missing;
    for (const Row& row : wanted)
        missing.emplace(PrimaryKey(row), &row);

    Rows changed;
    standin::ForEachRow(table, [&](const Row& row) {
        const auto found = missing.find(PrimaryKey(row));
        if (found == missing.end() || !mayStay(row, *found->second)) {
            transaction.Delete(row);
            return;
        }
        if (row != *found->second)
            changed.push_back(*found->second);
        missing.erase(found);
    });
    for (const Row& row : changed)
        transaction.Update(row);
    for (const Row& row : wanted) {
        if (missing.contains(PrimaryKey(row)))
            transaction.Insert(row);
    }
}

void MirrorRow(Transaction& transaction, const Row& wanted)
{
    const auto row = standin::Find(wanted);
    if (!row)
        transaction.Insert(wanted);
    else if (*row != wanted)
        transaction.Update(wanted);
}

void RemoveRow(Transaction& transaction, const Row& key)
{
    if (standin::Find(key))
        transaction.Delete(key);
}

void MirrorLinks(Transaction& transaction, const std::vector<Link>& links)
{
    std::array<Rows, linkTables.size()> wanted;
    for (const Link& link : links) {
        const Rows rows = LinkRows(link);
        for (size_t i = 0; i < wanted.size(); ++i)
            wanted[i].push_back(rows[i]);
    }
    // Names may have changed hands, and no two rows may have one name even for a moment.
    const MayStay sameName = [](const Row& row, const Row& other) {
        return row.Text("if_name") == other.Text("if_name");
    };
    const MayStay always = [](const Row&, const Row&) { return true; };
    for (size_t i = 0; i < wanted.size(); ++i)
        MirrorTable(transaction, *standin::FindTable(linkTables[i]), wanted[i],
                    i == 0 ? sameName : always);
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
