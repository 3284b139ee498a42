// The device, and places in it.
#include "calls/calls.h"

#include <algorithm>
#include <array>

namespace calls {

ORM_SESSION session = 0;
ORM_SCAN    scan    = 0;
ORM_NODE    node    = 0;

std::string Text(uint32_t number)
{
    const auto octet = [number](int shift) { return std::to_string(number >> shift & 0xFF); };
    return number == UNTOUCHED    ? "-"
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

void Insert(const std::vector<standin::Row>& rows)
{
    standin::Transaction write;
    for (const standin::Row& row : rows) {
        write.Insert(row);
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
    if (scan != 0) {
        OrmScanEnd(session, scan);
    }
    if (session != 0) {
        OrmCloseSession(session);
    }
    scan    = 0;
    session = 0;
}

namespace {

using standin::Row;

void Interfaces(standin::Transaction& fill)
{
    constexpr uint8_t mac[] = {0x02, 0x00, 0x5e, 0x10, 0x20, 0x30};
    const auto named = [](uint32_t index, const char* name, const char* simple, uint32_t type) {
        return Row("if_base")
            .Set("if_index", index)
            .Set("if_name", name)
            .Set("simple_name", simple)
            .Set("if_type", type);
    };
    fill.Insert(named(1, "Eth0/0/1", "E1", 1));
    fill.Insert(named(2, "Vlanif10", "V10", 8));
    fill.Insert(Row("if_phy")
                    .Set("if_index", 1)
                    .Set("phy_state", 1)
                    .Set("slot_id", 0x01020304)
                    .Set("port_id", 0xF1F2F3F4)
                    .SetBytes("mac_addr", mac));
    fill.Insert(Row("if_link").Set("if_index", 1).Set("link_state", 1));
    fill.Insert(Row("if_route").Set("if_index", 1).Set("route_state", 1));
}

void Layer2(standin::Transaction& fill)
{
    for (const uint32_t index : {1U, 2U}) {
        fill.Insert(Row("port")
                        .Set("if_index", index)
                        .Set("port_index", index << 8)
                        .Set("pvid", 10)
                        .Set("switch_port", 1));
    }
    fill.Insert(Row("vlan").Set("vlan_id", 20).Set("name", "blue"));
    fill.Insert(Row("vlan")
                    .Set("vlan_id", 10)
                    .Set("name", "red")
                    .Set("description", "red floor")
                    .Set("state", 1)
                    .AddToSet("member_bitmap_1", 1, 1));
}

void Addresses(standin::Transaction& fill)
{
    using Item            = std::array<uint64_t, 3>;  // address, prefix length, type
    constexpr char list[] = "ipv4_address_list";
    fill.Insert(Row("am_ipv4_address")
                    .Set("if_index", 2)
                    .Set("instance_id", 5)
                    .AddItem(list, Item{0x0A000001, 16, 1}));
    fill.Insert(Row("am_ipv4_address")
                    .Set("if_index", 1)
                    .AddItem(list, Item{0x0A000001, 24, 6})
                    .AddItem(list, Item{0x0A000002, 25, 1}));
}

void Routes(standin::Transaction& fill)
{
    const auto forward = [](uint32_t address, uint32_t group) {
        return Row("Fib.ConfigIpv4Fwd")
            .Set("destAddr", address)
            .Set("prefixLen", 8)
            .Set("nhpGroupId", group);
    };
    const auto member = [](uint32_t group, uint32_t index) {
        return Row("Fib.ConfigNhpGroupNode").Set("nhpGroupId", group).Set("primaryNhpId", index);
    };
    const auto nextHop = [](uint32_t index, uint32_t first, uint32_t second) {
        return Row("Fib.ConfigNhpStandard")
            .Set("nhpIndex", index)
            .Set("next_hop", first)
            .Set("out_if_index", second);
    };
    fill.Insert(forward(0x14000000, 9));
    fill.Insert(forward(0x0A000000, 1));
    fill.Insert(member(9, 999));
    fill.Insert(member(1, 101));
    fill.Insert(member(1, 102));
    fill.Insert(nextHop(102, 1002, 2));
    fill.Insert(nextHop(101, 1001, 1));
}

void AccessLists(standin::Transaction& fill)
{
    for (const uint32_t isIpv6 : {0U, 1U}) {
        fill.Insert(Row("acl_group")
                        .Set("acl_group_id", 1 + isIpv6)
                        .Set("vsid", 1)
                        .Set("vsysid", 2)
                        .Set("acl_number", 3000)
                        .Set("acl_name", "web")
                        .Set("isipv6", isIpv6));
    }
    for (const uint32_t rule : {1U, 2U}) {
        fill.Insert(Row("acl_adv").Set("acl_group_id", 1).Set("rule_id", rule));
        fill.Insert(Row("acl_rule_id").Set("groupId", 2).Set("rule_id", rule));
    }
    fill.Insert(
        Row("acl_group_id").Set("id", 1).Set("name", "web").Set("kind", 4).Set("acl_number", 3000));
}

void Profiles(standin::Transaction& fill)
{
    using Item    = std::array<uint64_t, 2>;
    using CarItem = std::array<uint64_t, 5>;
    fill.Insert(Row("qos_integration")
                    .Set("index", 1)
                    .Set("name", "gold")
                    .AddItem("remark_dscp_list", Item{0, 40})
                    .AddItem("remark_dscp_list", Item{1, 41})
                    .AddItem("remark_8021p_list", Item{0, 5})
                    .AddItem("remark_8021p_list", Item{1, 6})
                    .AddItem("car_list", CarItem{0, 10, 20, 30, 40})
                    .AddItem("car_list", CarItem{1, 11, 21, 31, 41}));
    fill.Insert(Row("qos_integration").Set("index", 2).Set("name", "silver"));
}

}  // namespace

void DeviceTest::SetUp()
{
    PlatformTest::SetUp();
    standin::Transaction fill;
    Interfaces(fill);
    Layer2(fill);
    Addresses(fill);
    Routes(fill);
    AccessLists(fill);
    Profiles(fill);
    fill.Commit();
}

void PrintTo(const Outcome& outcome, std::ostream* out)
{
    *out << outcome.answer << ", logging " << testing::PrintToString(outcome.lines) << ", leaving "
         << outcome.sessions << " sessions, " << outcome.scans << " scans, " << outcome.blocks
         << " blocks";
}

Outcome Perform(const Call& call, const Lines& points, const Fault* fault)
{
    const int sessions = support::OpenSessions();
    const int scans    = support::OpenScans();
    const int blocks   = support::LibraryBlocks();
    support::WatchPlatform(false);
    if (call.before) {
        call.before();
    }
    support::TakeLog();
    support::ResetPlatform();
    if (fault != nullptr) {
        const auto& operation = points[fault->number - 1];
        const auto  nth = std::count(points.begin(), points.begin() + fault->number, operation);
        support::FailCall(operation, static_cast<unsigned>(nth), fault->code, fault->cleanUps);
    }
    support::WatchPlatform(true);
    Outcome outcome = {call.run(), support::TakeMessages()};
    support::WatchPlatform(false);
    if (call.after) {
        call.after();
    }
    if (call.tidy != nullptr) {
        call.tidy(outcome.lines);
    }
    outcome.sessions = support::OpenSessions() - sessions;
    outcome.scans    = support::OpenScans() - scans;
    outcome.blocks   = support::LibraryBlocks() - blocks;
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
        const Calls calls = family();
        all.insert(all.end(), calls.begin(), calls.end());
    }
    return all;
}

Calls AllCalls()
{
    Calls       all    = QueryCalls();
    const Calls events = EventCalls();
    all.insert(all.end(), events.begin(), events.end());
    return all;
}

}  // namespace calls
