// Every exported function, called with example arguments on a small device (data/device.json).
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm.h>

#include "support/recorded_events.h"

namespace calls {

struct Call {
    std::string name;                   // the function; a suffix distinguishes several calls of one
    std::string arguments;              // as written in the source, for messages
    std::function<std::string()> run;   // returns the result and the outputs
    std::string expected;               // "RESULT OUTPUTS | LOG LINE | ..." if no step fails
    std::function<void()> before = {};  // prepares the call; not observed
    std::function<void()> after = {};

    std::string Function() const { return name.substr(0, name.find(',')); }
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

// A test on the small device.
class DeviceTest : public support::EventTest {
protected:
    void SetUp() override;
};

// Step of a call that fails: the nth call of this operation.
struct Fault {
    std::string operation;
    unsigned nth;
    uint32_t code;
    support::CleanUp cleanUps;
};

// Result and outputs, then the log lines: "text" of the called function itself, "Function: text" of
// another, "-: text" without a function. A newline is shown as "\n".
std::vector<std::string> Perform(const Call& call, const Fault* fault = nullptr);
std::string Rendered(const std::vector<std::string>& outcome);

// Performs each call and compares its outcome with the expected one.
void Expect(const Calls& calls);

// Adds rows in JSON: {"vlan": [{"vlan_scope0": 0, ...}]}.
void Load(const std::string& device);

// The session, scan and list node that a call uses or returns. Positioned moves to the first row of
// a table; Closed closes what is open.
extern ORM_SESSION session;
extern ORM_SCAN scan;
extern ORM_NODE node;
void Opened();
void Positioned(const char* table);
void Closed();

// Value of every byte of an output that the call leaves unchanged.
inline constexpr uint8_t UNTOUCHED = 77;

// Numbers from 2^24 on are shown as four octets, 0xFFFFFFFF as NONE, an unchanged output as "-".
std::string Text(uint32_t number);
std::string Text(const char* text);
std::string Texts(std::initializer_list<uint32_t> numbers);

// Output arguments: numbers, or records of which these members are shown.
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

// Run passes null for this pointer argument, counted from 1; 0: for none.
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

// The result, or "done" of a function without one, and the outputs.
template <typename Function, typename... Arguments>
std::string Run(Function function, Arguments... arguments)
{
    std::string result = "done";
    if constexpr (std::is_void_v<decltype(function(Passed(arguments)...))>) {
        function(Passed(arguments)...);
    } else {
        result = Text(function(Passed(arguments)...));
    }
    return (result + ... + Written(arguments));
}

}  // namespace calls

// The name, arguments and run of a Call.
#define CALL(function, ...) #function, "(" #__VA_ARGS__ ")", RUN(function, __VA_ARGS__)
#define CALL_AS(suffix, function, ...) \
    #function suffix, "(" #__VA_ARGS__ ")", RUN(function, __VA_ARGS__)
#define RUN(function, ...) [] { return ::calls::Run(function __VA_OPT__(, ) __VA_ARGS__); }
