// The tables from servers, as far as it needs none, or one that talks nonsense.
#include "sources/cluster.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "support/changes.h"
#include "support/network.h"
#include "support/ovsdb.h"
#include "support/platform.h"
#include "support/rows.h"

namespace {

using sources::Cluster;
using sources::ovsdb::Replica;
using standin::Row;
using standin::Table;
using standin::Transaction;
using support::Base;
using support::Change;
using support::Events;
using support::Eventually;
using support::Phy;
using support::Speed;
using support::Wire;

using namespace std::chrono_literals;

class ClusterTest : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        support::WatchPlatform(false);
    }
};

TEST_F(ClusterTest, TheKeptSchemaIsUpToDate)
{
    std::ostringstream kept;
    kept << std::ifstream(TARND_PROJECT_ROOT "/data/tarnd_qrb.ovsschema").rdbuf();
    EXPECT_EQ(kept.str(), sources::ovsdb::Schema().dump(2) + "\n")
        << "to be made anew: ovsdb_schema > data/tarnd_qrb.ovsschema";
}

TEST_F(ClusterTest, RowsOfAnyContentsComeBack)
{
    support::RandomRows random(1);
    for (const Table& table : standin::Tables()) {
        for (int round = 0; round < 10; ++round) {
            const Row row = random.Next(table);
            EXPECT_EQ(sources::ovsdb::RowFromWire(
                          table, Wire::parse(sources::ovsdb::RowToWire(row).dump())),
                      row);
        }
    }
}

// What the servers say of one table's rows, for a replica.
Wire Rows(const char* table, const Wire& rows)
{
    return {{table, rows}};
}

TEST_F(ClusterTest, ARowThatBreaksARuleIsReportedAndSkipped)
{
    Replica     replica;
    std::string umlauts;  // 80 characters, and twice as many bytes
    for (int i = 0; i < 80; ++i)
        umlauts += "\xc3\xbc";
    replica.TakeContents(
        {{"if_base",
          {{"a", {{"initial", {{"if_index", 1}, {"if_name", "one"}, {"description", umlauts}}}}},
           {"b", {{"initial", {{"if_index", 2}, {"if_name", "two"}}}}}}},
         {"Fib_ConfigNhpStandard",
          {{"c", {{"initial", {{"nhpIndex", 7}, {"next_hop", "10.0.0.256"}}}}}}}});
    EXPECT_EQ(support::RowsOf(*standin::FindTable("if_base")).size(), 1U);
    std::string log;
    for (const auto& line : support::TakeLog())
        log += line.text;
    EXPECT_NE(log.find("if_base: if_index 1: /description: "), std::string::npos) << log;
    EXPECT_NE(
        log.find("Fib.ConfigNhpStandard: nhpIndex 7: /next_hop: \"10.0.0.256\" is not an IPv4"),
        std::string::npos)
        << log;

    // It comes once it keeps the rules; one that stops keeping them stays as it was last.
    replica.TakeChanges(Rows("if_base", {{"a", {{"modify", {{"description", "short"}}}}},
                                         {"b", {{"modify", {{"description", umlauts}}}}}}));
    EXPECT_EQ(standin::Find(Base(1, ""))->Text("description"), "short");
    EXPECT_EQ(standin::Find(Base(2, ""))->Text("if_name"), "two");
    EXPECT_EQ(support::TakeLog().size(), 1U);
    replica.TakeChanges(Rows(
        "if_base", {{"b", {{"modify", {{"description", ""}, {"if_name", "zwei"}, {"mtu", 9}}}}}}));
    EXPECT_EQ(standin::Find(Base(2, ""))->Text("if_name"), "zwei");
    replica.TakeChanges(Rows("if_base", {{"a", {{"delete", nullptr}}}}));
    EXPECT_FALSE(standin::Find(Base(1, "")));
}

TEST_F(ClusterTest, KeysChangeHandsInOneTransaction)
{
    Replica    replica;
    const auto name = [](uint64_t index) {
        return std::string(standin::Find(Base(index, ""))->Text("if_name"));
    };
    const auto named = [](const char* text) { return Wire{{"modify", {{"if_name", text}}}}; };
    replica.TakeContents(
        Rows("if_base", {{"a", {{"initial", {{"if_index", 1}, {"if_name", "x"}}}}},
                         {"b", {{"initial", {{"if_index", 2}, {"if_name", "y"}}}}}}));
    replica.TakeChanges(Rows("if_base", {{"a", named("y")}, {"b", named("x")}}));
    EXPECT_EQ(name(1), "y");
    EXPECT_EQ(name(2), "x");

    // A row under one that has its key waits behind it.
    replica.TakeChanges(
        Rows("if_base", {{"c", {{"insert", {{"if_index", 3}, {"if_name", "x"}}}}}}));
    EXPECT_EQ(support::TakeLog().at(0).text,
              "if_base: if_index 3: another row has its key: not taken over\n");
    EXPECT_FALSE(standin::Find(Base(3, "")));
    replica.TakeChanges(Rows("if_base", {{"b", named("z")}}));
    EXPECT_EQ(name(2), "z");
    EXPECT_EQ(name(3), "x");

    // Deleted and made again under its key, a row has changed.
    const Events events;
    replica.TakeContents(Rows("if_phy", {{"d", {{"initial", {{"if_index", 1}, {"speed", 5}}}}}}));
    replica.TakeChanges(Rows("if_phy", {{"d", {{"delete", nullptr}}},
                                        {"e", {{"insert", {{"if_index", 1}, {"speed", 6}}}}}}));
    EXPECT_TRUE(Eventually([] { return Events::Count("if_phy") >= 2; }));
    EXPECT_EQ(Events::Take().back(), (Change{"if_phy", 1, 5, 6}));
}

