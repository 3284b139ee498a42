// Makes each step of each example call fail in turn, and compares result, outputs and log with
// data/failures.txt. Passes null for pointer arguments.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <utility>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/memory_map.h>

#include "support/example_calls.h"

namespace {

using namespace calls;
using support::CleanUp;
using Lines = std::vector<std::string>;

constexpr char FAILURES_FILE[] = TARND_PROJECT_ROOT "/tests/data/failures.txt";

// The code of a failing step, which no query treats specially, and the codes that some do.
constexpr uint32_t ANY_CODE = 777;
constexpr uint32_t SPECIAL_CODES[] = {1, ORM_NO_RECORD, ORM_NO_LIST};

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// An outcome with "%u" in place of the code. One log line adds 8008 to it.
std::string WithoutCode(const std::string& outcome)
{
    const std::string sum = Replaced(outcome, std::to_string(ANY_CODE + 8008), "%u+8008");
    return Replaced(sum, std::to_string(ANY_CODE), "%u");
}

std::string WithCode(const std::string& outcome, uint32_t code)
{
    const std::string sum = Replaced(outcome, "%u+8008", std::to_string(code + 8008));
    return Replaced(sum, "%u", std::to_string(code));
}

// Log lines are formatted in allocated memory.
bool IsLogging(const std::string& operation)
{
    return operation == "malloc" || operation == "vsprintf_s";
}

constexpr QRB_PORT_S PORT = {};

bool IsCleanUp(const std::string& operation)
{
    return operation == "OrmScanEnd" || operation == "OrmCloseSession";
}

// The steps with one outcome: their numbers, by operation.
using Steps = std::map<std::string, std::vector<unsigned>>;

// "OrmGetField#2-4,6 OrmPrepare": no number where the call performs the operation once.
std::string Listed(const Steps& steps, const std::map<std::string, unsigned>& performed)
{
    std::string text;
    for (const auto& [operation, numbers] : steps) {
        text += (text.empty() ? "" : " ") + operation;
        for (size_t i = 0; i < numbers.size() && performed.at(operation) > 1; i++) {
            const size_t first = i;
            while (i + 1 < numbers.size() && numbers[i + 1] == numbers[i] + 1) {
                i++;
            }
            text += (first == 0 ? "#" : ",") + std::to_string(numbers[first]);
            text += i > first ? "-" + std::to_string(numbers[i]) : "";
        }
    }
    return text;
}

// Makes every step of one call fail.
class FailureTable {
public:
    explicit FailureTable(const Call& call) : call_(call), good_(Perform(call))
    {
        EXPECT_EQ(Rendered(good_), call.expected) << call.name << call.arguments;
        const Lines operations = support::FaultPoints();
        for (const std::string& operation : operations) {
            const unsigned number = ++performed_[operation];
            if (IsLogging(operation)) {
                FailLogging(operation, number);
            } else if (operation != "epoll_wait") {  // called by the listener thread, at any time
                FailStep(operation, number);
            }
        }
    }

    // "CALL | STEPS | CODE | RESULT OUTPUTS | LOG LINE | ..."
    std::string Rows() const
    {
        std::string text;
        for (const auto& [code, outcome, steps] : rows_) {
            text += call_.name + " | " + Listed(steps, performed_) + " | " + code + " | " +
                    outcome + "\n";
        }
        return text;
    }
    unsigned Injected() const { return injected_; }

private:
    struct OutcomeRow {
        std::string code;
        std::string outcome;
        Steps steps;
    };

    Lines Inject(const std::string& operation, unsigned number, uint32_t code, CleanUp cleanUps)
    {
        const Fault fault = {operation, number, code, cleanUps};
        const Lines outcome = Perform(call_, &fault);
        EXPECT_EQ(Perform(call_), good_)
            << call_.name << " after " << operation << "#" << number << " failed with " << code;
        injected_++;
        return outcome;
    }

    // Only the log line of this allocation is missing.
    void FailLogging(const std::string& operation, unsigned number)
    {
        Lines expected = good_;
        if (number < good_.size()) {  // otherwise the listener thread logs its start
            expected.erase(expected.begin() + number);
            EXPECT_EQ(Inject(operation, number, ANY_CODE, CleanUp::Works), expected)
                << call_.name << ", " << operation << "#" << number;
        }
    }

