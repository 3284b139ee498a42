#include "sources/host/host_kernel.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <memory>
#include <optional>
#include <utility>

#include <netlink/attr.h>
#include <netlink/errno.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>

#include "sources/host/host_message.h"

namespace sources {
namespace {

struct MessageDeleter {
    void operator()(nl_msg* message) const { nlmsg_free(message); }
};
using MessagePointer = std::unique_ptr<nl_msg, MessageDeleter>;

template <typename Header>
MessagePointer NewRequest(int type, int flags, Header header)
{
    MessagePointer message(nlmsg_alloc_simple(type, flags));
    if (!message || nlmsg_append(message.get(), &header, sizeof header, NLMSG_ALIGNTO) < 0) {
        throw std::bad_alloc();
    }
    return message;
}

// Sends the request and passes each message of the answer to take. If the kernel reports that a
// change came between, calls restart and repeats the request.
template <typename Restart>
void Query(nl_sock* socket, nl_msg* request, const char* what, Restart restart,
           const OnMessage& take)
{
    int result = 0;
    do {
        restart();
        nlmsg_hdr(request)->nlmsg_seq = NL_AUTO_SEQ;
        CheckNetlink(nl_send_auto(socket, request), what);
        result = ReceiveNetlink(socket, take);
    } while (result == -NLE_DUMP_INTR);
    // The interface was deleted, or the table was never made.
    if (result != -NLE_NODEV && result != -NLE_OBJ_NOTFOUND) {
        CheckNetlink(result, what);
    }
}

// Calls parse for each message of the answer and returns the items that it makes of them.
template <typename Item, typename Parse>
std::vector<Item> Dump(nl_sock* socket, nl_msg* request, const char* what, Parse parse)
{
    std::vector<Item> items;
    Query(
        socket, request, what, [&] { items.clear(); },
        [&](nlmsghdr* message) {
            if (std::optional<Item> item = parse(message)) {
                items.push_back(*std::move(item));
            }
        });
    return items;
}

}  // namespace

Kernel::Kernel(bool filters) : socket_(OpenNetlink())
{
    const int on = filters ? 1 : 0;  // fails on kernels without it, which send everything
    setsockopt(nl_socket_get_fd(socket_.get()), SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on,
               sizeof on);
}

std::vector<Link> Kernel::Links()
{
    const auto request = NewRequest(RTM_GETLINK, NLM_F_DUMP, ifinfomsg{});
    return Dump<Link>(socket_.get(), request.get(), "cannot read the links", LinkFrom);
}

std::vector<Address> Kernel::Addresses(uint32_t interface)
{
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    header.ifa_index = interface;
    const auto request = NewRequest(RTM_GETADDR, NLM_F_DUMP, header);
    const auto parse = [interface](nlmsghdr* message) {
        std::optional<Address> address = AddressFrom(message);
        if (interface != ALL_INTERFACES && address->interface != interface) {
            address.reset();
        }
        return address;
    };
    return Dump<Address>(socket_.get(), request.get(), "cannot read the addresses", parse);
}

std::vector<Route> Kernel::Routes(uint32_t interface)
{
    rtmsg header{};
    header.rtm_family = AF_INET;
    header.rtm_table = RT_TABLE_MAIN;
    const auto request = NewRequest(RTM_GETROUTE, NLM_F_DUMP, header);
    if (interface != ALL_INTERFACES) {
        nla_put_u32(request.get(), RTA_OIF, interface);
    }
    const auto parse = [interface](nlmsghdr* message) {
        std::optional<Route> route = RouteFrom(message);
        if (route && interface != ALL_INTERFACES && !route->Uses(interface)) {
            route.reset();
        }
        return route;
    };
    return Dump<Route>(socket_.get(), request.get(), "cannot read the routes", parse);
}

void Kernel::WaitForPendingChanges()
{
    // A query about one link waits for the lock under which all such changes are made; dumps of
    // addresses and routes don't.
    constexpr int LOOPBACK = 1;
    ifinfomsg header{};
    header.ifi_index = LOOPBACK;
    const auto request = NewRequest(RTM_GETLINK, 0, header);
    Query(
        socket_.get(), request.get(), "cannot read the links", [] {}, [](nlmsghdr*) {});
}

}  // namespace sources
