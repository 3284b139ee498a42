// The ovsdb source without a server, or with one that sends invalid messages.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

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
using sources::ovsdb::Replica;

using namespace std::chrono_literals;

class ClusterTest : public PlatformTest {};

TEST_F(ClusterTest, StoredSchemaIsUpToDate)
{
    EXPECT_EQ(TextOf(TARND_PROJECT_ROOT "/data/tarnd_qrb.ovsschema"),
              sources::ovsdb::Schema().dump(2) + "\n")
        << "regenerate it: ovsdb_schema > data/tarnd_qrb.ovsschema";
}

Wire Interface(uint64_t index, const std::string& name, const std::string& description = "")
{
    return {{"if_index", index}, {"if_name", name}, {"description", description}};
}

// A row's id; a test names rows by letters.
std::string Uuid(char name)
{
    return std::string(8, name) + "-0000-4000-8000-000000000000";
}

// The updates of one table, by the letters of its rows.
Wire Updates(const std::string& table, const Wire& byLetter)
{
    Wire rows = Wire::object();
    for (const auto& [letter, update] : byLetter.items()) {
        rows[Uuid(letter[0])] = update;
    }
    return {{table, rows}};
}

void TakeChanges(Replica& replica, const std::string& table, const Wire& byLetter)
{
    Wire tables = Updates(table, byLetter);
    replica.TakeChanges(sources::ovsdb::ParseChanges(tables));
}

void TakeContents(Replica& replica, const std::string& table, const Wire& byLetter)
{
    Wire tables = Updates(table, byLetter);
    replica.TakeContents(sources::ovsdb::ParseContents(tables));
}

std::string Names()
{
    std::string names;
    for (uint64_t index = 1; index <= 3; ++index) {
        const auto row = standin::Find(Base(index, ""));
        names += (row ? std::string(row->Text("if_name")) : "-") + " ";
    }
    return names;
}

// A row is present while the table can hold it.
TEST_F(ClusterTest, ARowThatTheTableCannotHoldIsReportedAndLeftOut)
{
    Replica replica;
    std::string tooLong;  // servers count characters, the table bytes
    for (int i = 0; i < 60; ++i) {
        tooLong += "\u00fc";
    }
    const struct {
        Wire changes;  // of the servers' rows, each by a name of its own
        std::string names;
        std::string report;
    } steps[] = {
        {{{"a", {{"insert", Interface(1, "one", tooLong)}}},
          {"b", {{"insert", Interface(2, "two")}}}},
         "- two - ",
         "if_base: if_index 1: /description: "},
        {{{"a", {{"modify", {{"description", ""}}}}},
          {"b", {{"modify", {{"description", tooLong}, {"if_name", "zwei"}}}}}},
         "one - - ",
         "if_base: if_index 2: /description: "},
        {{{"b", {{"modify", {{"description", ""}, {"mtu", 9}}}}}}, "one zwei - ", ""},
        // Rows swap keys in one transaction.
        {{{"a", {{"modify", {{"if_name", "zwei"}}}}}, {"b", {{"modify", {{"if_name", "one"}}}}}},
         "zwei one - ",
         ""},
        // Of two rows with one key only the first is present, until its key changes.
        {{{"c", {{"insert", Interface(3, "one")}}}},
         "zwei one - ",
         "if_base: if_index 3: another row has its key: the row is left out\n"},
        {{{"b", {{"modify", {{"if_name", "z"}}}}}}, "zwei z one ", ""},
        {{{"a", {{"delete", nullptr}}}}, "- z one ", ""},
    };
    for (const auto& [changes, names, report] : steps) {
        TakeChanges(replica, "if_base", changes);
        EXPECT_EQ(Names(), names);
        const std::string log = TakeLogText();
        EXPECT_TRUE(log.starts_with(report) && log.empty() == report.empty()) << log;
    }
    TakeContents(replica, "Fib_ConfigNhpStandard",
                 {{"d", {{"initial", {{"nhpIndex", 7}, {"next_hop", "256"}}}}}});
    EXPECT_EQ(Names(), "- - - ");
    EXPECT_TRUE(
        TakeLogText().starts_with("Fib.ConfigNhpStandard: nhpIndex 7: /next_hop: \"256\" is not"));
}

