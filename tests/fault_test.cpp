// Every exported call, with every one of its steps failing in turn, and then once more with every
// clean-up behind it failing too; and null for their pointers.
#include <algorithm>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <utility>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/memory_map.h>

#include "support/example_calls.h"

namespace {

using namespace calls;
using support::CleanUp;

constexpr QRB_PORT_S PORT = {};

class Faults : public DeviceTest {};

TEST_F(Faults, OfEveryStepAreReportedAndLeaveNothingBehind)
{
    unsigned injected = 0;
    const Calls all = AllCalls();
    for (const Call& call : all) {
        Expectation expectation = Read(call);
        ASSERT_EQ(Perform(call), expectation.good) << call.title;
        Lines points = support::FaultPoints();
        // What the listener's thread does beside, when it may: it logs its start, and waits.
        std::erase_if(points, [&](const std::string& point) {
            return point == "epoll_wait" || (IsLogging(point) && expectation.good.size() == 1);
        });

        const auto inject = [&](const Fault& fault) {
            const std::string where =
                call.title + ", call " + std::to_string(fault.operations.size()) + " (" +
                fault.operations.back() + ") fails with " + std::to_string(fault.code) +
                (fault.cleanUps == CleanUp::Works ? "" : " and clean-ups do");
            EXPECT_EQ(Perform(call, &fault), WithFault(expectation, fault)) << where;
            EXPECT_EQ(Perform(call), expectation.good) << "after " << where;
            injected++;
        };
        Lines operations;
        for (const std::string& operation : points) {
            operations.push_back(operation);
            // Only the database has codes: some that queries treat apart, and one that none does.
            for (const uint32_t code : {9U, 1U, ORM_NO_RECORD, ORM_NO_LIST}) {
                if (code == 9 || operation.starts_with("Orm")) {
                    inject({operations, code, CleanUp::Works});
                    inject({operations, code, CleanUp::FailsToo});
                }
            }
        }
        EXPECT_EQ(expectation.unused, std::set<std::string>()) << call.title;
    }
    std::cout << injected << " faults in " << all.size() << " calls\n";
    EXPECT_GT(injected, 4000U);
}

// Null in place of any of their pointers, one after the other.
// clang-format off
TEST_F(Faults, NullIsRefused)
{
    const Calls calls = QueryCalls();
    for (const char* name : {
             "BDS_IfnetGetIfNameByIfIndex", "BDS_Ifname2IfGetIndexByname", "IF_INTF_GetSimpleName",
             "BDS_IfnetGetPortType", "IF_INTF_GetIfLineState", "IF_INTF_GetIfLinkState",
             "BDS_IfnetGetCardByIfIndex", "BDS_IfnetGetIfMacByIfIndex", "BDS_IfnetGetSlotIdBySlotStr",
             "IP_GetMainIpAddr", "SYSAPI_GetIp4AllAddrByIf", "BDS_IPIFGetThisIfIpAddr",
             "BDS_IPGetFirstIpByIfIndex", "BDS_IPGetIFBestMatchIpAddr", "IP_GetMask",
             "IP_GetIfindexbyIpAddr", "BDS_L2IF_VLAN_GetIfIndexByVlanId",
             "BDS_IfnetGetVlanIdByIfName", "BDS_IfnetGetVlanIdByIfIndex"}) {
        const auto call = std::ranges::find(calls, name, &Call::Name);
        ASSERT_NE(call, calls.end()) << name;
        for (unsigned nth = 1;; nth++) {
            nullPointer           = nth;
            const Outcome outcome = Perform(*call);
            if (std::exchange(nullPointer, 0) != 0) {
                break;  // there are no more
            }
            EXPECT_TRUE(std::regex_match(outcome[0], std::regex("1( -)*"))) << outcome[0];
            EXPECT_EQ(outcome, (Lines{outcome[0], std::string(name) + ": Null value provided\n"}));
        }
    }
    Expect({
        {CALL(IF_RegNotifyFunc, 1U, nullptr), "1"},
        {CALL(QRB_EVENT_PortCheckIsVlanBitMapChange, &PORT, nullptr, 512, uint8_t{0}), R"(1 | Input parameter is NULL.\n)"},
        {CALL(QRB_EVENT_PortCheckIsVlanBitMapChange, nullptr, &PORT, 512, uint8_t{0}), R"(1 | Input parameter is NULL.\n)"},
        {CALL(MEM_EX_GetDetailedInfoSize, nullptr), "1"},
    });
}
// clang-format on

// Whoever exports a function calls it in tests/calls, and tells in docs/failures what becomes of
// it. The list and the memory map have no database behind them, and tests of their own; the
// listener's thread runs in whatever starts it, the rows of a message are read in its delivery, and
// the print hooks do nothing. What publishes a pair of rows has no step that could fail.
TEST(Calls, AreOfEveryExportedFunction)
{
    std::set<std::string> told;
    std::set<std::string> titles;
    for (const Call& call : AllCalls()) {
        told.insert(call.Name());
        EXPECT_TRUE(titles.insert(call.title).second) << call.title;
    }
    EXPECT_EQ(titles, Titles());
    const std::regex exported(
        " +((?!g_|UTIL_LIST_|MEM_EX_|DbListenerEpollThreadFunc|"
        "QRB_EVENT_(Print|Port(Insert|Delete)|.*(Update|Check|OrmGet)))"
        "\\w+);");
    std::ifstream map(TARND_PROJECT_ROOT "/cmake/tarnd_qrb.map");
    std::smatch name;
    unsigned count = 0;
    for (std::string line; std::getline(map, line);) {
        if (std::regex_match(line, name, exported)) {
            count++;
            EXPECT_TRUE(told.contains(name[1])) << line;
        }
    }
    EXPECT_GT(count, 100U);
}

}  // namespace
