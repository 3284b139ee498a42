// The ovsdb source with real servers, which the tests start, stop and kill.
#include <algorithm>
#include <csignal>
#include <fstream>
#include <thread>

#include "sources/ovsdb/ovsdb_source.h"
#include "support/fault_injection.h"
#include "support/ovsdb_server.h"
#include "support/recorded_changes.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using namespace support;
using sources::OvsdbSource;
using sources::RowWrite;
using sources::ovsdb::ColumnsOf;
using sources::ovsdb::RowToWire;
using standin::Row;
using standin::Table;
using Role = OvsdbServer::Role;
using enum sources::WriteKind;

using namespace std::chrono_literals;

constexpr sources::OvsdbLimits brisk{10'000ms, 300ms, 20ms, 200ms};

Wire NewRow(const std::string& table, const Wire& row)
{
    return {{"op", "insert"}, {"table", table}, {"row", row}};
}

class ServersTest : public PlatformTest {
protected:
    void SetUp() override
    {
        if (support::Run("command -v ovsdb-server ovsdb-tool").status != 0) {
            GTEST_SKIP() << "ovsdb-server and ovsdb-tool are not installed";
        }
        PlatformTest::SetUp();
    }

    const Folder folder_;
};

// The server's rows and the database's, in any order.
void ExpectSameAs(const OvsdbServer& server)
{
    std::vector<Row> there;
    for (const Table& table : standin::Tables()) {
        const Wire results = server.Transact(
            {{{"op", "select"}, {"table", ColumnsOf(table).name}, {"where", Wire::array()}}});
        for (const Wire& row : results.at(0).at("rows")) {
            there.push_back(sources::ovsdb::RowFromWire(table, row));
        }
    }
    EXPECT_TRUE(std::ranges::is_permutation(AllRows(), there));
}

// Expects the action to throw an exception whose text contains this reason.
template <typename Action>
void ExpectRefusal(const std::string& reason, const Action& action)
{
    const std::string refusal = RefusalOf(action);
    EXPECT_NE(refusal.find(reason), std::string::npos) << refusal;
}

TEST_F(ServersTest, WritesComeBackAsChangesOrAreRefused)
{
    const OvsdbServer server(folder_);
    writes::Write(writes::Insert, {Phy(99)});  // not on the server: deleted
    const RecordedChanges events;
    OvsdbSource cluster(server.Remote(), brisk);
    cluster.Follow();
    cluster.Commit({{Insert, Phy(1, 10)}});
    EXPECT_EQ(Speed(1), 10U);
    cluster.Commit({{Update, Phy(1, 11)}});
    cluster.Commit({{Replace, Phy(1, 12)}});
    cluster.Commit({{Replace, Phy(2, 20)}});
    cluster.Commit({{Delete, Phy(1)}, {Insert, Phy(3, 30)}, {Replace, Phy(3, 31)}});
    EXPECT_TRUE(Eventually([] { return RecordedChanges::Count("if_phy") >= 7; }));
    const std::vector<RecordedChange> expected = {
        {"if_phy", 99, 0, {}}, {"if_phy", 1, {}, 10}, {"if_phy", 1, 10, 11}, {"if_phy", 1, 11, 12},
        {"if_phy", 2, {}, 20}, {"if_phy", 1, 12, {}}, {"if_phy", 3, {}, 31}};
    EXPECT_EQ(RecordedChanges::Take(), expected);

    cluster.Commit({{Insert, Base(1, "one")}});
    const std::pair<std::vector<RowWrite>, std::string> refused[] = {
        {{{Insert, Phy(4)}, {Insert, Phy(2)}},
         "identical values (2) for index on column \"if_index\""},
        {{{Insert, Base(2, "one")}}, "for index on columns"},
        {{{Update, Phy(5)}}, "if_phy: if_index 5: there is no such row"},
        {{{Delete, Phy(5)}}, "if_phy: if_index 5: there is no such row"},
        {{{Insert, Base(3, "\xff")}}, "UTF-8"},
    };
    for (const auto& [writes, reason] : refused) {
        ExpectRefusal(reason, [&, &asked = writes] { cluster.Commit(asked); });
    }
    ExpectSameAs(server);
}

// With transactions in JSON by another client, and a server that stops and restarts.
TEST_F(ServersTest, TheReplicaEqualsTheServerAfterEachRound)
{
    OvsdbServer server(folder_);
    OvsdbSource cluster(server.Remote(), brisk);
    cluster.Follow();
    RandomRows random(2);
    for (uint64_t round = 0; round < 6; ++round) {
        if (round == 2 || round == 4) {
            server.Stop(round == 2 ? SIGTERM : SIGKILL);
            EXPECT_TRUE(Eventually([&] { return cluster.Server().empty(); }));
            server.Start();
        }
        std::vector<Wire> operations;
        for (Row row : AllRows()) {
            if (random.Below(4) > 0) {
                continue;
            }
            const Table& table = row.Description();
            Wire change = {{"op", "delete"},
                           {"table", ColumnsOf(table).name},
                           {"where", sources::ovsdb::KeyCondition(row)}};
            random.Fill(row, table.fields[random.Below(table.fields.size())]);
            if (random.Below(3) > 0) {
                change.update({{"op", "update"}, {"row", RowToWire(row)}});
            }
            operations.push_back(change);
        }
        for (const Row& row : random.ForAllTables(2)) {
            operations.push_back(NewRow(ColumnsOf(row.Description()).name, RowToWire(row)));
        }
        operations.push_back(NewRow("if_phy", {{"if_index", 1000 + round}}));
        server.Transact(operations);
        EXPECT_TRUE(Eventually([&] { return standin::Find(Phy(1000 + round)).has_value(); }));
        ExpectSameAs(server);
    }
}

TEST_F(ServersTest, ASilentServerIsDroppedAndTheTablesStay)
{
    OvsdbServer first(folder_);
    OvsdbServer second(folder_, "second");
    first.Transact({NewRow("if_phy", {{"if_index", 1}, {"speed", 10}})});
    OvsdbSource cluster(first.Remote() + "," + second.Remote(), {300ms, 40ms, 10ms, 20ms});
    cluster.Follow();
    EXPECT_EQ(cluster.State().role, "standalone");
    EXPECT_TRUE(cluster.State().connected && !cluster.State().lost);
    std::this_thread::sleep_for(200ms);  // an idle server replies to probes
    EXPECT_EQ(TakeLog().size(), 0U);

    second.Stop(SIGTERM);
    first.Signal(SIGSTOP);
    ExpectRefusal("is not known", [&] { cluster.Commit({{Insert, Phy(2)}}); });
    EXPECT_EQ(Speed(1), 10U);
    EXPECT_TRUE(Eventually([&] { return cluster.Server().empty(); }));
    EXPECT_TRUE(cluster.State().lost && !cluster.State().connected);
    ExpectRefusal("no server can be followed", [&] { cluster.Commit({{Insert, Phy(2)}}); });
    EXPECT_NE(TakeLogText().find(first.Remote() + ": the server has been silent for too long: the "
                                                  "tables stay as they are"),
              std::string::npos);

    // The next one has other contents: the difference is written.
    second.Start();
    EXPECT_TRUE(Eventually([&] { return cluster.Server() == second.Remote(); }));
    EXPECT_TRUE(cluster.State().connected && !cluster.State().lost);
    EXPECT_EQ(standin::CountRows(*standin::FindTable("if_phy")), 0U);
    EXPECT_NE(TakeLogText().find(second.Remote() + " is followed"), std::string::npos);
}

// The server's port on this address, behind it.
std::string WithPort(const Folder& folder, const std::string& name, const std::string& address)
{
    const auto port = support::Run("sed -n 's/.*:" + address + ": listening on port //p' " +
                                   folder / name + ".log" + " | tr -d '\\n'");
    return address + ":" + port.output;
}

// Certificates and keys in a folder: "ca" and "stranger" are authorities that signed themselves,
// "board" and "expired" are signed by "ca", and "locked.key" has a password.
void MakeCertificates(const Folder& folder)
{
    const std::string script = "cd " + folder / "" + R"( && exec 2>/dev/null
new="-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -subj /CN="
for name in ca stranger; do
    openssl req -x509 -nodes $new$name -keyout $name.key -out $name.pem || exit
done
for name in board expired; do
    days=1; [ $name = board ] || days=-1
    openssl req -nodes $new$name -keyout $name.key -out $name.csr &&
        openssl x509 -req -in $name.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days $days \
            -out $name.pem || exit
done
openssl ec -in board.key -aes128 -passout pass:x -out locked.key
: >empty.key)";
    EXPECT_EQ(support::Run(script).status, 0);
}

