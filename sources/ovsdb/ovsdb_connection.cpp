#include "sources/ovsdb/ovsdb_connection.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace sources::ovsdb {

Connection::Connection(Stream stream, Milliseconds silence)
    : stream_(std::move(stream)), silence_(silence)
{
}

void Connection::Send(const std::string& message)
{
    outgoing_ += message;
    Flush();
}

void Connection::Attend(int wake, int stop, const std::function<void(const Json&)>& onMessage)
{
    const bool maySend = !outgoing_.empty() && !stream_.WaitsToRead();
    const short events = static_cast<short>(POLLIN | (maySend ? POLLOUT : 0));
    pollfd waitedFor[] = {{stream_.Descriptor(), events, 0}, {wake, POLLIN, 0}, {stop, POLLIN, 0}};
    const auto timeout = mayHaveMore_ ? Milliseconds(0) : UntilSilenceCounts();
    poll(waitedFor, std::size(waitedFor), static_cast<int>(timeout.count()));
    Flush();
    mayHaveMore_ = Receive(onMessage);
    MindSilence();
}

Milliseconds Connection::UntilSilenceCounts() const
{
    const auto limit = lastHeard_ + silence_ * (asked_ ? 3 : 1);
    return std::max(Milliseconds(0), std::chrono::ceil<Milliseconds>(limit - Clock::now()));
}

void Connection::MindSilence()
{
    if (UntilSilenceCounts() > Milliseconds(0)) {
        return;
    }
    if (asked_) {
        throw std::runtime_error("the server has been silent for too long");
    }
    asked_ = true;
    Send(R"({"id":"echo","method":"echo","params":[]})");
}

void Connection::Flush()
{
    while (sent_ < outgoing_.size()) {
        const size_t now = stream_.Write(std::string_view(outgoing_).substr(sent_));
        if (now == 0) {
            return;
        }
        sent_ += now;
    }
    outgoing_.clear();
    sent_ = 0;
}

// Whether more may be there: a server that never stops must not keep us from everything else. What
// a server said last counts even where it then ended the connection.
bool Connection::Receive(const OnMessage& onMessage)
{
    std::array<char, 1 << 16> bytes;
    for (int rounds = 64; rounds > 0; --rounds) {
        const size_t size = stream_.Read(bytes);
        if (size == 0) {
            return false;
        }
        lastHeard_ = Clock::now();
        asked_ = false;
        framing_.Add({bytes.data(), size});
        while (const auto message = framing_.Next()) {
            HandOver(*message, onMessage);
        }
    }
    return true;
}

void Connection::HandOver(const std::string& text, const OnMessage& onMessage)
{
    const Json message = Json::parse(text);
    if (message.value("method", "") == "echo") {
        Send(Json{{"id", message.at("id")}, {"result", message.at("params")}, {"error", nullptr}}
                 .dump());
    } else if (message.value("id", Json()) != "echo") {
        onMessage(message);
    }
}

}  // namespace sources::ovsdb
