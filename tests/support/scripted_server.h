// A server controlled by the test: the test's thread accepts, reads and sends.
#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "sources/ovsdb/ovsdb_framing.h"
#include "support/ovsdb_server.h"

namespace support {

// One connection of a client.
class ScriptedPeer {
public:
    explicit ScriptedPeer(int descriptor) : descriptor_(descriptor) {}
    ~ScriptedPeer() { close(descriptor_); }
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    // Returns false if the client has closed the connection.
    bool Send(std::string_view bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t sent = send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<size_t>(sent));
        }
        return true;
    }
    // Sends as much as possible without blocking.
    size_t SendSome(std::string_view bytes) const
    {
        const ssize_t sent =
            send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        return sent > 0 ? static_cast<size_t>(sent) : 0;
    }

    // The client's next message; empty after it has closed the connection.
    std::optional<Wire> Receive()
    {
        while (true) {
            if (const auto message = framing_.Next()) {
                return Wire::parse(*message);
            }
            std::array<char, 4096> bytes;
            const ssize_t size = recv(descriptor_, bytes.data(), bytes.size(), 0);
            if (size <= 0) {
                return std::nullopt;
            }
            framing_.Add({bytes.data(), static_cast<size_t>(size)});
        }
    }

    // Whether the client replies; false if it has closed the connection.
    bool IsAlive()
    {
        Send(R"({"id":"alive","method":"echo","params":[]})");
        while (const auto message = Receive()) {
            if (message->value("id", Wire()) == "alive") {
                return true;
            }
        }
        return false;
    }

private:
    int descriptor_;
    sources::OvsdbLimits limits_;
    sources::ovsdb::Framing framing_{limits_};
};

class ScriptedServer {
public:
    ScriptedServer() : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        (folder_ / "s").copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        EXPECT_EQ(listen(listener_, 64), 0);
    }
    ~ScriptedServer() { close(listener_); }
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::string Remote() const { return "unix:" + folder_ / "s"; }

    // The descriptor of the next client's connection.
    int Accept() const { return accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); }
    // Whether a client waits to be accepted within the time.
    bool IsWanted(std::chrono::milliseconds longest) const
    {
        pollfd waiting = {listener_, POLLIN, 0};
        return poll(&waiting, 1, static_cast<int>(longest.count())) == 1;
    }

private:
    const Folder folder_;
    const int listener_;
};

}  // namespace support