    // Adds a row for any code, one for each special code with another outcome, and one for failing
    // clean-ups after the step if they change the log. A failing clean-up that changes nothing has
    // no row.
    void FailStep(const std::string& operation, unsigned number)
    {
        const Lines any = Inject(operation, number, ANY_CODE, CleanUp::Works);
        const std::string outcome = WithoutCode(Rendered(any));
        if (!IsCleanUp(operation) || any != good_) {
            Add("any", outcome, operation, number);
        }
        const Lines both = Inject(operation, number, ANY_CODE, CleanUp::FailsToo);
        EXPECT_EQ(both[0], any[0]) << call_.name << ", " << operation << "#" << number;
        if (both != any) {
            Add("any, then clean-ups", WithoutCode(Rendered(both)), operation, number);
        }
        if (!operation.starts_with("Orm")) {
            return;  // only the database has codes
        }
        for (const uint32_t code : SPECIAL_CODES) {
            const Lines special = Inject(operation, number, code, CleanUp::Works);
            if (Rendered(special) != WithCode(outcome, code)) {
                Add(std::to_string(code), Rendered(special), operation, number);
            }
        }
    }

    void Add(const std::string& code, const std::string& outcome, const std::string& operation,
             unsigned number)
    {
        auto row = std::ranges::find_if(rows_, [&](const OutcomeRow& one) {
            return one.code == code && one.outcome == outcome;
        });
        if (row == rows_.end()) {
            row = rows_.insert(row, {code, outcome, {}});
        }
        row->steps[operation].push_back(number);
    }

    const Call& call_;
    const Lines good_;
    std::map<std::string, unsigned> performed_;  // operations, so far
    std::vector<OutcomeRow> rows_;
    unsigned injected_ = 0;
};

// The rows of the file, by call.
std::map<std::string, std::string> RecordedRows()
{
    std::map<std::string, std::string> recorded;
    std::ifstream file(FAILURES_FILE);
    for (std::string row; std::getline(file, row);) {
        recorded[row.substr(0, row.find(" | "))] += row + "\n";
    }
    return recorded;
}

class Faults : public DeviceTest {};

// TARND_UPDATE=1 writes the file instead of comparing with it.
TEST_F(Faults, EveryStepHasTheRecordedOutcome)
{
    unsigned injected = 0;
    std::string all;
    auto recorded = RecordedRows();
    const bool update = std::getenv("TARND_UPDATE") != nullptr;
    const Calls calls = AllCalls();
    for (const Call& call : calls) {
        const FailureTable table(call);
        const std::string rows = table.Rows();
        const auto expected = recorded.extract(call.name);
        EXPECT_TRUE(update || rows == (expected ? expected.mapped() : ""))
            << "recorded:\n"
            << (expected ? expected.mapped() : "") << "now:\n"
            << rows;
        all += rows;
        injected += table.Injected();
    }
    if (update) {
        std::ofstream(FAILURES_FILE) << all;
    } else {
        EXPECT_TRUE(recorded.empty()) << recorded.begin()->first << " has no steps";
    }
    std::cout << injected << " faults in " << calls.size() << " calls\n";
    EXPECT_GT(injected, 4000U);
}

// Passes null for each pointer argument, one at a time.
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
        const auto call = std::ranges::find(calls, name, &Call::name);
        ASSERT_NE(call, calls.end()) << name;
        for (unsigned nth = 1;; nth++) {
            nullPointer = nth;
            const std::string outcome = Rendered(Perform(*call));
            if (std::exchange(nullPointer, 0) != 0) {
                break;  // there are no more
            }
            EXPECT_TRUE(std::regex_match(outcome, std::regex(R"(1( -)* \| Null value provided\\n)")))
                << name << ": " << outcome;
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

// These have no example call: the list and the memory map, which have tests of their own; the
// listener thread and the functions that it calls for one row; the print hooks, which do nothing.
TEST(ExampleCalls, CoverEveryExportedFunction)
{
    std::set<std::string> called;
    for (const Call& call : AllCalls()) {
        called.insert(call.Function());
    }
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
            EXPECT_TRUE(called.contains(name[1])) << line;
        }
    }
    EXPECT_GT(count, 100U);
}

}  // namespace
