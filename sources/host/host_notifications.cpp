#include "sources/host/host_notifications.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <netlink/errno.h>
#include <netlink/netlink.h>

#include "sources/host/host_message.h"

namespace sources {
namespace {

constexpr const char* WHAT = "cannot follow the kernel";

void Join(nl_sock* socket)
{
    CheckNetlink(nl_socket_add_memberships(socket, RTNLGRP_LINK, RTNLGRP_IPV4_IFADDR,
                                           RTNLGRP_IPV4_ROUTE, RTNLGRP_NEXTHOP, RTNLGRP_NONE),
                 WHAT);
}

void Leave(nl_sock* socket)
{
    CheckNetlink(nl_socket_drop_memberships(socket, RTNLGRP_LINK, RTNLGRP_IPV4_IFADDR,
                                            RTNLGRP_IPV4_ROUTE, RTNLGRP_NEXTHOP, RTNLGRP_NONE),
                 WHAT);
}

}  // namespace

Notifications::Notifications(int receiveBuffer) : socket_(OpenNetlink())
{
    nl_sock* const socket = socket_.get();
    nl_socket_disable_seq_check(socket);
    CheckNetlink(nl_socket_set_nonblocking(socket), WHAT);
    CheckNetlink(nl_socket_set_buffer_size(socket, receiveBuffer, 0), WHAT);
    // Beyond the system's limit, where that is allowed.
    setsockopt(nl_socket_get_fd(socket), SOL_SOCKET, SO_RCVBUFFORCE, &receiveBuffer,
               sizeof receiveBuffer);
    Join(socket);
}

int Notifications::Descriptor() const
{
    return nl_socket_get_fd(socket_.get());
}

KernelChanges Notifications::Take()
{
    constexpr int LIMIT = 1000;  // changes are written while others still arrive
    KernelChanges taken;
    const auto onMessage = [&](nlmsghdr* message) {
        if (auto change = ChangeFrom(message)) {
            taken.changes.push_back(*std::move(change));
        }
    };
    for (int i = 0; i < LIMIT && !taken.overrun && !taken.drained; ++i) {
        const int result = ReceiveNetlink(socket_.get(), onMessage);
        taken.drained = result == -NLE_AGAIN;
        taken.overrun = result < 0 && !taken.drained;
    }
    return taken;
}

void Notifications::Discard()
{
    Leave(socket_.get());  // so that no others arrive meanwhile
    for (int result = 0; result != -NLE_AGAIN;) {
        result = ReceiveNetlink(socket_.get(), [](nlmsghdr*) {});
        if (result != -NLE_AGAIN && result != -NLE_NOMEM) {  // the latter: an overrun
            CheckNetlink(result, WHAT);
        }
    }
    Join(socket_.get());
}

}  // namespace sources
