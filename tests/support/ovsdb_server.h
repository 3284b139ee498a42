// Real servers, started and stopped by a test.
#pragma once

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sources/ovsdb/ovsdb_connection.h"
#include "sources/ovsdb/ovsdb_write.h"
#include "support/fault_injection.h"
#include "support/test_system.h"

namespace support {

using Wire = sources::ovsdb::Json;

// The text written to the system log since the last call.
inline std::string TakeLogText()
{
    std::string text;
    for (const LogLine& line : TakeLog()) {
        text += line.text;
    }
    return text;
}

// A new directory below /tmp, removed by the destructor.
class Folder {
public:
    Folder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_ = "/tmp/ovsdb-XXXXXX";
};

class OvsdbServer {
public:
    // Starts a server with a standalone database, as the first of a cluster, or joining a cluster.
    // Options are those of the server's command line.
    enum class Role { Alone, First, Further };
    explicit OvsdbServer(const Folder& folder, const std::string& name = "first",
                         Role role = Role::Alone, const std::string& options = "",
                         const std::string& schemaFile = TARND_PROJECT_ROOT
                         "/data/tarnd_qrb.ovsschema")
        : base_(folder / name), options_(options)
    {
        const std::string schema = base_ + ".db " + schemaFile;
        const std::string first = " unix:" + folder / "first.raft";
        const std::string create = role == Role::Alone ? "create " + schema
                                   : role == Role::First
                                       ? "--election-timer=200 create-cluster " + schema + first
                                       : "join-cluster " + base_ + ".db " +
                                             sources::ovsdb::DATABASE_NAME + " unix:" + base_ +
                                             ".raft" + first;
        EXPECT_EQ(Run("ovsdb-tool " + create).status, 0) << create;
        Start();
    }
    ~OvsdbServer()
    {
        if (process_ > 0) {
            Stop(SIGKILL);
        }
    }
    OvsdbServer(const OvsdbServer&) = delete;
    OvsdbServer& operator=(const OvsdbServer&) = delete;

    // Returns when the server replies and is connected to its cluster.
    void Start()
    {
        const std::string command =
            "exec ovsdb-server --no-chdir -vconsole:off -vsyslog:off --log-file=" + base_ +
            ".log --unixctl=" + base_ + ".ctl --remote=p" + Remote() + " " + options_ + " " +
            base_ + ".db 2>/dev/null";
        process_ = fork();
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(127);
        }
        EXPECT_TRUE(Eventually([&] { return StateOf("connected"); })) << base_;
    }
    // Also waits until the process has ended.
    void Stop(int signal)
    {
        Signal(signal);
        Signal(SIGCONT);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }
    void Signal(int signal) const { kill(process_, signal); }

    bool IsLeader() const { return StateOf("leader"); }
    std::string Remote() const { return "unix:" + base_ + ".sock"; }

    // Returns the replies to the operations, using a new connection. Throws on the first error and
    // on loss of the connection.
    Wire Transact(const std::vector<Wire>& operations,
                  const char* name = sources::ovsdb::DATABASE_NAME) const
    {
        using namespace sources::ovsdb;
        const Servers servers = ParseServers(Remote());
        const TlsContext tls({});
        Connection connection(servers.all[0], tls, servers.limits);
        std::vector<Wire> parameters{name};
        parameters.insert(parameters.end(), operations.begin(), operations.end());
        connection.Send(Wire{{"id", 1}, {"method", "transact"}, {"params", parameters}}.dump());
        Wire results;
        while (results.is_null()) {
            pollfd entry = connection.PollEntry();
            poll(&entry, 1, 100);
            connection.Advance([&](const RpcMessage& message) {
                results = message.refusal.empty() ? message.result
                                                  : throw std::runtime_error(message.refusal);
            });
        }
        for (const Wire& result : results) {
            if (const std::string reason = ReasonIn(result); !reason.empty()) {
                throw std::runtime_error(reason);
            }
        }
        return results;
    }

private:
    // State of the database; false if no server replies.
    bool StateOf(const char* column) const
    {
        try {
            const Wire name = Wire::array({"name", "==", sources::ovsdb::DATABASE_NAME});
            return Transact(
                       {{{"op", "select"}, {"table", "Database"}, {"where", Wire::array({name})}}},
                       "_Server")
                .at(0)
                .at("rows")
                .at(0)
                .at(column);
        } catch (const std::exception&) {
            return false;
        }
    }

    const std::string base_;
    const std::string options_;
    pid_t process_ = 0;
};

}  // namespace support
