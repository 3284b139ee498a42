// JSON-RPC messages to and from a server, over a connection that is watched for life.
#pragma once

#include <functional>
#include <string>

#include "sources/ovsdb/ovsdb_framing.h"
#include "sources/ovsdb/ovsdb_message.h"
#include "sources/ovsdb/ovsdb_stream.h"

namespace sources::ovsdb {

// Every function throws where the connection has ended, a message is malformed, or a limit is
// exceeded. Echo requests are answered here.
class Connection {
public:
    using OnMessage = std::function<void(RpcMessage)>;

    // Begins to connect. The arguments must outlive the connection.
    Connection(const Server& server, const TlsContext& tls, const OvsdbLimits& limits);

    // Queues the message; it is sent as soon as the connection takes it.
    void Send(const std::string& message);

    // What to wait for, and until when, before the next Advance.
    pollfd Wanted() const { return stream_.Wanted(IsSending()); }
    Clock::time_point Due() const;

    // Connects, sends and receives as far as that goes without waiting.
    void Advance(const OnMessage& onMessage);

private:
    bool IsSending() const { return sent_ < outgoing_.size(); }
    Clock::time_point SilenceLimit() const;
    void CheckSilence();
    void CheckMessageTime();
    void Flush();
    bool Receive(const OnMessage& onMessage);
    void Dispatch(const std::string& text, const OnMessage& onMessage);
    void AnswerEcho(const RpcMessage& request);

    const OvsdbLimits& limits_;
    Stream stream_;
    bool isConnected_ = false;
    Framing framing_;
    std::string outgoing_;
    size_t sent_ = 0;       // of outgoing_
    size_t echoBytes_ = 0;  // of answers in outgoing_
    Clock::time_point lastReceived_ = Clock::now();
    bool probeSent_ = false;
    size_t bytesSent_ = 0;  // since something was received
    bool mayHaveMore_ = false;
    Clock::time_point messageDeadline_ = Clock::time_point::max();  // of one that has begun
};

}  // namespace sources::ovsdb
