// The device, and places in it.
#include "calls/calls.h"

#include <algorithm>
#include <utility>

#include "sources/json_row.h"

namespace calls {

ORM_SESSION session = 0;
ORM_SCAN    scan    = 0;
ORM_NODE    node    = 0;

unsigned nullPointer = 0;

std::string Text(uint32_t number)
{
    const auto octet = [number](int shift) { return std::to_string(number >> shift & 0xFF); };
    return number == UNTOUCHED * 0x01010101U || number == UNTOUCHED * 0x0101U || number == UNTOUCHED
               ? "-"
           : number == UINT32_MAX ? "NONE"
           : number < 1U << 24    ? std::to_string(number)
                                  : octet(24) + '.' + octet(16) + '.' + octet(8) + '.' + octet(0);
}

std::string Texts(std::initializer_list<uint32_t> numbers)
{
    std::string texts;
    for (const uint32_t number : numbers) {
        texts += (texts.empty() ? "" : " ") + Text(number);
    }
    return texts;
}

std::string Text(const char* text)
{
    const std::string_view view = text;
    return view == "untouched" ? "-" : view.empty() ? R"("")" : text;
}

void Load(const std::string& device)
{
    const auto           tables = sources::Json::parse(device);
    standin::Transaction write;
    for (const auto& [table, rows] : tables.items()) {
        for (const auto& row : rows) {
            write.Insert(sources::RowFromJson(*standin::FindTable(table), row));
        }
    }
    write.Commit();
}

void Opened()
{
    session = 0;
    EXPECT_EQ(OrmOpenSessionByDefault(&session), 0U);
}

void Positioned(const char* table)
{
    uint8_t end = 0;
    Opened();
    EXPECT_EQ(OrmPrepare(session, table, QRB_ORM_OP_SCAN), 0U);
    EXPECT_EQ(OrmScanStart(session, &scan), 0U);
    EXPECT_EQ(OrmScanNext(session, scan, &end), 0U);
}

void Closed()
{
    OrmScanEnd(session, std::exchange(scan, 0));
    OrmCloseSession(std::exchange(session, 0));
}

namespace {

constexpr char DEVICE[] = R"({
    "if_base": [
        {"if_index": 1, "if_name": "Eth0/0/1", "simple_name": "E1", "if_type": 1},
        {"if_index": 2, "if_name": "Vlanif10", "simple_name": "V10", "if_type": 8}],
    "if_phy": [
        {"if_index": 1, "phy_state": 1, "slot_id": 16909060, "port_id": 4059231220, "mac_addr": "02:00:5e:10:20:30"}],
    "if_link": [{"if_index": 1, "link_state": 1}],
    "if_route": [{"if_index": 1, "route_state": 1}],
    "port": [
        {"if_index": 1, "port_index": 256, "pvid": 10, "switch_port": 1},
        {"if_index": 2, "port_index": 512, "pvid": 10, "switch_port": 1}],
    "vlan": [
        {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 20, "name": "blue"},
        {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 10, "name": "red", "description": "red floor", "state": 1, "member_bitmap_1": [1]}],
    "am_ipv4_address": [
        {"if_index": 2, "instance_id": 5, "ipv4_address_list": [{"address": "10.0.0.1", "masklen": 16, "type": 1}]},
        {"if_index": 1, "ipv4_address_list": [
            {"address": "10.0.0.1", "masklen": 24, "type": 6}, {"address": "10.0.0.2", "masklen": 25, "type": 1}]},
        {"if_index": 4, "ipv4_address_list": []}],
    "Fib.ConfigIpv4Fwd": [
        {"destAddr": "20.0.0.0", "prefixLen": 8, "nhpGroupId": 9},
        {"destAddr": "10.0.0.0", "prefixLen": 8, "nhpGroupId": 1}],
    "Fib.ConfigNhpGroupNode": [
        {"nhpGroupId": 9, "primaryNhpId": 999},
        {"nhpGroupId": 1, "primaryNhpId": 101}, {"nhpGroupId": 1, "primaryNhpId": 102}],
    "Fib.ConfigNhpStandard": [
        {"nhpIndex": 102, "next_hop": "0.0.3.234", "out_if_index": 2},
        {"nhpIndex": 101, "next_hop": "0.0.3.233", "out_if_index": 1}],
    "acl_group": [
        {"acl_group_id": 1, "vsid": 1, "vsysid": 2, "acl_number": 3000, "acl_name": "web"},
        {"acl_group_id": 2, "vsid": 1, "vsysid": 2, "acl_number": 3000, "acl_name": "web", "isipv6": 1}],
    "acl_adv": [{"acl_group_id": 1, "rule_id": 1}, {"acl_group_id": 1, "rule_id": 2}],
    "acl_rule_id": [{"groupId": 2, "rule_id": 1}, {"groupId": 2, "rule_id": 2}],
    "acl_group_id": [{"id": 1, "name": "web", "kind": 4, "acl_number": 3000}],
    "qos_integration": [
        {"index": 1, "name": "gold",
            "remark_dscp_list": [{"index": 0, "dscp": 40}, {"index": 1, "dscp": 41}],
            "remark_8021p_list": [{"index": 0, "priority": 5}, {"index": 1, "priority": 6}],
            "car_list": [
                {"index": 0, "cir": 10, "cbs": 20, "pir": 30, "pbs": 40},
                {"index": 1, "cir": 11, "cbs": 21, "pir": 31, "pbs": 41}]},
        {"index": 2, "name": "silver"}]
})";

}  // namespace

void DeviceTest::SetUp()
{
    EventTest::SetUp();
    Load(DEVICE);
}

Outcome Perform(const Call& call, const Fault* fault)
{
    const int before = support::OpenHandles() + support::LibraryBlocks();
    support::WatchPlatform(false);
    if (call.before) {
        call.before();
    }
    support::TakeLog();
    support::ResetPlatform();
    if (fault != nullptr) {
        const std::string& operation = fault->operations.back();
        const auto         nth       = std::ranges::count(fault->operations, operation);
        support::FailCall(operation, static_cast<unsigned>(nth), fault->code,
                          IsLogging(operation) ? support::CleanUp::Works : fault->cleanUps);
    }
    support::WatchPlatform(true);
    Outcome outcome = {call.run()};
    std::ranges::move(support::TakeComplaints(), std::back_inserter(outcome));
    support::WatchPlatform(false);
    if (call.after) {
        call.after();
    }
    if (call.tidy != nullptr) {
        call.tidy(outcome);
    }
    const int after = support::OpenHandles() + support::LibraryBlocks();
    if (after != before) {
        outcome.push_back("leaves behind " + std::to_string(after - before));
    }
    return outcome;
}

void Expect(const Calls& calls)
{
    for (const Call& call : calls) {
        EXPECT_EQ(Perform(call), Read(call).good) << call.name;
    }
}

Calls QueryCalls()
{
    Calls all;
    for (const auto family : {DatabaseCalls, InterfaceCalls, AddressCalls, Layer2Calls, RouteCalls,
                              AclCalls, QosCalls}) {
        std::ranges::move(family(), std::back_inserter(all));
    }
    return all;
}

Calls AllCalls()
{
    Calls all = QueryCalls();
    std::ranges::move(EventCalls(), std::back_inserter(all));
    return all;
}

}  // namespace calls
