// The listener: its start and its stop, what it does when a step fails, and what it leaves behind.
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <tarnd_qrb/listener.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>

#include <standin/database.h>

#include "support/events.h"
#include "support/network.h"
#include "support/platform.h"

namespace {

using support::Eventually;
using support::FailCall;
using support::PlatformCalls;
using support::TakeMessages;

using Messages = std::vector<std::string>;

const char* const insertions = R"({"label_name":"if_link","events":[{"type":"insert"}]})";

std::atomic<int>       delivered = 0;
std::atomic<pthread_t> deliverer = 0;

void Count(ORM_MESSAGE, uint32_t)
{
    deliverer = pthread_self();
    delivered++;
}

void Insert(uint32_t interface)
{
    standin::Transaction transaction;
    transaction.Insert(standin::Row("if_link").Set("if_index", interface));
    transaction.Commit();
}

uint32_t Register()
{
    return QrbDbListenerRegisterEvent("name", "connection", insertions, Count, nullptr, "owner");
}

ptrdiff_t CountOf(const char* operation)
{
    const auto calls = PlatformCalls();
    return std::ranges::count(calls, operation);
}

size_t EntriesOf(const char* directory)
{
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

class Listener : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        delivered = 0;
    }
    void TearDown() override
    {
        support::StopListener();
        PlatformTest::TearDown();
    }
};

TEST_F(Listener, StartsOnceAndOpensOneSession)
{
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(Register(), 0U);
    }
    EXPECT_EQ(CountOf("OrmOpenSubSession"), 1);
    EXPECT_EQ(CountOf("OrmSubscribe"), 4);
    EXPECT_EQ(g_isDbListenerSubOpened, 1);
    EXPECT_EQ(g_regDbListenerInfo, &DbListenerEpollCtrl);
    Insert(1);
    EXPECT_TRUE(Eventually([] { return delivered == 4; }));
    EXPECT_NE(pthread_equal(deliverer, g_epollDbListenerThreadId), 0);

    // A subscription that fails takes the session along, but not the thread.
    const pthread_t thread = g_epollDbListenerThreadId;
    FailCall("OrmSubscribe", 1, 77);
    EXPECT_EQ(Register(), 77U);
    EXPECT_EQ(Register(), 0U);
    EXPECT_EQ(g_epollDbListenerThreadId, thread);

    const std::string epollFd = std::to_string(g_epollDbListenerFd);
    support::StopListener();
    auto messages = TakeMessages();
    std::erase(messages, "QrbDbListenerRegisterEvent: [DEBUG]: OrmSubscribe fail, ret=77\n");
    EXPECT_EQ(
        messages,
        (Messages{"DbListenerEpollThreadFunc: [DEBUG]: epoll DbListener thread start, epollFd=" +
                      epollFd + ", exit=0\n",
                  "DbListenerEpollThreadFunc: [DEBUG]: epoll thread exit. epoll_fd=" + epollFd +
                      ",exit=1\n"}));
}

// An interrupted wait is no wait, and nobody minds what can't be closed.
TEST_F(Listener, GoesOnWaitingAfterAFailure)
{
    ASSERT_EQ(Register(), 0U);
    FailCall("epoll_wait", 1, EINTR);
    Insert(1);
    Insert(2);
    EXPECT_TRUE(Eventually([] { return delivered == 2; }));
    FailCall("close", 1, EIO);
    support::StopListener();
    EXPECT_EQ(g_epollDbListenerFd, -1);
}

// Neither the session's control function nor a second thread comes of one that can't be had.
TEST_F(Listener, GoesOnWithoutAThread)
{
    FailCall("pthread_create", 1, EAGAIN);
    EXPECT_EQ(Register(), 0U);
    EXPECT_EQ(g_epollDbListenerThreadId, pthread_t{0});
    EXPECT_EQ(g_regDbListenerInfo, nullptr);
    Insert(1);
    EXPECT_TRUE(Eventually([] { return delivered == 1; }));
    support::StopListener();

    FailCall("epoll_create", 1, EMFILE);
    EXPECT_NE(Register(), 0U);
    pthread_join(std::exchange(g_epollDbListenerThreadId, pthread_t{0}), nullptr);
    EXPECT_EQ(g_epollDbListenerFd, -1);
    const auto complaints = support::TakeComplaints();
    EXPECT_EQ(std::ranges::count(complaints,
                                 "DbListenerEpollThreadFunc: [DEBUG]: failed to init "
                                 "epoll, thread will exit.\n"),
              1);
}