TEST_F(ServersTest, TcpAndTlsServersAreFollowedAndTlsFaultsAreNamed)
{
    MakeCertificates(folder_);
    const auto options = [&](const std::string& name, const std::string& address) {
        return "--remote=pssl:0:" + address + " --private-key=" + folder_ / name +
               ".key --certificate=" + folder_ / name + ".pem --ca-cert=" + folder_ / "ca.pem";
    };
    const OvsdbServer server(folder_, "first", Role::Alone,
                             "--remote=ptcp:0:127.0.0.1 " + options("board", "127.0.0.2"));
    const OvsdbServer expired(folder_, "second", Role::Alone, options("expired", "127.0.0.3"));
    const OvsdbServer selfSigned(folder_, "third", Role::Alone, options("stranger", "127.0.0.4"));
    const auto tls = [&](const std::string& address, const std::string& key = "board.key",
                         const std::string& authority = "ca.pem") {
        return "ssl:" + address + ",private-key=" + folder_ / key +
               ",certificate=" + folder_ / "board.pem" + ",ca-certificate=" + folder_ / authority;
    };
    const std::string tcp = WithPort(folder_, "first", "127.0.0.1");
    const std::string good = WithPort(folder_, "first", "127.0.0.2");
    uint64_t row = 0;
    for (const auto& remote :
         {"tcp:" + tcp, "tcp:localhost" + tcp.substr(tcp.find(':')), tls(good)}) {
        OvsdbSource cluster(remote, brisk);
        cluster.Follow();
        ++row;
        cluster.Commit({{Insert, Base(row, std::string(30, 'x') + std::to_string(row))}});
        ExpectSameAs(server);
    }
    const std::pair<std::string, std::string> refused[] = {
        {tls(WithPort(folder_, "second", "127.0.0.3")), "certificate has expired"},
        {tls(WithPort(folder_, "third", "127.0.0.4")), "signed certificate"},
        {tls(good, "board.key", "stranger.pem"), "self-signed certificate in certificate chain"},
        {tls(tcp), "ssl:" + tcp + ": "},  // plain text is not tried
        {tls(good, "stranger.key"), "stranger.key: key values mismatch"},
        {tls(good, "locked.key"), "locked.key: the key is encrypted"},
        {tls(good, "empty.key"), "empty.key: the file is empty"},
        {tls(good, "board.key", "none.pem"), "none.pem: No such file"},
        {tls(good, "board.pem"), "board.pem: "},
        {"tcp:no-such-host.invalid:1", "no-such-host.invalid:1: "},
    };
    for (const auto& [remote, reason] : refused) {
        ExpectRefusal(reason, [&, &given = remote] {
            OvsdbSource(given,
                        {.requestTimeout = 500ms, .initialBackoff = 20ms, .connectTimeout = 200ms});
        });
    }
}

