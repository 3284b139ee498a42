// Real servers, started and stopped by a test.
#pragma once

#include <sys/types.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sources/ovsdb_schema.h"

namespace support {

using Wire = sources::ovsdb::Json;

// What was written to the system log since the last call.
std::string TakeLogText();

// A new folder below /tmp, which goes with the object.
class Folder {
public:
    Folder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&)            = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_ = "/tmp/ovsdb-XXXXXX";
};

class OvsdbServer {
public:
    // A new database of its own, the first of a cluster, or one more of the first's; started.
    // Options are those of the server's command line.
    enum class Role { Alone, First, Further };
    explicit OvsdbServer(const Folder& folder, const std::string& name = "first",
                         Role role = Role::Alone, std::string options = "");
    ~OvsdbServer();
    OvsdbServer(const OvsdbServer&)            = delete;
    OvsdbServer& operator=(const OvsdbServer&) = delete;

    // Returns once it answers, and is connected to its cluster.
    void Start();
    void Stop(int signal);  // and waits for its end
    void Signal(int signal) const;

    bool        IsLeader() const { return StateOf("leader"); }
    std::string Remote() const { return "unix:" + base_ + ".sock"; }

    // The answers to the operations, each time over a connection of its own. The first refusal is
    // an exception, and so is the loss of the connection.
    Wire Transact(const std::vector<Wire>& operations,
                  const char*              name = sources::ovsdb::database) const;

private:
    bool StateOf(const char* column) const;  // of the database; false where nobody answers

    const std::string base_;
    const std::string options_;
    pid_t             process_ = 0;
};

}  // namespace support