TEST_F(Listener, ControlAddsAndRemoves)
{
    ASSERT_EQ(Register(), 0U);
    const int  event      = eventfd(0, EFD_CLOEXEC);
    const auto descriptor = static_cast<uint32_t>(event);
    for (const auto& [operation, result] : {std::pair{0U, 0}, {1U, 0}, {7U, -1}}) {
        EXPECT_EQ(DbListenerEpollCtrl(descriptor, operation), result) << operation;
    }
    EXPECT_EQ(support::TakeComplaints(),
              Messages{"DbListenerEpollCtrl: [DEBUG]: epoll_ctrl:g_epollDbListenerFd=" +
                       std::to_string(g_epollDbListenerFd) + ", fd=" + std::to_string(event) +
                       " type=7, Error:[2:No such file or directory]\n"});
    close(event);
}

TEST_F(Listener, MoreDescriptorsThanOneWaitTakesAreAllServed)
{
    ASSERT_EQ(Register(), 0U);
    std::vector<ORM_SESSION> sessions(25);
    for (ORM_SESSION& session : sessions) {
        ORM_SESSION_PARAM param = 0;
        ASSERT_EQ(OrmCreateSessionParam("channel:", "osc", &param), 0U);
        ASSERT_EQ(OrmOpenSubSession(param, DbListenerEpollCtrl, &session), 0U);
        OrmDestroySessionParam(param);
        ASSERT_EQ(OrmSubscribe(session, "more", insertions, Count, nullptr, "owner"), 0U);
    }
    Insert(1);
    EXPECT_TRUE(Eventually([] { return delivered == 26; }));
    std::ranges::for_each(sessions, OrmCloseSession);
}

TEST_F(Listener, AnEpollInstanceThatIsThereIsUsed)
{
    const int made      = epoll_create1(EPOLL_CLOEXEC);
    g_epollDbListenerFd = made;
    FailCall("epoll_create", 1, EMFILE);
    EXPECT_EQ(Register(), 0U);
    Insert(1);
    EXPECT_TRUE(Eventually([] { return delivered == 1; }));
    EXPECT_EQ(g_epollDbListenerFd, made);
    support::ResetPlatform();

    support::StopListener();
    g_epollDbListenerFd = 0;  // which is none
    EXPECT_EQ(Register(), 0U);
    EXPECT_GT(g_epollDbListenerFd, 0);
}

// The flag alone stops it; what comes late touches nobody's descriptor.
TEST_F(Listener, EndsByItselfAndLeavesItsDescriptorAlone)
{
    ASSERT_EQ(Register(), 0U);
    const int epollFd = g_epollDbListenerFd;
    __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
    const pthread_t thread = g_epollDbListenerThreadId;
    pthread_join(thread, nullptr);
    EXPECT_EQ(fcntl(epollFd, F_GETFD), -1);
    EXPECT_EQ(g_epollDbListenerFd, -1);
    EXPECT_NE(pthread_equal(g_epollDbListenerThreadId, thread), 0);

    const int others = epoll_create1(EPOLL_CLOEXEC);
    ASSERT_EQ(others, epollFd);
    const int event = eventfd(1, EFD_CLOEXEC);
    support::TakeComplaints();
    EXPECT_EQ(DbListenerEpollCtrl(static_cast<uint32_t>(event), 0), -1);
    EXPECT_EQ(support::TakeComplaints().size(), 1U);
    epoll_event ready;
    EXPECT_EQ(epoll_wait(others, &ready, 1, 0), 0);
    close(event);
    close(others);
    EXPECT_EQ(Register(), 0U);  // subscribes, and starts no other thread
    g_epollDbListenerThreadId = 0;
}

TEST_F(Listener, ManyStartsAndStopsLeaveNothingBehind)
{
    ASSERT_EQ(Register(), 0U);
    support::StopListener();
    const size_t threads     = EntriesOf("/proc/self/task");
    const size_t descriptors = EntriesOf("/proc/self/fd");
    for (int round = 0; round < 300; round++) {
        ASSERT_EQ(Register(), 0U);
        if (round % 100 == 0) {
            const int before = delivered;
            Insert(static_cast<uint32_t>(round));
            ASSERT_TRUE(Eventually([=] { return delivered > before; }));
        }
        support::StopListener();
    }
    EXPECT_EQ(EntriesOf("/proc/self/task"), threads);
    EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
}

}  // namespace
