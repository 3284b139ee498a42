// Sockets towards the kernel, and receiving from them.
//
// A socket belongs to the network namespace of the thread that opened it. Failures throw
// std::runtime_error with what failed and why.
#pragma once

#include <functional>
#include <memory>
#include <string>

struct nl_sock;
struct nlmsghdr;

namespace sources {

struct NetlinkDeleter {
    void operator()(nl_sock* socket) const;
};
using NetlinkSocket = std::unique_ptr<nl_sock, NetlinkDeleter>;

NetlinkSocket OpenNetlink();

// Throws where the result of a netlink function is negative.
void CheckNetlink(int result, const std::string& what);

using OnMessage = std::function<void(nlmsghdr*)>;

// Receives up to the end of an answer, or one notification. Returns a negative error number of the
// netlink library, that of the answer included.
int ReceiveNetlink(nl_sock* socket, const OnMessage& onMessage);

}  // namespace sources
