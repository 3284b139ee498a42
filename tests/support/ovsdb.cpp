#include "support/ovsdb.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support/command.h"
#include "support/network.h"
#include "support/platform.h"

namespace support {
namespace {

const std::string schema = TARND_PROJECT_ROOT "/data/tarnd_qrb.ovsschema";

// The database's row in the server's own; null where it doesn't answer.
Wire StateOf(const std::string& path)
{
    try {
        OvsdbClient client(path);
        const Wire  result = client.Ask(
             "transact",
             {"_Server",
              {{"op", "select"},
               {"table", "Database"},
               {"where", Wire::array({Wire::array({"name", "==", sources::ovsdb::database})})}}});
        return result.at(0).at("rows").at(0);
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

bool HaveOvsdb()
{
    return Run("command -v ovsdb-server ovsdb-tool").status == 0;
}

std::string TakeLogText()
{
    std::string text;
    for (const LogLine& line : TakeLog())
        text += line.text;
    return text;
}

Folder::Folder() : path_("/tmp/ovsdb-XXXXXX")
{
    if (mkdtemp(path_.data()) == nullptr)
        throw std::runtime_error("no folder can be made below /tmp");
}

Folder::~Folder()
{
    std::filesystem::remove_all(path_);
}

OvsdbServer::OvsdbServer(const Folder& folder, const std::string& name, Role role,
                         std::string options)
    : base_(folder / name), options_(std::move(options))
{
    const std::string own   = base_ + ".db ";
    const std::string first = " unix:" + folder / "first.raft";
    const std::string here  = " unix:" + base_ + ".raft";
    const std::string create =
        role == Role::Alone   ? "create " + own + schema
        : role == Role::First ? "--election-timer=200 create-cluster " + own + schema + first
                              : "join-cluster " + own + sources::ovsdb::database + here + first;
    EXPECT_EQ(Run("ovsdb-tool " + create).status, 0) << create;
    Start();
}

OvsdbServer::~OvsdbServer()
{
    if (IsRunning())
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
    EXPECT_TRUE(Eventually([&] {
        const Wire state = StateOf(Path());
        return state.is_object() && state.value("connected", false);
    })) << base_;
}

void OvsdbServer::Stop(int signal)
{
    kill(process_, signal);
    kill(process_, SIGCONT);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

void OvsdbServer::Signal(int signal) const
{
    kill(process_, signal);
}

bool OvsdbServer::IsLeader() const
{
    const Wire state = IsRunning() ? StateOf(Path()) : Wire();
    return state.is_object() && state.value("leader", false);
}

OvsdbClient::OvsdbClient(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(socket_);
        throw std::runtime_error("no connection to " + path);
    }
}

OvsdbClient::~OvsdbClient()
{
    close(socket_);
}

Wire OvsdbClient::Ask(const std::string& method, const Wire& parameters)
{
    const std::string question =
        Wire{{"id", "test"}, {"method", method}, {"params", parameters}}.dump();
    send(socket_, question.data(), question.size(), MSG_NOSIGNAL);
    for (;;) {
        while (const auto message = framing_.Next()) {
            const Wire answer = Wire::parse(*message);
            if (answer.value("id", Wire()) != "test")
                continue;
            if (!answer.value("error", Wire()).is_null())
                throw std::runtime_error(answer["error"].dump());
            return answer.at("result");
        }
        char          bytes[65536];
        const ssize_t size = recv(socket_, bytes, sizeof bytes, 0);
        if (size <= 0)
            throw std::runtime_error("the connection is lost");
        framing_.Add({bytes, static_cast<size_t>(size)});
    }
}

Wire OvsdbClient::Transact(const std::vector<Wire>& operations)
{
    Wire parameters = Wire::array({sources::ovsdb::database});
    for (const Wire& operation : operations)
        parameters.push_back(operation);
    const Wire results = Ask("transact", parameters);
    for (const Wire& result : results) {
        if (result.is_object() && result.contains("error"))
            throw std::runtime_error(result.dump());
    }
    return results;
}

}  // namespace support
