// JSON-RPC messages to and from a server (RFC 7047, 4).
#pragma once

#include <functional>
#include <string>

#include "sources/ovsdb/ovsdb_framing.h"
#include "sources/ovsdb/ovsdb_schema.h"
#include "sources/ovsdb/ovsdb_stream.h"

namespace sources::ovsdb {

// Everything throws where the connection has ended, what comes is no message, or the server is
// silent for too long.
class Connection {
public:
    // silence: after so long without a word a server is asked whether it is there, and after three
    // times as long it is given up.
    Connection(Stream stream, Milliseconds silence);

    Milliseconds Silence() const { return silence_; }

    void Send(const std::string& message);

    // Waits until something comes or may be sent, or one of two descriptors becomes readable, and
    // hands over what has come. Questions whether we are there are answered here.
    void Attend(int wake, int stop, const std::function<void(const Json&)>& onMessage);

private:
    using OnMessage = std::function<void(const Json&)>;

    Milliseconds UntilSilenceCounts() const;
    void MindSilence();
    void Flush();
    bool Receive(const OnMessage& onMessage);
    void HandOver(const std::string& text, const OnMessage& onMessage);

    Stream stream_;
    const Milliseconds silence_;
    Framing framing_;
    std::string outgoing_;
    size_t sent_ = 0;  // of outgoing
    Clock::time_point lastHeard_ = Clock::now();
    bool asked_ = false;
    bool mayHaveMore_ = false;
};

}  // namespace sources::ovsdb
