#include "sources/ovsdb/ovsdb_connection.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace sources::ovsdb {
namespace {

constexpr const char* PROBE_ID = "echo";

}  // namespace

Connection::Connection(const Server& server, const TlsContext& tls, const OvsdbLimits& limits)
    : limits_(limits), stream_(server, tls, limits), framing_(limits)
{
}

void Connection::Send(const std::string& message)
{
    outgoing_ += message;
    if (isConnected_) {
        Flush();
    }
}

Clock::time_point Connection::Due() const
{
    if (!isConnected_) {
        return stream_.ConnectDeadline();
    }
    return mayHaveMore_ ? Clock::now() : std::min(SilenceLimit(), messageDeadline_);
}

void Connection::Advance(const OnMessage& onMessage)
{
    if (!isConnected_) {
        isConnected_ = stream_.Connect();
        if (!isConnected_) {
            return;
        }
        lastReceived_ = Clock::now();
    }
    Flush();
    mayHaveMore_ = Receive(onMessage);
    CheckMessageTime();
    CheckSilence();
}

Clock::time_point Connection::SilenceLimit() const
{
    const auto limit = lastReceived_ + limits_.probeInterval * (probeSent_ ? 3 : 1);
    return limit + ExtraTime(bytesSent_);
}

void Connection::CheckSilence()
{
    if (Clock::now() < SilenceLimit()) {
        return;
    }
    if (probeSent_) {
        throw std::runtime_error("the server has been silent for too long");
    }
    probeSent_ = true;
    Send(Json{{"id", PROBE_ID}, {"method", "echo"}, {"params", Json::array()}}.dump());
}

void Connection::CheckMessageTime()
{
    const auto now = Clock::now();
    if (!framing_.IsInsideMessage()) {
        messageDeadline_ = Clock::time_point::max();
    } else if (messageDeadline_ == Clock::time_point::max()) {
        messageDeadline_ = now + limits_.messageTimeout;
    } else if (now >= messageDeadline_) {
        throw std::runtime_error("the server does not complete a message in time");
    }
}

void Connection::Flush()
{
    while (IsSending()) {
        const size_t now = stream_.Write(std::string_view(outgoing_).substr(sent_));
        if (now == 0) {
            return;
        }
        sent_ += now;
        bytesSent_ += now;
    }
    outgoing_.clear();
    sent_ = 0;
    echoBytes_ = 0;
}

// Returns whether more data may be available. The number of reads is limited so that a server that
// sends continuously does not block everything else. Messages that arrived before the server closed
// the connection are still processed.
bool Connection::Receive(const OnMessage& onMessage)
{
    constexpr int MOST_READS = 64;
    std::array<char, 1 << 16> bytes;
    for (int reads = 0; reads < MOST_READS; ++reads) {
        const size_t size = stream_.Read(bytes);
        if (size == 0) {
            return false;
        }
        lastReceived_ = Clock::now();
        probeSent_ = false;
        bytesSent_ = 0;
        framing_.Add({bytes.data(), size});
        while (const auto message = framing_.Next()) {
            messageDeadline_ = Clock::time_point::max();
            Dispatch(*message, onMessage);
        }
    }
    return true;
}

void Connection::Dispatch(const std::string& text, const OnMessage& onMessage)
{
    RpcMessage message = ParseMessage(text);
    if (message.method == "echo") {
        ReplyToEcho(message);
    } else if (!message.method.empty() || message.id != PROBE_ID) {
        onMessage(std::move(message));
    }
}

void Connection::ReplyToEcho(const RpcMessage& request)
{
    const std::string reply =
        Json{{"id", request.id}, {"result", request.params}, {"error", nullptr}}.dump();
    echoBytes_ += reply.size();
    Send(reply);
    if (echoBytes_ > limits_.mostEchoBytes) {
        throw std::runtime_error("the server sends echo requests but does not read the replies");
    }
}

}  // namespace sources::ovsdb