// Without waiting for requestTimeout.
TEST_F(ServersTest, AMissingTableEndsTheFirstAttempt)
{
    Wire schema = Wire::parse(TextOf(TARND_PROJECT_ROOT "/data/tarnd_qrb.ovsschema"));
    schema["tables"].erase("vlan");
    const std::string file = folder_ / "schema";
    std::ofstream(file) << schema;
    const OvsdbServer server(folder_, "first", Role::Alone, "", file);
    const auto begin = std::chrono::steady_clock::now();
    ExpectRefusal("vlan", [&] { OvsdbSource(server.Remote(), brisk); });
    EXPECT_LT(std::chrono::steady_clock::now() - begin, brisk.requestTimeout / 2);
}

TEST_F(ServersTest, RowsOfAnyContentsAreStoredAndReadInOrder)
{
    const OvsdbServer server(folder_);
    const auto rows = RandomRows(1).ForAllTables(10);
    std::vector<RowWrite> writes;
    for (const Row& row : rows) {
        writes.push_back({Insert, row});
    }
    OvsdbSource writer(server.Remote(), brisk);
    writer.Follow();
    writer.Commit(writes);
    EXPECT_EQ(AllRows(), rows);
    standin::Reset();
    const OvsdbSource newcomer(server.Remote(), brisk);
    EXPECT_EQ(AllRows(), rows);
}

