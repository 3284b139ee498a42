// The listener: start, stop, failing steps, and released resources.
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>

#include <tarnd_qrb/listener.h>

#include "support/recorded_events.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using support::FailCall;

using Messages = std::vector<std::string>;

std::atomic<int> delivered = 0;
std::atomic<pthread_t> deliverer = 0;

void Count(ORM_MESSAGE, uint32_t)
{
    deliverer = pthread_self();
    delivered++;
}

uint32_t Register()
{
    return QrbDbListenerRegisterEvent("name", "connection",
                                      R"({"label_name":"if_base","events":[{"type":"insert"}]})",
                                      Count, nullptr, "owner");
}

bool IsDelivered(uint64_t interface, int times)
{
    delivered = 0;
    support::writes::Write(support::writes::Insert, {support::Base(interface)});
    return support::Eventually([=] { return delivered == times; });
}

auto OpenDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

using Listener = support::EventTest;

TEST_F(Listener, StartsOnceAndContinuesAfterAFailure)
{
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(Register(), 0U);
    }
    EXPECT_TRUE(IsDelivered(1, 4));
    const pthread_t thread = g_epollDbListenerThreadId;
    EXPECT_NE(pthread_equal(deliverer, thread), 0);

    // An interrupted wait, and more descriptors than one wait returns, none of them the database's.
    FailCall("epoll_wait", 1, EINTR);
    std::array<int, 25> others;
    for (int& other : others) {
        other = eventfd(1, EFD_CLOEXEC);
        EXPECT_EQ(DbListenerEpollCtrl(static_cast<uint32_t>(other), 0), 0);
    }
    EXPECT_TRUE(IsDelivered(2, 4));
    std::ranges::for_each(others, close);

    // A failing subscription closes the session; the thread continues.
    FailCall("OrmSubscribe", 1, 77);
    EXPECT_EQ(Register(), 77U);
    EXPECT_EQ(Register(), 0U);
    EXPECT_TRUE(IsDelivered(3, 1));
    EXPECT_EQ(g_epollDbListenerThreadId, thread);

    // A failing close is ignored.
    FailCall("close", 1, EIO);
    const std::string epollFd = std::to_string(g_epollDbListenerFd);
    support::StopListener();
    EXPECT_EQ(g_epollDbListenerFd, -1);
    EXPECT_EQ(
        support::TakeMessages(),
        (Messages{"DbListenerEpollThreadFunc: [DEBUG]: epoll DbListener thread start, epollFd=" +
                      epollFd + ", exit=0\n",
                  "QrbDbListenerRegisterEvent: [DEBUG]: OrmSubscribe fail, ret=77\n",
                  "DbListenerEpollThreadFunc: [DEBUG]: epoll thread exit. epoll_fd=" + epollFd +
                      ",exit=1\n"}));
}

// If the thread can't be created, registering succeeds and the session has no control function.
TEST_F(Listener, ContinuesWithoutAThread)
{
    FailCall("pthread_create", 1, EAGAIN);
    EXPECT_EQ(Register(), 0U);
    EXPECT_EQ(g_epollDbListenerThreadId, pthread_t{0});
    EXPECT_EQ(g_regDbListenerInfo, nullptr);
    EXPECT_TRUE(IsDelivered(1, 1));
    support::StopListener();

    FailCall("epoll_create", 1, EMFILE);
    EXPECT_NE(Register(), 0U);
    support::StopListener();
    EXPECT_EQ(g_epollDbListenerFd, -1);
    EXPECT_EQ(std::ranges::count(support::TakeMessages(),
                                 "DbListenerEpollThreadFunc: [DEBUG]: failed to init "
                                 "epoll, thread will exit.\n"),
              1);
}

TEST_F(Listener, UsesAnExistingEpollInstanceAndNoReusedDescriptor)
{
    const int epollFd = epoll_create1(EPOLL_CLOEXEC);
    g_epollDbListenerFd = epollFd;
    EXPECT_EQ(Register(), 0U);
    EXPECT_TRUE(IsDelivered(1, 1));
    EXPECT_EQ(g_epollDbListenerFd, epollFd);

    // The flag stops it at its next wake-up; late messages must not use a reused descriptor.
    const pthread_t thread = g_epollDbListenerThreadId;
    std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
    EXPECT_TRUE(IsDelivered(2, 1));
    pthread_join(thread, nullptr);
    EXPECT_EQ(fcntl(epollFd, F_GETFD), -1);
    EXPECT_EQ(g_epollDbListenerFd, -1);

    const int others = epoll_create1(EPOLL_CLOEXEC);
    ASSERT_EQ(others, epollFd);
    support::TakeComplaints();
    EXPECT_EQ(DbListenerEpollCtrl(static_cast<uint32_t>(eventfd(1, EFD_CLOEXEC)), 0), -1);
    EXPECT_EQ(support::TakeComplaints().size(), 1U);
    epoll_event ready;
    EXPECT_EQ(epoll_wait(others, &ready, 1, 0), 0);
    close(others);
    EXPECT_EQ(Register(), 0U);  // subscribes, and starts no other thread
    EXPECT_NE(pthread_equal(std::exchange(g_epollDbListenerThreadId, 0), thread), 0);
    support::StopListener();

    g_epollDbListenerFd = 0;  // not an epoll instance
    EXPECT_EQ(Register(), 0U);
    EXPECT_GT(g_epollDbListenerFd, 0);
}

TEST_F(Listener, ManyStartsAndStopsReleaseEverything)
{
    const auto before = OpenDescriptors();
    for (int round = 0; round < 300; round++) {
        ASSERT_EQ(Register(), 0U);
        support::StopListener();
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
