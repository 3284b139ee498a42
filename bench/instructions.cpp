// Calls every query once, each as a section of its own for callgrind. bench/instructions.py reads
// the sections.
#include <valgrind/callgrind.h>

#include "support/example_calls.h"

namespace {

struct Device : calls::DeviceTest {
    Device() { SetUp(); }
    void TestBody() override {}
};

template <typename Step>
void Maybe(const Step& step)
{
    if (step) {
        step();
    }
}

}  // namespace

int main()
{
    const Device device;
    support::WatchPlatform(false);
    for (const calls::Call& call : calls::AllCalls()) {
        // The first call is not counted: it resolves symbols and builds tables.
        for (const bool counted : {false, true}) {
            Maybe(call.before);
            CALLGRIND_ZERO_STATS;
            call.run();
            if (counted) {
                const std::string name = call.Function();  // not within the macro
                CALLGRIND_DUMP_STATS_AT(name.c_str());
            }
            Maybe(call.after);
        }
    }
}
