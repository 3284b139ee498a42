// Every exported call, with every one of its steps failing in turn, and then once more with every
// clean-up behind it failing too.
#include <algorithm>
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

// The codes that some queries treat apart, and one that none does. Only the database has codes.
std::vector<uint32_t> CodesOf(const std::string& operation)
{
    return operation.starts_with("Orm") ? std::vector<uint32_t>{9, 1, ORM_NO_RECORD, ORM_NO_LIST}
                                        : std::vector<uint32_t>{9};
}

bool IsLogging(const std::string& operation)
{
    return operation == "malloc" || operation == "vsprintf_s";
}

bool CleanUpFollows(const Lines& points, const Fault& fault)
{
    // The listener's steps come when they may: the one that was to fail need not have come.
    const auto behind = std::min<ptrdiff_t>(fault.number, std::ssize(points));
    return std::any_of(points.begin() + behind, points.end(), support::IsCleanUp);
}

TEST_F(Faults, OfEveryStepAreReportedAndLeaveNothingBehind)
{
    unsigned           injected     = 0;
    unsigned           withCleanUps = 0;
    const calls::Calls all          = calls::AllCalls();
    for (const Call& call : all) {
        const calls::Expectation expectation = Read(call);
        ASSERT_EQ(Perform(call), expectation.good) << call.name;
        const Lines points = support::FaultPoints();

        // True when there were clean-ups behind the fault.
        const auto inject = [&](const Fault& fault) {
            const std::string where = call.name + ", call " + std::to_string(fault.number) + " (" +
                                      points[fault.number - 1] + ") fails with " +
                                      std::to_string(fault.code) +
                                      (fault.cleanUps == CleanUp::Works ? "" : " and clean-ups do");
            EXPECT_EQ(Perform(call, points, &fault), WithFault(expectation, points, fault))
                << where;
            const bool cleanedUp = CleanUpFollows(support::FaultPoints(), fault);
            EXPECT_EQ(Perform(call), expectation.good) << "after " << where;
            injected++;
            return cleanedUp;
        };
        for (unsigned number = 1; number <= points.size(); number++) {
            for (const uint32_t code : CodesOf(points[number - 1])) {
                // Behind a line that is lost, the call goes on as ever.
                if (inject({number, code, CleanUp::Works}) && !IsLogging(points[number - 1])) {
                    inject({number, code, CleanUp::FailsToo});
                    withCleanUps++;
                }
            }
        }
    }
    std::cout << injected << " faults in " << all.size() << " calls, " << withCleanUps
              << " of them with failing clean-ups\n";
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
