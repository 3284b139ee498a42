#include "sources/host/host_netlink.h"

#include <linux/rtnetlink.h>

#include <stdexcept>

#include <netlink/errno.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>

namespace sources {
namespace {

struct Reception {
    const OnMessage& onMessage;
    int error = 0;  // a system error number that ended a dump, negated
};

}  // namespace

void NetlinkDeleter::operator()(nl_sock* socket) const
{
    nl_socket_free(socket);
}

void CheckNetlink(int result, const std::string& what)
{
    if (result < 0) {
        throw std::runtime_error(what + ": " + nl_geterror(result));
    }
}

NetlinkSocket OpenNetlink()
{
    constexpr size_t MESSAGE_BUFFER = 1 << 16;  // the kernel fills up to 32 KiB at once
    NetlinkSocket socket(nl_socket_alloc());
    if (!socket) {
        throw std::bad_alloc();
    }
    CheckNetlink(nl_connect(socket.get(), NETLINK_ROUTE), "cannot open a netlink socket");
    nl_socket_disable_auto_ack(socket.get());  // an answer is enough
    nl_socket_disable_msg_peek(socket.get());
    CheckNetlink(nl_socket_set_msg_buf_size(socket.get(), MESSAGE_BUFFER),
                 "cannot open a netlink socket");
    return socket;
}

int ReceiveNetlink(nl_sock* socket, const OnMessage& onMessage)
{
    Reception reception{onMessage};
    const auto onValid = [](nl_msg* message, void* argument) noexcept -> int {
        static_cast<Reception*>(argument)->onMessage(nlmsg_hdr(message));
        return NL_OK;
    };
    // A dump that fails ends with the reason, which the library ignores.
    const auto onFinish = [](nl_msg* message, void* argument) noexcept -> int {
        nlmsghdr* const head = nlmsg_hdr(message);
        if (nlmsg_datalen(head) >= static_cast<int>(sizeof(int))) {
            static_cast<Reception*>(argument)->error = *static_cast<int*>(nlmsg_data(head));
        }
        return NL_OK;
    };
    nl_socket_modify_cb(socket, NL_CB_VALID, NL_CB_CUSTOM, onValid, &reception);
    nl_socket_modify_cb(socket, NL_CB_FINISH, NL_CB_CUSTOM, onFinish, &reception);
    const int result = nl_recvmsgs_default(socket);
    return result >= 0 && reception.error < 0 ? -nl_syserr2nlerr(reception.error) : result;
}

}  // namespace sources