TEST_F(ClusterTest, ARowDeletedAndInsertedWithItsKeyIsAnUpdate)
{
    Replica replica;
    const RecordedChanges events;
    TakeContents(replica, "if_phy", {{"d", {{"initial", {{"if_index", 1}, {"speed", 5}}}}}});
    TakeChanges(
        replica, "if_phy",
        {{"d", {{"delete", nullptr}}}, {"e", {{"insert", {{"if_index", 1}, {"speed", 6}}}}}});
    EXPECT_TRUE(Eventually([] { return RecordedChanges::Count("if_phy") >= 2; }));
    EXPECT_EQ(RecordedChanges::Take().back(), (RecordedChange{"if_phy", 1, 5, 6}));
}

TEST_F(ClusterTest, ServerListsAreParsedOrRefused)
{
    const auto servers = sources::ovsdb::ParseServers(
        "unix:/a,tcp:h:1,ssl:[::1]:2,private-key=k,certificate=c,ca-certificate=a");
    EXPECT_EQ(servers.all.size(), 3U);
    EXPECT_EQ(servers.all[2].host, "::1");
    for (const char* wrong : {"", "unix", "tcp:h", "tcp::1", "tcp:h:", "ssl:h:1", "unix:/a,x=y",
                              "tcp:h:0", "tcp:h:99999", "tcp:h:1x", "unix:/a,request-timeout=0"}) {
        EXPECT_THROW(sources::ovsdb::ParseServers(wrong), standin::Error) << wrong;
    }
    EXPECT_THROW(
        OvsdbSource("unix:/nowhere/socket",
                    {.requestTimeout = 200ms, .initialBackoff = 10ms, .longestBackoff = 10ms}),
        standin::Error);
}

// The failure that is reported for a server that sends this text to every client.
std::string FaultOfServer(const std::string& words, std::chrono::milliseconds patience)
{
    const Folder folder;
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    (folder / "s").copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    listen(listener, 8);
    std::jthread server([&] {
        for (int peer = 0; (peer = accept(listener, nullptr, nullptr)) >= 0; close(peer)) {
            send(peer, words.data(), words.size(), MSG_NOSIGNAL);
            char ignored[4096];
            while (recv(peer, ignored, sizeof ignored, 0) > 0) {
            }
        }
    });
    const std::string fault = RefusalOf([&] {
        OvsdbSource("unix:" + folder / "s", {patience, 20ms, 5ms, 5ms});
    });
    shutdown(listener, SHUT_RDWR);
    server.join();
    close(listener);
    return fault;
}

TEST_F(ClusterTest, InvalidMessagesAreReportedAndChangeNothing)
{
    const std::string here =
        R"({"id":"server","error":null,"result":{"Database":{"u":{"initial":{"name":"tarnd_qrb","model":"standalone","connected":true,"leader":true}}}}})";
    const std::pair<std::string, std::string> nonsense[] = {
        {"HTTP/1.0 400 Bad Request", "not JSON-RPC"},
        {"[]", "not JSON-RPC"},
        {"}{", "not JSON-RPC"},
        {"{" + std::string(1000, '['), "not JSON-RPC"},
        {R"({"id":,})", "not JSON-RPC"},
        {R"({"id":"server","result":null,"error":"unknown method"})", "unknown method"},
        {R"({"id":"server","result":{},"error":null})", "no database"},
        {R"({"id":7,"result":[],"error":null})", "not sent"},
        {R"({"id":"contents","result":7,"error":null})", "not sent"},
        {R"({"method":"steal","params":["server"],"id":null})", "sends an unexpected steal"},
        {here + R"({"id":"contents","error":null,"result":[]})", "not an array"},
        {here, "silent"},
    };
    writes::Write(writes::Insert, {Phy(1, 5)});
    for (const auto& [words, reason] : nonsense) {
        std::string fault = "none";
        for (auto patience = 20ms; patience < 10s && fault.find(reason) == std::string::npos;
             patience *= 2) {  // a busy machine takes longer
            fault = FaultOfServer(words, patience);
        }
        EXPECT_NE(fault.find(reason), std::string::npos) << words << "\n" << fault;
        EXPECT_EQ(Speed(1), 5U);
    }
}

}  // namespace
