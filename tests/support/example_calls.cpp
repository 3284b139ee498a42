#include "support/example_calls.h"

#include <algorithm>
#include <regex>
#include <utility>

#include "sources/json/json_row.h"
#include "support/test_system.h"

namespace calls {

ORM_SESSION session = 0;
ORM_SCAN scan = 0;
ORM_NODE node = 0;

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
    const auto tables = sources::Json::parse(device);
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

void DeviceTest::SetUp()
{
    EventTest::SetUp();
    Load(support::TextOf(TARND_PROJECT_ROOT "/tests/data/device.json"));
}

namespace {

// A log line as recorded for a call of this function: "Function: text" or "text".
std::string SeenFrom(const std::string& function, const std::string& line)
{
    static const std::regex named(R"(^\w*(_|DbListener)\w*: )");
    static const std::regex descriptor("(F|f)d=-?[0-9]+");

    const std::string text = std::regex_replace(line, descriptor, "$1d=N");
    if (text.starts_with(function + ": ")) {
        return text.substr(function.size() + 2);
    }
    return std::regex_search(text, named) ? text : "-: " + text;
}

}  // namespace

std::vector<std::string> Perform(const Call& call, const Fault* fault)
{
    const int before = support::OpenHandles() + support::LibraryBlocks();
    support::WatchPlatform(false);
    if (call.before) {
        call.before();
    }
    support::TakeLog();
    support::ResetPlatform();
    if (fault != nullptr) {
        support::FailCall(fault->operation, fault->nth, fault->code, fault->cleanUps);
    }
    support::WatchPlatform(true);
    std::vector<std::string> outcome = {call.run()};
    for (const std::string& line : support::TakeComplaints()) {
        outcome.push_back(SeenFrom(call.Function(), line));
    }
    support::WatchPlatform(false);
    if (call.after) {
        call.after();
    }
    EXPECT_EQ(support::OpenHandles() + support::LibraryBlocks(), before)
        << call.name << " leaves something open or allocated";
    return outcome;
}

std::string Rendered(const std::vector<std::string>& outcome)
{
    std::string text;
    for (const std::string& part : outcome) {
        text += (text.empty() ? "" : " | ") + part;
    }
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
        text.replace(at, 1, "\\n");
    }
    return text;
}

void Expect(const Calls& calls)
{
    for (const Call& call : calls) {
        EXPECT_EQ(Rendered(Perform(call)), call.expected) << call.name << call.arguments;
    }
}

Calls Joined(std::initializer_list<Calls (*)()> families)
{
    Calls all;
    for (const auto family : families) {
        std::ranges::move(family(), std::back_inserter(all));
    }
    return all;
}

Calls QueryCalls()
{
    return Joined(
        {DatabaseCalls, InterfaceCalls, AddressCalls, Layer2Calls, RouteCalls, AclCalls, QosCalls});
}

Calls AllCalls()
{
    return Joined({QueryCalls, EventCalls});
}

}  // namespace calls
