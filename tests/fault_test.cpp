// Every exported call, with every one of its steps failing in turn, and then once more with every
// clean-up behind it failing too.
#include <fstream>
#include <iostream>
#include <regex>
#include <set>

#include "calls/calls.h"

namespace {

using calls::Call;
using calls::Fault;
using calls::Lines;
using support::CleanUp;

class Faults : public calls::DeviceTest {};

TEST_F(Faults, OfEveryStepAreReportedAndLeaveNothingBehind)
{
    unsigned           injected = 0;
    const calls::Calls all      = calls::AllCalls();
    for (const Call& call : all) {
        calls::Expectation expectation = Read(call);
        ASSERT_EQ(Perform(call), expectation.good) << call.name;
        Lines points = support::FaultPoints();
        std::erase(points, "epoll_wait");  // the listener's thread comes to it when it may

        const auto inject = [&](const Fault& fault) {
            const std::string where =
                call.name + ", call " + std::to_string(fault.operations.size()) + " (" +
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
        EXPECT_EQ(expectation.unused, std::set<std::string>()) << call.name;
    }
    std::cout << injected << " faults in " << all.size() << " calls\n";
    EXPECT_GT(injected, 4000U);
}

// Whoever exports a function tells here what becomes of it. The list and the memory map have no
// database behind them, and tests of their own; the listener's thread runs in whatever starts it,
// the rows of a message are read in its delivery, and the print hooks do nothing. What publishes a
// pair of rows has no step that could fail.
TEST(Calls, AreOfEveryExportedFunction)
{
    std::set<std::string> told;
    for (const Call& call : calls::AllCalls()) {
        told.insert(call.name);
    }
    const std::regex exported(
        " +((?!g_|UTIL_LIST_|MEM_EX_|DbListenerEpollThreadFunc|"
        "QRB_EVENT_(Print|Port(Insert|Delete)|.*(Update|Check|OrmGet)))"
        "\\w+);");
    std::ifstream map(TARND_PROJECT_ROOT "/cmake/tarnd_qrb.map");
    std::smatch   name;
    unsigned      count = 0;
    for (std::string line; std::getline(map, line);) {
        if (std::regex_match(line, name, exported)) {
            count++;
            EXPECT_TRUE(told.contains(name[1])) << line;
        }
    }
    EXPECT_GT(count, 100U);
}

}  // namespace
