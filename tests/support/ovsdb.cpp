#include "support/ovsdb.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "sources/ovsdb_connection.h"
#include "sources/ovsdb_write.h"
#include "support/command.h"
#include "support/network.h"
#include "support/platform.h"

namespace support {

using namespace sources::ovsdb;

std::string TakeLogText()
{
    std::string text;
    for (const LogLine& line : TakeLog())
        text += line.text;
    return text;
}

OvsdbServer::OvsdbServer(const Folder& folder, const std::string& name, Role role,
                         std::string options)
    : base_(folder / name), options_(std::move(options))
{
    const std::string schema = base_ + ".db " TARND_PROJECT_ROOT "/data/tarnd_qrb.ovsschema";
    const std::string first  = " unix:" + folder / "first.raft";
    const std::string create =
        role == Role::Alone ? "create " + schema
        : role == Role::First
            ? "--election-timer=200 create-cluster " + schema + first
            : "join-cluster " + base_ + ".db " + database + " unix:" + base_ + ".raft" + first;
    EXPECT_EQ(Run("ovsdb-tool " + create).status, 0) << create;
    Start();
}

OvsdbServer::~OvsdbServer()
{
    if (process_ > 0)
        Stop(SIGKILL);
}

void OvsdbServer::Start()
{
    const std::string command =
        "exec ovsdb-server --no-chdir -vconsole:off -vsyslog:off --log-file=" + base_ +
        ".log --unixctl=" + base_ + ".ctl --remote=p" + Remote() + " " + options_ + " " + base_ +
        ".db 2>/dev/null";
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    EXPECT_TRUE(Eventually([&] { return StateOf("connected"); })) << base_;
}

void OvsdbServer::Stop(int signal)
{
    Signal(signal);
    Signal(SIGCONT);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

void OvsdbServer::Signal(int signal) const
{
    kill(process_, signal);
}

bool OvsdbServer::StateOf(const char* column) const
{
    try {
        const Wire select  = {{"op", "select"},
                              {"table", "Database"},
                              {"where", Wire::array({Wire::array({"name", "==", database})})}};
        const Wire results = Transact({select}, "_Server");
        return results.at(0).at("rows").at(0).at(column);
    } catch (const std::exception&) {
        return false;
    }
}

Wire OvsdbServer::Transact(const std::vector<Wire>& operations, const char* name) const
{
    constexpr Milliseconds patience(10'000);
    Connection connection(Stream(ParseServers(Remote()).all[0], TlsContext({}), -1, patience),
                          patience);
    std::vector<Wire> parameters{name};
    parameters.insert(parameters.end(), operations.begin(), operations.end());
    connection.Send(Wire{{"id", 1}, {"method", "transact"}, {"params", parameters}}.dump());
    Wire answer;
    while (answer.is_null())
        connection.Attend(-1, -1, [&](const Wire& message) { answer = message; });
    Wire results = answer.at("result");
    for (const Wire& result : results) {
        if (const std::string reason = ReasonIn(result); !reason.empty())
            throw std::runtime_error(reason);
    }
    return results;
}

}  // namespace support