TEST_F(ClusterTest, ServersAreNamedInManyWays)
{
    const auto servers = sources::ovsdb::ParseServers(
        "unix:/a,tcp:h:1,ssl:[::1]:2,private-key=k,certificate=c,ca-certificate=a");
    EXPECT_EQ(servers.all.size(), 3U);
    EXPECT_EQ(servers.all[2].host, "::1");
    for (const char* wrong : {"", "unix", "tcp:h", "tcp::1", "tcp:h:", "ssl:h:1", "unix:/a,x=y"})
        EXPECT_THROW(sources::ovsdb::ParseServers(wrong), standin::Error) << wrong;
    EXPECT_THROW(Cluster("unix:/nowhere/socket", {200ms, 100ms, 10ms, 10ms}), standin::Error);
}

// ---- a server that talks nonsense ----

// Accepts one connection after another, and says what it is to say, whatever it is asked.
class Babbler {
public:
    Babbler(const std::string& path, std::string words)
        : words_(std::move(words)), listener_(socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
        listen(listener_, 8);
        thread_ = std::jthread([this] { Serve(); });
    }
    ~Babbler()
    {
        shutdown(listener_, SHUT_RDWR);
        thread_.join();
        close(listener_);
    }
    Babbler(const Babbler&)            = delete;
    Babbler& operator=(const Babbler&) = delete;

private:
    void Serve() const
    {
        for (;;) {
            const int peer = accept(listener_, nullptr, nullptr);
            if (peer < 0)
                return;
            send(peer, words_.data(), words_.size(), MSG_NOSIGNAL);
            char ignored[4096];
            while (recv(peer, ignored, sizeof ignored, 0) > 0) {
            }
            close(peer);
        }
    }

    const std::string words_;
    const int         listener_;
    std::jthread      thread_;
};

TEST_F(ClusterTest, NonsenseIsReportedAndChangesNothing)
{
    const std::string here =
        R"({"id":"server","error":null,"result":{"Database":{"u":{"initial":{"name":"tarnd_qrb","model":"standalone","connected":true,"leader":true}}}}})";
    const auto contents = [&](const std::string& result) {
        return here + R"({"id":"contents","error":null,"result":)" + result + "}";
    };
    const std::string                         zero = R"("00000000-0000-0000-0000-000000000000")";
    const std::pair<std::string, std::string> nonsense[] = {
        {"HTTP/1.0 400 Bad Request", "not JSON"},
        {"[]", "not JSON"},
        {"}{", "not JSON"},
        {std::string(1000, '['), "not JSON"},
        {R"({"id":,})", "parse error"},
        {R"({"id":"server","result":null,"error":"unknown method"})", "unknown method"},
        {R"({"id":"server","result":{},"error":null})", "no database"},
        {R"({"id":7,"result":[],"error":null})", "not asked"},
        {R"({"id":"contents","result":7,"error":null})", "cannot use"},
        {R"({"method":"steal","params":[],"id":null})", "unasked"},
        {contents("[]"), "out of range"},
        {contents("[false," + zero + R"(,{"no_table":{"a":{"initial":{}}}}])"), "no_table"},
        {contents("[false," + zero + R"(,{"port":{"a":{"modify":{}}}}])"), "initial"},
        {contents("[true," + zero + R"(,{"port":{"a":{"modify":{}}}}])"), "never there"},
        {contents("[false," + zero + R"(,{"port":{"a":{"initial":{"vlan_bitmap_1":["set"]}}}}])"),
         "out of range"},
        {here, "silent"},
    };
    Transaction before;
    before.Insert(Phy(1, 5));
    before.Commit();
    const support::Folder folder;
    for (const auto& [words, reason] : nonsense) {
        std::filesystem::remove(folder / "s");
        const Babbler babbler(folder / "s", words);
        try {
            const auto patience = words == here ? 500ms : 20ms;
            Cluster("unix:" + folder / "s", {patience, 20ms, 5ms, 5ms});
            ADD_FAILURE() << words;
        } catch (const standin::Error& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << words << "\n"
                                                                                 << error.what();
        }
        EXPECT_EQ(Speed(1), 5U);
    }
}

}  // namespace
