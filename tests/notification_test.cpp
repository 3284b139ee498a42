// From the kernel's own changes to the modules.
#include <tarnd_qrb/subscription.h>

#include <algorithm>

#include "sources/host.h"
#include "support/events.h"
#include "support/network.h"
#include "support/platform.h"

namespace {

using support::Events;

class Notification : public support::PlatformTest {
protected:
    void TearDown() override
    {
        support::StopListener();
        support::ForgetEvents();
        PlatformTest::TearDown();
    }
};

void FollowTheKernel()
{
    const std::pair<const char*, Events> steps[] = {
        {"link add veth0 index 10 type veth peer name veth1 index 11",
         {"36 if 10 pvid 0", "36 if 11 pvid 0", "notify 0 if 10", "notify 0 if 11",
          "notify 4 if 10", "notify 4 if 11"}},
        {"link set veth0 up", {}},
        {"link set veth1 up",
         {"9/2 flag 0 if 10", "9/2 flag 0 if 11", "9/3 flag 0 if 10 with 1, 0",
          "9/3 flag 0 if 11 with 1, 0", "9/8 flag 0 if 10", "9/8 flag 0 if 11", "notify 3 if 10",
          "notify 3 if 11"}},
        {"link add br0 index 12 type bridge",
         {"36 if 12 pvid 0", "notify 0 if 12", "notify 4 if 12"}},
        {"link set veth0 master br0", {"13 if 10 use 1"}},
        {"link set veth0 mtu 1400", {}},
        {"link del br0", {"14 if 10 use 0", "37 if 12 pvid 0", "notify 1 if 12"}}};
    sources::Host host;
    support::AwaitEvents();
    host.Follow();
    for (const auto& [change, expected] : steps) {
        Events seen;
        support::Ip(change);
        support::Eventually([&, wanted = expected.size()] {
            std::ranges::move(support::TakeEvents(), std::back_inserter(seen));
            return seen.size() >= wanted;
        });
        std::ranges::move(support::AwaitEvents(), std::back_inserter(seen));
        std::ranges::sort(seen);  // interfaces may change in any order
        EXPECT_EQ(seen, expected) << change;
    }
}

TEST_F(Notification, ChangesOfTheKernelAreToldAsTheyHappen)
{
    support::RecordEvents();
    ASSERT_EQ(BDS_InitStart(), 0U);
    IN_OWN_NETWORK(FollowTheKernel);
}

}  // namespace
