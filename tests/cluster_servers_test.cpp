// The tables from real servers, which the tests start, stop and kill.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "sources/cluster.h"
#include "sources/json_file.h"
#include "support/changes.h"
#include "support/command.h"
#include "support/network.h"
#include "support/ovsdb.h"
#include "support/platform.h"
#include "support/rows.h"

namespace {

using sources::Cluster;
using sources::Write;
using sources::ovsdb::ColumnsOf;
using sources::ovsdb::RowToWire;
using standin::Row;
using standin::Table;
using support::Base;
using support::Change;
using support::Events;
using support::Eventually;
using support::OvsdbClient;
using support::OvsdbServer;
using support::Phy;
using support::Speed;
using support::Wire;
using Role = OvsdbServer::Role;
using enum Write::Kind;

using namespace std::chrono_literals;

constexpr sources::ClusterTiming brisk{10'000ms, 300ms, 20ms, 200ms};

Wire NewRow(const std::string& table, const Wire& row)
{
    return {{"op", "insert"}, {"table", table}, {"row", row}};
}

Wire Where(const char* column, const Wire& value)
{
    return Wire::array({Wire::array({column, "==", value})});
}

Wire SetSpeed(uint64_t index, uint64_t speed)
{
    return {{"op", "update"},
            {"table", "if_phy"},
            {"where", Where("if_index", index)},
            {"row", {{"speed", speed}}}};
}

class ServersTest : public support::PlatformTest {
protected:
    void SetUp() override
    {
        if (!support::HaveOvsdb())
            GTEST_SKIP() << "ovsdb-server and ovsdb-tool are not installed";
        PlatformTest::SetUp();
        support::WatchPlatform(false);
    }

    const support::Folder folder_;
};

std::multiset<std::string> Texts(const std::vector<Row>& rows)
{
    std::multiset<std::string> texts;
    for (const Row& row : rows)
        texts.insert(sources::RowToJson(row).dump());
    return texts;
}

// The server's rows and the database's, whatever their order.
void ExpectSameAs(const OvsdbServer& server)
{
    OvsdbClient client(server.Path());
    for (const Table& table : standin::Tables()) {
        const Wire select = {
            {"op", "select"}, {"table", ColumnsOf(table).name}, {"where", Wire::array()}};
        const Wire       results = client.Transact({select});
        std::vector<Row> there;
        for (const Wire& row : results.at(0).at("rows"))
            there.push_back(sources::ovsdb::RowFromWire(table, row));
        EXPECT_EQ(Texts(support::RowsOf(table)), Texts(there)) << table.name;
    }
}

// The action ends in an exception for this reason, which its text has somewhere.
template <typename Action>
void ExpectRefusal(const std::string& reason, const Action& action)
{
    try {
        action();
        ADD_FAILURE() << "not refused: " << reason;
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
}

TEST_F(ServersTest, WritesComeBackAsChangesOrAreRefused)
{
    OvsdbServer          server(folder_, "first", Role::Alone);
    standin::Transaction own;
    own.Insert(Phy(99));  // nobody's: it goes
    own.Commit();
    const Events events;
    Cluster      cluster(server.Remote(), brisk);
    cluster.Follow();
    cluster.Commit({{Insert, Phy(1, 10)}});
    EXPECT_EQ(Speed(1), 10U);
    cluster.Commit({{Update, Phy(1, 11)}});
    cluster.Commit({{Replace, Phy(1, 12)}});
    cluster.Commit({{Replace, Phy(2, 20)}});
    cluster.Commit({{Delete, Phy(1)}, {Insert, Phy(3, 30)}, {Replace, Phy(3, 31)}});
    EXPECT_TRUE(Eventually([] { return Events::Count("if_phy") >= 7; }));
    const std::vector<Change> expected = {
        {"if_phy", 99, 0, {}}, {"if_phy", 1, {}, 10}, {"if_phy", 1, 10, 11}, {"if_phy", 1, 11, 12},
        {"if_phy", 2, {}, 20}, {"if_phy", 1, 12, {}}, {"if_phy", 3, {}, 31}};
    EXPECT_EQ(Events::Take(), expected);

    cluster.Commit({{Insert, Base(1, "one")}});
    const std::pair<std::vector<Write>, std::string> refused[] = {
        {{{Insert, Phy(4)}, {Insert, Phy(2)}},
         "identical values (2) for index on column \"if_index\""},
        {{{Insert, Base(2, "one")}}, "for index on columns"},
        {{{Update, Phy(5)}}, "if_phy: if_index 5: there is no such row"},
        {{{Delete, Phy(5)}}, "if_phy: if_index 5: there is no such row"},
        {{{Insert, Base(3, "\xff")}}, "UTF-8"},
    };
    for (const auto& [writes, reason] : refused)
        ExpectRefusal(reason, [&, &asked = writes] { cluster.Commit(asked); });
    ExpectSameAs(server);
}

// What a field can't hold, the server refuses, whoever writes.
TEST_F(ServersTest, TheServerKnowsTheFieldsLimits)
{
    OvsdbServer                        server(folder_, "first", Role::Alone);
    OvsdbClient                        client(server.Path());
    const std::pair<const char*, Wire> beyond[] = {
        {"port", {{"pvid", 65536}}},
        {"port", {{"if_index", -1}}},
        {"port", {{"vlan_bitmap_1", 4096}}},
        {"if_base", {{"if_name", std::string(64, 'x')}}},
        {"vlan", {{"name", std::string(33, 'x')}}},
        {"am_ipv4_address", {{"ipv4_address_list_masklen", {"map", {{0, 256}}}}}},
        {"am_ipv4_address", {{"lists", "car_list"}}},
    };
    for (const auto& [table, row] : beyond)
        EXPECT_THROW(client.Transact({NewRow(table, row)}), std::runtime_error) << row;
    EXPECT_NO_THROW(client.Transact({NewRow("if_base", {{"if_name", std::string(63, 'x')}}),
                                     NewRow("vlan", {{"name", std::string(32, 'x')}})}));
}

// By a client that knows nothing of rows but their JSON, and a server that goes and comes.
TEST_F(ServersTest, TheReplicaEqualsTheServerAfterEachRound)
{
    OvsdbServer server(folder_, "first", Role::Alone);
    Cluster     cluster(server.Remote(), brisk);
    cluster.Follow();
    support::RandomRows random(2);
    for (int round = 0; round < 6; ++round) {
        if (round == 2 || round == 4) {
            server.Stop(round == 2 ? SIGTERM : SIGKILL);
            EXPECT_TRUE(Eventually([&] { return cluster.Server().empty(); }));
            server.Start();
        }
        std::vector<Wire> operations;
        for (const Table& table : standin::Tables()) {
            const auto        rows = support::RowsOf(table);
            const std::string name = ColumnsOf(table).name;
            if (!rows.empty()) {
                Row        some  = rows[random.Below(rows.size())];
                const Wire where = sources::ovsdb::KeyCondition(table, RowToWire(some));
                random.Fill(some, table.fields[random.Below(table.fields.size())]);
                operations.push_back({{"op", random.Below(3) == 0 ? "delete" : "update"},
                                      {"table", name},
                                      {"where", where}});
                if (operations.back()["op"] == "update")
                    operations.back()["row"] = RowToWire(some);
            }
            for (int i = 0; i < 2; ++i)
                operations.push_back(NewRow(name, RowToWire(random.Next(table))));
        }
        operations.push_back(NewRow("if_phy", {{"if_index", 1000 + round}}));
        OvsdbClient(server.Path()).Transact(operations);
        EXPECT_TRUE(Eventually(
            [&] { return standin::Find(Phy(1000 + static_cast<uint64_t>(round))).has_value(); }));
        ExpectSameAs(server);
    }
}

// Row 1's speed and a row of its own, in one transaction.
std::vector<Wire> NumberedWrites(uint64_t number)
{
    return {SetSpeed(1, number),
            NewRow("if_base",
                   {{"if_index", number}, {"if_name", std::to_string(number)}, {"place", number}})};
}

// Row 1 went through speeds that only grow, each from the last; and each row came once, in order.
void ExpectEveryChangeOnce(const std::vector<Change>& changes, uint64_t last)
{
    uint32_t speed = 0;
    uint64_t rows  = 0;
    for (const Change& change : changes) {
        if (change.table == "if_base") {
            EXPECT_EQ(change.index, ++rows);
            EXPECT_FALSE(change.before);
        } else {
            EXPECT_EQ(change.before, speed);
            EXPECT_GT(change.after, speed);
            speed = change.after.value_or(0);
        }
    }
    EXPECT_EQ(rows, last);
    EXPECT_EQ(speed, last);
}

TEST_F(ServersTest, AReaderThatFallsBehindMissesNothing)
{
    OvsdbServer server(folder_, "first", Role::Alone);
    OvsdbClient client(server.Path());
    client.Transact({NewRow("if_phy", {{"if_index", 1}})});
    Cluster            cluster(server.Remote(), brisk);
    const Events       events;
    constexpr uint64_t last = 1200;  // more than a connection holds
    for (uint64_t number = 1; number <= last; ++number)
        client.Transact(NumberedWrites(number));
    EXPECT_EQ(Speed(1), 0U);
    cluster.Follow();
    EXPECT_TRUE(Eventually([] { return Speed(1) == last; }));
    EXPECT_TRUE(Eventually([] { return Events::Count("if_base") >= last; }));
    ExpectEveryChangeOnce(Events::Take(), last);
    ExpectSameAs(server);
}

TEST_F(ServersTest, ASilentServerIsGivenUpAndTheTablesStay)
{
    OvsdbServer first(folder_, "first", Role::Alone);
    OvsdbServer second(folder_, "second", Role::Alone);
    OvsdbClient(first.Path()).Transact({NewRow("if_phy", {{"if_index", 1}, {"speed", 10}})});
    Cluster cluster(first.Remote() + "," + second.Remote(), {300ms, 40ms, 10ms, 20ms});
    cluster.Follow();
    std::this_thread::sleep_for(200ms);  // a server with nothing to tell answers
    EXPECT_EQ(support::TakeLog().size(), 0U);

    second.Stop(SIGTERM);
    first.Signal(SIGSTOP);
    ExpectRefusal("is not known", [&] { cluster.Commit({{Insert, Phy(2)}}); });
    EXPECT_EQ(Speed(1), 10U);
    EXPECT_EQ(cluster.Server(), "");
    ExpectRefusal("no server can be followed", [&] { cluster.Commit({{Insert, Phy(2)}}); });
    EXPECT_NE(support::TakeLogText().find(first.Remote() +
                                          ": the server has been silent for too long: the "
                                          "tables stay as they are"),
              std::string::npos);

    // The next one has other contents: the difference is written.
    second.Start();
    EXPECT_TRUE(Eventually([&] { return cluster.Server() == second.Remote(); }));
    EXPECT_EQ(standin::CountRows(*standin::FindTable("if_phy")), 0U);
    EXPECT_NE(support::TakeLogText().find(second.Remote() + " is followed"), std::string::npos);
}

uint16_t FreePort()
{
    const int   probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    socklen_t   size   = sizeof(address);
    address.sin_family = AF_INET;
    bind(probe, reinterpret_cast<const sockaddr*>(&address), size);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    close(probe);
    return ntohs(address.sin_port);
}

TEST_F(ServersTest, OverTcpAndTls)
{
    const auto certify = [&](const std::string& name) {
        const auto made = support::Run(
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
            "-subj /CN=" +
            name + " -keyout " + folder_ / name + ".key -out " + folder_ / name +
            ".pem 2>/dev/null");
        EXPECT_EQ(made.status, 0);
    };
    certify("board");
    certify("stranger");
    const std::string key = folder_ / "board.key";
    const std::string pem = folder_ / "board.pem";
    const std::string tcp = std::to_string(FreePort());
    const std::string tls = std::to_string(FreePort());
    OvsdbServer       server(folder_, "first", Role::Alone,
                             "--remote=ptcp:" + tcp + ":127.0.0.1 --remote=pssl:" + tls +
                                 ":127.0.0.1 --private-key=" + key + " --certificate=" + pem +
                                 " --ca-cert=" + pem);
    const std::string own = ",private-key=" + key + ",certificate=" + pem + ",ca-certificate=";
    uint64_t          row = 0;
    for (const auto& remote : {"tcp:127.0.0.1:" + tcp, "ssl:127.0.0.1:" + tls + own + pem}) {
        Cluster cluster(remote, brisk);
        cluster.Follow();
        cluster.Commit({{Insert, Base(++row, std::string(30, 'x') + remote.front())}});
        ExpectSameAs(server);
    }
    const std::pair<std::string, std::string> refused[] = {
        {own + (folder_ / "stranger.pem"), "certificate verify failed"},
        {own + (folder_ / "nobody.pem"), "nobody.pem: "},
    };
    for (const auto& [credentials, reason] : refused)
        ExpectRefusal(reason, [&, &own = credentials] {
            Cluster("ssl:127.0.0.1:" + tls + own, {50ms, 1000ms, 5ms, 5ms});
        });
}

TEST_F(ServersTest, ADeviceGoesThereAndComesBack)
{
    OvsdbServer server(folder_, "first", Role::Alone);
    sources::LoadJson(TARND_PROJECT_ROOT "/data/access-switch.json");
    const std::string  device = sources::DumpJson();
    std::vector<Write> writes;
    for (const Table& table : standin::Tables())
        standin::ForEachRow(table, [&](const Row& row) { writes.push_back({Insert, row}); });
    Cluster writer(server.Remote(), brisk);
    writer.Follow();
    writer.Commit(writes);
    EXPECT_EQ(sources::DumpJson(), device);
    standin::Reset();
    const Cluster reader(server.Remote(), brisk);
    EXPECT_EQ(sources::DumpJson(), device);
}

// ---- a cluster ----

// Three servers, and somebody who writes through them, whichever is there.
class ClusterOfThree : public ServersTest {
protected:
    void SetUp() override
    {
        ServersTest::SetUp();
        if (IsSkipped())
            return;
        servers_[0] = std::make_unique<OvsdbServer>(folder_, "first", Role::First);
        servers_[1] = std::make_unique<OvsdbServer>(folder_, "second", Role::Further);
        servers_[2] = std::make_unique<OvsdbServer>(folder_, "third", Role::Further);
    }

    OvsdbServer* Leader()
    {
        const auto leader = std::ranges::find_if(servers_, &OvsdbServer::IsLeader);
        return leader == servers_.end() ? nullptr : leader->get();
    }

    // Tries again where it fails, or the answer is lost: it can't be carried out twice.
    void Write(uint64_t number)
    {
        for (size_t attempt = 0;; ++attempt) {
            try {
                OvsdbClient client(servers_[(number + attempt) % 3]->Path());
                client.Transact(NumberedWrites(number));
                return;
            } catch (const std::exception& error) {
                if (std::string(error.what()).find("identical values") != std::string::npos)
                    return;
                std::this_thread::sleep_for(20ms);
            }
        }
    }

    std::array<std::unique_ptr<OvsdbServer>, 3> servers_;
};

TEST_F(ClusterOfThree, EveryCommittedChangeIsOneEventThoughLeadersDie)
{
    OvsdbClient(servers_[0]->Path()).Transact({NewRow("if_phy", {{"if_index", 1}})});
    EXPECT_TRUE(Eventually([&] { return Leader() != nullptr; }));
    Cluster cluster(
        servers_[0]->Remote() + "," + servers_[1]->Remote() + "," + servers_[2]->Remote(), brisk);
    Events events;
    cluster.Follow();
    constexpr uint64_t rounds = 2, each = 150;
    for (uint64_t round = 0; round < rounds; ++round) {
        std::jthread writer([&] {
            for (uint64_t i = 1; i <= each; ++i)
                Write(round * each + i);
        });
        EXPECT_TRUE(Eventually([&] { return Speed(1) > round * each + each / 4; }));
        OvsdbServer* leader = Leader();
        ASSERT_NE(leader, nullptr);
        EXPECT_EQ(cluster.Server(), leader->Remote());
        leader->Stop(SIGKILL);
        writer.join();
        EXPECT_TRUE(Eventually([&] { return Speed(1) == (round + 1) * each; }));
        EXPECT_NE(cluster.Server(), leader->Remote());
        ExpectSameAs(*Leader());
        leader->Start();
    }
    EXPECT_TRUE(Eventually([&] { return Events::Count("if_base") >= rounds * each; }));
    ExpectEveryChangeOnce(Events::Take(), rounds * each);
}

}  // namespace
