// Change notification at work: under load, and on the kernel's own changes.
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include <standin/database.h>

#include "sources/host.h"
#include "support/events.h"
#include "support/listener.h"
#include "support/network.h"
#include "support/platform.h"

namespace {

using standin::Row;
using standin::Transaction;
using support::Events;
using support::Eventually;
using support::Ip;

class Notification : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        support::WatchPlatform(false);
    }
    void TearDown() override
    {
        support::StopListener();
        support::ForgetEvents();
        PlatformTest::TearDown();
    }
};

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr uint32_t changes = 50000;
#else
constexpr uint32_t changes = 1000000;
#endif
constexpr uint32_t interfaces = 100;

// The next notification that there must be: each round turns every interface up, or down, in order.
std::atomic<uint32_t> told  = 0;
std::atomic<uint32_t> wrong = 0;

uint32_t CountInOrder(uint32_t ifIndex, uint32_t command, uint32_t, uint32_t)
{
    const uint32_t round    = told / interfaces;
    const uint32_t expected = round % 2 == 0 ? IF_NOTIFY_DOWN : IF_NOTIFY_UP;
    if (ifIndex != told % interfaces || command != expected ||
        pthread_equal(pthread_self(), g_epollDbListenerThreadId) == 0) {
        wrong++;
    }
    told++;
    return 0;
}

// Small transactions and large ones, by turns.
void WriteChanges()
{
    std::vector<Row> rows;  // of two rounds
    for (uint32_t row = 0; row < 2 * interfaces; row++) {
        rows.push_back(
            Row("if_phy").Set("if_index", row % interfaces).Set("phy_state", row / interfaces));
    }
    for (uint32_t written = 0; written < changes;) {
        Transaction transaction;
        for (uint32_t size = written % 7 == 0 ? 90 : 4; size > 0 && written < changes; size--) {
            transaction.Replace(rows[written++ % rows.size()]);
        }
        transaction.Commit();
    }
}

TEST_F(Notification, AMillionChangesAreToldOnceAndInOrderWhileOthersRead)
{
    told = wrong = 0;
    IF_RegNotifyFunc(1, CountInOrder);
    ASSERT_EQ(BDS_InitStart(), 0U);
    std::atomic<bool>     writing = true;
    std::atomic<uint32_t> strange = 0;
    const auto            read    = [&] {
        while (writing) {
            for (uint32_t interface = 0; interface < std::min(interfaces, told.load());
                 interface++) {
                uint8_t state = 7;
                strange += BDS_IfnetGetIfPhyState(interface, &state) != 0 || state > 1 ? 1 : 0;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    };
    std::thread readers[] = {std::thread(read), std::thread(read)};
    WriteChanges();
    EXPECT_TRUE(Eventually([] { return told >= changes; }));
    writing = false;
    std::ranges::for_each(readers, [](std::thread& reader) { reader.join(); });
    support::StopListener();
    EXPECT_EQ(told, changes);
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(strange, 0U);
}

Events operator+(Events events, const Events& more)
{
    events.insert(events.end(), more.begin(), more.end());
    return events;
}

Events Created(const std::string& interface)
{
    return {"notify 0 if " + interface, "notify 4 if " + interface,
            "36 if " + interface + " pvid 0"};
}

Events Up(const std::string& interface)
{
    return {"9/2 flag 0 if " + interface, "9/8 flag 0 if " + interface, "notify 3 if " + interface,
            "9/3 flag 0 if " + interface + " with 1, 0"};
}

Events Down(const std::string& interface)
{
    return {"9/2 flag 1 if " + interface, "notify 4 if " + interface,
            "9/3 flag 1 if " + interface + " with 1, 0"};
}

Events Deleted(const std::string& interface)
{
    return {"notify 1 if " + interface, "37 if " + interface + " pvid 0"};
}

// Interfaces may change in either order, and each keeps its own.
Events ByInterface(Events events)
{
    std::ranges::stable_sort(events, {}, [](const std::string& event) {
        return std::stoul(event.substr(event.find(" if ") + 4));
    });
    return events;
}

void FollowTheKernel()
{
    struct Step {
        const char* change;
        Events      expected;
    };
    const Step steps[] = {
        {"link add veth0 index 10 type veth peer name veth1 index 11",
         Created("10") + Created("11")},
        {"link set veth0 up", {}},
        {"link set veth1 up", Up("10") + Up("11")},
        {"link add br0 index 12 type bridge", Created("12")},
        {"link set veth0 master br0", {"13 if 10 use 1"}},
        {"link set veth0 mtu 1400", {}},
        {"link set veth0 nomaster", {"14 if 10 use 0"}},
        {"link set veth1 down", Down("10") + Down("11")},
        {"link set veth1 name other; addr add 10.0.0.1/24 dev other", {}},
        {"link set other up", Up("10") + Up("11")},
        {"link del veth0", Down("10") + Deleted("10") + Down("11") + Deleted("11")},
        {"link del br0", Deleted("12")}};
    sources::Host host;
    support::AwaitEvents();
    host.Follow();
    for (const Step& step : steps) {
        Events seen;
        Ip(step.change);
        Eventually([&] {
            seen = seen + support::TakeEvents();
            return seen.size() >= step.expected.size();
        });
        EXPECT_EQ(ByInterface(seen + support::AwaitEvents()), ByInterface(step.expected))
            << step.change;
    }
}

TEST_F(Notification, ChangesOfTheKernelAreToldAsTheyHappen)
{
    support::RecordEvents();
    ASSERT_EQ(BDS_InitStart(), 0U);
    IN_OWN_NETWORK(FollowTheKernel);
}

}  // namespace
