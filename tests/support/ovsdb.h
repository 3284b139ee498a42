// Real servers, started and stopped by a test, and a client that knows nothing of ours.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "sources/ovsdb_framing.h"
#include "sources/ovsdb_schema.h"

namespace support {

using Wire = sources::ovsdb::Json;

// Whether the servers' programs are installed.
bool HaveOvsdb();

// What was written to the system log since the last call.
std::string TakeLogText();

// A new folder below /tmp, which goes with the object.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&)            = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

class OvsdbServer {
public:
    // A new database of its own, the first of a cluster, or one more of the first's; started.
    // Options are those of the server's command line.
    enum class Role { Alone, First, Further };
    OvsdbServer(const Folder& folder, const std::string& name, Role role, std::string options = "");
    ~OvsdbServer();
    OvsdbServer(const OvsdbServer&)            = delete;
    OvsdbServer& operator=(const OvsdbServer&) = delete;

    // Returns once it answers, and is connected to its cluster.
    void Start();
    void Stop(int signal);  // and waits for its end
    void Signal(int signal) const;

    bool        IsRunning() const { return process_ > 0; }
    bool        IsLeader() const;
    std::string Path() const { return base_ + ".sock"; }
    std::string Remote() const { return "unix:" + Path(); }

private:
    const std::string base_;
    const std::string options_;
    pid_t             process_ = 0;
};

// Throws std::runtime_error where the connection is lost, or a request is refused.
class OvsdbClient {
public:
    explicit OvsdbClient(const std::string& path);
    ~OvsdbClient();
    OvsdbClient(const OvsdbClient&)            = delete;
    OvsdbClient& operator=(const OvsdbClient&) = delete;

    Wire Ask(const std::string& method, const Wire& parameters);
    // The answers to the operations; the first refusal is an exception.
    Wire Transact(const std::vector<Wire>& operations);

private:
    int                     socket_;
    sources::ovsdb::Framing framing_;
};

}  // namespace support