// ---- a cluster ----

// Row 1's speed and a row of its own, in one transaction.
std::vector<Wire> NumberedWrites(uint64_t number)
{
    return {{{"op", "update"},
             {"table", "if_phy"},
             {"where", Wire::array({Wire::array({"if_index", "==", 1})})},
             {"row", {{"speed", number}}}},
            NewRow("if_base",
                   {{"if_index", number}, {"if_name", std::to_string(number)}, {"place", number}})};
}

// The speed of row 1 only grows, each change starting from the last value; each row is inserted
// once, in order.
void ExpectEveryChangeOnce(const std::vector<RecordedChange>& changes, uint64_t last)
{
    uint32_t speed = 0;
    uint64_t rows = 0;
    for (const RecordedChange& change : changes) {
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

// A client writes through all three servers while leaders are killed.
TEST_F(ServersTest, EveryCommittedChangeIsOneEventWhileLeadersFail)
{
    OvsdbServer first(folder_, "first", Role::First);
    OvsdbServer second(folder_, "second", Role::Further);
    OvsdbServer third(folder_, "third", Role::Further);
    OvsdbServer* const servers[] = {&first, &second, &third};
    // Retries after a failure or a lost reply; the transaction can't be committed twice.
    const auto write = [&](uint64_t number) {
        for (uint64_t attempt = number;; ++attempt) {
            const std::string refusal =
                RefusalOf([&] { servers[attempt % 3]->Transact(NumberedWrites(number)); });
            if (refusal.empty() || refusal.find("identical values") != std::string::npos) {
                return;
            }
            std::this_thread::sleep_for(20ms);
        }
    };
    first.Transact({NewRow("if_phy", {{"if_index", 1}})});
    OvsdbSource cluster(first.Remote() + "," + second.Remote() + "," + third.Remote(), brisk);
    const auto followed = [&]() -> OvsdbServer& {
        const auto* found = std::end(servers);
        EXPECT_TRUE(Eventually([&] {
            found = std::ranges::find(servers, cluster.Server(), &OvsdbServer::Remote);
            return found != std::end(servers);
        }));
        return **found;
    };
    const RecordedChanges events;
    cluster.Follow();
    constexpr uint64_t rounds = 2, each = 150;
    for (uint64_t round = 0; round < rounds; ++round) {
        std::jthread writer([&] {
            for (uint64_t i = 1; i <= each; ++i) {
                write(round * each + i);
            }
        });
        EXPECT_TRUE(Eventually([&] { return Speed(1) > round * each + each / 4; }));
        OvsdbServer& leader = followed();
        EXPECT_TRUE(leader.IsLeader());
        leader.Stop(SIGKILL);
        writer.join();
        EXPECT_TRUE(Eventually([&] { return Speed(1) == (round + 1) * each; }));
        EXPECT_NE(cluster.Server(), leader.Remote());
        ExpectSameAs(followed());
        leader.Start();
    }
    EXPECT_TRUE(Eventually([&] { return RecordedChanges::Count("if_base") >= rounds * each; }));
    ExpectEveryChangeOnce(RecordedChanges::Take(), rounds * each);
}

}  // namespace
