// One query of each kind, compared with the same platform calls written by hand.
#include <benchmark/benchmark.h>

#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/ipv4_address.h>
#include <tarnd_qrb/route.h>

#include "bench_rows.h"
#include "by_hand.h"

namespace {

using bench::Fill;
using standin::Row;

constexpr uint32_t ROWS = 64;
constexpr uint32_t ADDRESSES = 4;  // per interface
constexpr uint32_t NETWORK = 0x0A000000;

Row Physical(uint32_t ifIndex)
{
    Row row("if_phy");
    return row.Set("if_index", ifIndex).Set("phy_state", 1);
}

Row Addresses(uint32_t ifIndex)
{
    Row row("am_ipv4_address");
    row.Set("if_index", ifIndex);
    for (uint32_t host = 1; host <= ADDRESSES; host++) {
        const uint64_t values[] = {NETWORK + ifIndex * 256 + host, 24, 1};
        row.AddItem("ipv4_address_list", values);
    }
    return row;
}

Row Group(uint32_t id)
{
    Row row("acl_group");
    return row.Set("acl_group_id", id).Set("acl_number", 2000 + id);
}

Row Route(uint32_t number)
{
    Row row("Fib.ConfigIpv4Fwd");
    return row.Set("destAddr", NETWORK + number * 256)
        .Set("prefixLen", 24)
        .Set("nhpGroupId", number);
}

// Every call queries another row.
template <typename Query>
void QueryEach(benchmark::State& state, std::string_view table, Row (*row)(uint32_t), Query query)
{
    Fill(table, ROWS, row);
    uint32_t queried = 0;
    for (auto _ : state) {
        queried = queried % ROWS + 1;
        benchmark::DoNotOptimize(query(queried));
    }
}

void OneShot(benchmark::State& state, uint32_t (*query)(char*, uint32_t))
{
    char name[QRB_IF_NAME_SIZE];
    QueryEach(state, "if_base", bench::Interface, [&](uint32_t queried) {
        const uint32_t ret = query(name, queried);
        benchmark::DoNotOptimize(name);
        return ret;
    });
}
BENCHMARK_CAPTURE(OneShot, library, IF_INTF_GetIfNameByIfIndex)->Name("query_one_shot/library");
BENCHMARK_CAPTURE(OneShot, by_hand, by_hand::IF_INTF_GetIfNameByIfIndex)
    ->Name("query_one_shot/by_hand");

void Session(benchmark::State& state, uint32_t (*query)(uint32_t, uint8_t*))
{
    uint8_t up = 0;
    QueryEach(state, "if_phy", Physical,
              [&](uint32_t queried) { return query(queried, &up) + up; });
}
BENCHMARK_CAPTURE(Session, library, BDS_IfnetGetIfPhyState)->Name("query_session/library");
BENCHMARK_CAPTURE(Session, by_hand, by_hand::BDS_IfnetGetIfPhyState)->Name("query_session/by_hand");

void List(benchmark::State& state, uint32_t (*query)(uint32_t, uint32_t, uint32_t*))
{
    uint32_t mask = 0;
    QueryEach(state, "am_ipv4_address", Addresses, [&](uint32_t queried) {
        return query(queried, NETWORK + queried * 256 + ADDRESSES, &mask) + mask;
    });
}
BENCHMARK_CAPTURE(List, library, IP_GetMask)->Name("query_list/library");
BENCHMARK_CAPTURE(List, by_hand, by_hand::IP_GetMask)->Name("query_list/by_hand");

void Condition(benchmark::State& state,
               uint32_t (*query)(uint16_t, uint16_t, uint32_t, const char*, uint32_t*))
{
    uint32_t id = 0;
    QueryEach(state, "acl_group", Group,
              [&](uint32_t queried) { return query(0, 0, 2000 + queried, nullptr, &id) + id; });
}
BENCHMARK_CAPTURE(Condition, library, ACL_IsExist)->Name("query_condition/library");
BENCHMARK_CAPTURE(Condition, by_hand, by_hand::ACL_IsExist)->Name("query_condition/by_hand");

void Scan(benchmark::State& state, uint32_t (*query)(uint32_t, uint32_t*))
{
    uint32_t group = 0;
    QueryEach(state, "Fib.ConfigIpv4Fwd", Route,
              [&](uint32_t queried) { return query(NETWORK + queried * 256 + 1, &group) + group; });
}
BENCHMARK_CAPTURE(Scan, library, FIB_ScanIp4Forward)->Name("query_scan/library");
BENCHMARK_CAPTURE(Scan, by_hand, by_hand::FIB_ScanIp4Forward)->Name("query_scan/by_hand");

}  // namespace
