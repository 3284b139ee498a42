// JSON-RPC messages to and from a server. Detects a dead connection by echo requests.
#pragma once

#include <functional>
#include <string>

#include "sources/ovsdb/ovsdb_framing.h"
#include "sources/ovsdb/ovsdb_message.h"
#include "sources/ovsdb/ovsdb_stream.h"

namespace sources::ovsdb {

// Every function throws if the connection is closed, a message is malformed, or a limit is
// exceeded. Echo requests of the server are replied to here.
class Connection {
public:
    using OnMessage = std::function<void(RpcMessage)>;

    // Begins to connect. The arguments must outlive the connection.
    Connection(const Server& server, const TlsContext& tls, const OvsdbLimits& limits);

    // Queues the message; it is sent as soon as the connection is writable.
    void Send(const std::string& message);

    // The descriptor and events to poll for, and the timeout, before the next Advance.
    pollfd PollEntry() const { return stream_.PollEntry(IsSending()); }
    Clock::time_point Due() const;

    // Connects, sends and receives as far as possible without blocking.
    void Advance(const OnMessage& onMessage);

private:
    bool IsSending() const { return sent_ < outgoing_.size(); }
    Clock::time_point SilenceLimit() const;
    void CheckSilence();
    void CheckMessageTime();
    void Flush();
    bool Receive(const OnMessage& onMessage);
    void Dispatch(const std::string& text, const OnMessage& onMessage);
    void ReplyToEcho(const RpcMessage& request);

    const OvsdbLimits& limits_;
    Stream stream_;
    bool isConnected_ = false;
    Framing framing_;
    std::string outgoing_;
    size_t sent_ = 0;       // of outgoing_
    size_t echoBytes_ = 0;  // of echo replies in outgoing_
    Clock::time_point lastReceived_ = Clock::now();
    bool probeSent_ = false;
    size_t bytesSent_ = 0;  // since something was received
    bool mayHaveMore_ = false;
    Clock::time_point messageDeadline_ = Clock::time_point::max();  // of an incomplete message
};

}  // namespace sources::ovsdb
