// Every exported call with example arguments on a small device. What it answers and logs there, and
// what it comes to when one of its steps fails, stands in docs/failures, under the call as it
// stands here; docs/failures.md tells how to read it.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm.h>

#include "support/recorded_events.h"

namespace calls {

using Lines = std::vector<std::string>;

struct Call {
    std::string title;                  // in docs/failures: the name, and what tells it from others
    std::function<std::string()> run;   // the answer
    std::function<void()> before = {};  // what run needs; not watched
    std::function<void()> after = {};

    std::string Name() const { return title.substr(0, title.find_first_of("(,")); }
};
using Calls = std::vector<Call>;

Calls DatabaseCalls();
Calls InterfaceCalls();
Calls AddressCalls();
Calls Layer2Calls();
Calls RouteCalls();
Calls AclCalls();
Calls QosCalls();
Calls EventCalls();
Calls QueryCalls();  // all but those of events and start-up
Calls AllCalls();
Calls Joined(std::initializer_list<Calls (*)()> families);

// The device that the answers are those of.
class DeviceTest : public support::EventTest {
protected:
    void SetUp() override;
};

// What a call comes to: its answer, what it logs, and whether it leaves something open.
using Outcome = Lines;

// The last of these operations fails.
struct Fault {
    Lines operations;
    uint32_t code;
    support::CleanUp cleanUps;
};

Outcome Perform(const Call& call, const Fault* fault = nullptr);

// Questions of the moment, and what comes of them.
struct Question {
    std::string title;
    std::function<std::string()> run;
    std::string outcome;  // as in docs/failures
};
void Expect(const std::vector<Question>& questions);

struct Step {
    std::string name;
    unsigned from;
    unsigned to;
    unsigned session;   // 0: any
    uint32_t code;      // 0: any
    bool cleanUpsFail;  // only then
    Outcome outcome;
    std::string row;  // that tells of it
};

struct Expectation {
    Outcome good;
    std::vector<Step> steps;
    std::set<std::string> unused;  // rows
};

Expectation Read(const Call& call);
Outcome ReadOutcome(const std::string& text, const std::string& name);
Outcome WithFault(Expectation& expectation, const Fault& fault);
std::set<std::string> Titles();  // of all that is told

// Whether all that is lost with it is a line of the log; no clean-up fails behind that.
bool IsLogging(const std::string& operation);

// Adds rows in JSON: {"vlan": [{"vlan_scope0": 0, ...}]}.
void Load(const std::string& device);

// The session that a call works in or hands out, and a place in it. Positioned moves to the first
// row of a table; Closed closes what is open.
extern ORM_SESSION session;
extern ORM_SCAN scan;
extern ORM_NODE node;
void Opened();
void Positioned(const char* table);
void Closed();

// Every byte of what is left alone.
inline constexpr uint8_t UNTOUCHED = 77;

// Of numbers from 2^24 on, the four octets.
std::string Text(uint32_t number);
std::string Text(const char* text);
std::string Texts(std::initializer_list<uint32_t> numbers);

// Arguments of a call that are outputs: numbers, or records of which these members are told.
template <typename Value, size_t count = 1, auto... members>
struct Out {
    Value values[count];
    Out() { std::memset(values, UNTOUCHED, sizeof(values)); }
    explicit Out(Value value) : values{value} {}
    Value* Argument() { return values; }
    std::string Output() const
    {
        std::string text;
        for (const Value& value : values) {
            if constexpr (sizeof...(members) == 0) {
                text += ' ' + Text(value);
            } else {
                ((text += ' ' + Text(value.*members)), ...);
            }
        }
        return text.substr(1);
    }
};
using Out32 = Out<uint32_t>;
using Out16 = Out<uint16_t>;
using Out8 = Out<uint8_t>;
struct OutText {
    char text[128] = "untouched";
    char* Argument() { return text; }
    std::string Output() const { return Text(text); }
};
template <uintptr_t* handle>
struct OutHandle {
    uintptr_t* Argument() { return handle; }
    std::string Output() const { return *handle != 0 ? "open" : "closed"; }
};
using OutSession = OutHandle<&session>;
using OutScan = OutHandle<&scan>;

// So many pointers on, from 1, Run passes null; 0: nowhere.
extern unsigned nullPointer;

template <typename Pointer>
Pointer OrNull(Pointer pointer)
{
    return nullPointer > 0 && --nullPointer == 0 ? nullptr : pointer;
}

template <typename Argument>
decltype(auto) Passed(Argument& argument)
{
    if constexpr (requires { argument.Argument(); }) {
        return OrNull(argument.Argument());
    } else if constexpr (std::is_pointer_v<Argument>) {
        return OrNull(argument);
    } else {
        return (argument);
    }
}
template <typename Argument>
std::string Written([[maybe_unused]] const Argument& argument)
{
    if constexpr (requires { argument.Output(); }) {
        return ' ' + argument.Output();
    } else {
        return {};
    }
}

// The result code, or "done" where there is none, and the outputs.
template <typename Function, typename... Arguments>
std::string Run(Function function, Arguments... arguments)
{
    std::string answer = "done";
    if constexpr (std::is_void_v<decltype(function(Passed(arguments)...))>) {
        function(Passed(arguments)...);
    } else {
        answer = Text(function(Passed(arguments)...));
    }
    return (answer + ... + Written(arguments));
}

}  // namespace calls

// The title and the run of a call.
#define CALL(function, ...) #function "(" #__VA_ARGS__ ")", RUN(function, __VA_ARGS__)
#define CALL_WHEN(when, function, ...) \
    #function "(" #__VA_ARGS__ ")" when, RUN(function, __VA_ARGS__)
#define RUN(function, ...) [] { return ::calls::Run(function __VA_OPT__(, ) __VA_ARGS__); }
