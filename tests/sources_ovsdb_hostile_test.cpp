// Servers that violate the protocol, the schema or a time limit: the tables must not change.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <future>
#include <optional>
#include <random>
#include <thread>

#include "sources/ovsdb/ovsdb_source.h"
#include "support/fault_injection.h"
#include "support/ovsdb_server.h"
#include "support/recorded_changes.h"
#include "support/scripted_server.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using namespace support;
using sources::OvsdbLimits;
using sources::OvsdbSource;
using sources::RowWrite;
using sources::WriteKind;
using sources::ovsdb::Replica;
using standin::Row;

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr OvsdbLimits BRISK{.requestTimeout = 10'000ms,
                            .probeInterval = 10'000ms,
                            .initialBackoff = 1ms,
                            .longestBackoff = 1ms};

constexpr const char* TRANSACTION = "00000000-0000-4000-8000-000000000001";

std::string Uuid(int number)
{
    return "00000000-0000-4000-8000-0000000001" + std::to_string(10 + number);
}

// ---- a correct conversation, one server message for each stage ----

Wire ServerState()
{
    const Wire row = {{"name", "tarnd_qrb"}, {"model", "standalone"},
                      {"connected", true},   {"leader", true},
                      {"index", 7},          {"cid", {"uuid", Uuid(80)}}};
    return {{"Database", {{Uuid(81), {{"initial", row}}}}}};
}

// Every type of column, and a list.
Wire Contents()
{
    return {
        {"if_phy",
         {{Uuid(0), {{"initial", {{"if_index", 1}, {"speed", 5}, {"place", 1}}}}},
          {Uuid(1),
           {{"initial", {{"if_index", 2}, {"mac_addr", "02:00:00:00:00:01"}, {"place", 2}}}}}}},
        {"if_base", {{Uuid(2), {{"initial", {{"if_index", 1}, {"if_name", "one"}}}}}}},
        {"vlan",
         {{Uuid(3), {{"initial", {{"vlan_id", 10}, {"member_bitmap_1", {"set", {1, 2, 200}}}}}}}}},
        {"am_ipv4_address",
         {{Uuid(4),
           {{"initial",
             {{"if_index", 1},
              {"lists", "ipv4_address_list"},
              {"ipv4_address_list_address", {"map", {{0, "10.0.0.1"}, {1, "10.0.0.2"}}}},
              {"ipv4_address_list_masklen", {"map", {{0, 24}, {1, 24}}}}}}}}}}};
}

Wire Changes()
{
    return {
        {"if_phy",
         {{Uuid(0), {{"modify", {{"speed", 6}}}}},
          {Uuid(1), {{"delete", nullptr}}},
          {Uuid(5), {{"insert", {{"if_index", 3}, {"place", 3}}}}}}},
        {"vlan", {{Uuid(3), {{"modify", {{"member_bitmap_1", {"set", {2, 3}}}}}}}}},
        {"am_ipv4_address",
         {{Uuid(4), {{"modify", {{"ipv4_address_list_address", {"map", {{1, "10.0.0.3"}}}}}}}}}}};
}

Wire Reply(const Wire& id, const Wire& result)
{
    return {{"id", id}, {"result", result}, {"error", nullptr}};
}

Wire ServerReply()
{
    return Reply("server", ServerState());
}

Wire ContentsReply()
{
    return Reply("contents", {false, TRANSACTION, Contents()});
}

Wire ServerUpdate()
{
    const Wire tables = {{"Database", {{Uuid(81), {{"modify", {{"index", 8}}}}}}}};
    return {{"id", nullptr}, {"method", "update2"}, {"params", {"server", tables}}};
}

Wire ContentsUpdate()
{
    return {{"id", nullptr},
            {"method", "update3"},
            {"params", {"contents", "00000000-0000-4000-8000-000000000002", Changes()}}};
}

const std::vector<std::function<Wire()>> STAGES = {ServerReply, ContentsReply, ServerUpdate,
                                                   ContentsUpdate};

// ---- mutations of a message ----

const Wire& HostileValues()
{
    static const Wire values = [] {
        Wire deep;
        for (int i = 0; i < 40; ++i) {
            deep = Wire::array({deep});
        }
        return Wire::array({nullptr,
                            true,
                            -1,
                            4096,
                            INT64_MAX - 1,
                            INT64_MAX,
                            UINT64_MAX,
                            1e25,
                            1e300,
                            0.5,
                            "",
                            "x",
                            std::string(1000, 'x'),
                            "256.0.0.1",
                            "02:00:00:00:00:zz",
                            "\u00fc",
                            Wire::array(),
                            Wire::object(),
                            Wire::array({"set", nullptr}),
                            Wire::array({"set", {1, 1}}),
                            Wire::array({"map", {1}}),
                            Wire::array({"map", {{0, 1}, {0, 2}}}),
                            Wire::array({"uuid"}),
                            {{"initial", nullptr}},
                            {{"modify", {{"x", 1}}}},
                            deep});
    }();
    return values;
}

// Calls onNode for each value in the message, the message itself included.
void ForEachNode(Wire& node, const std::function<void(Wire& node)>& onNode)
{
    onNode(node);
    if (node.is_structured()) {
        for (Wire& child : node) {
            ForEachNode(child, onNode);
        }
    }
}

// Every message in which one value is replaced, one member is missing, or one has another name.
std::vector<std::string> Mutations(const Wire& message)
{
    std::vector<std::string> all;
    Wire copy = message;
    ForEachNode(copy, [&](Wire& node) {
        const Wire kept = node;
        for (const Wire& hostile : HostileValues()) {
            node = hostile;
            all.push_back(copy.dump());
        }
        node = kept;
        if (kept.is_object() && !kept.empty()) {
            node.erase(kept.begin().key());
            all.push_back(copy.dump());
            node["port"] = kept.begin().value();
            all.push_back(copy.dump());
        }
        node = kept;
    });
    return all;
}

class HostileTest : public PlatformTest {
protected:
    // Brings a client to this stage; returns false if it closes the connection before.
    static bool Lead(ScriptedPeer& peer, size_t stages)
    {
        for (size_t stage = 0; stage < stages; ++stage) {
            if (stage < 2 && !peer.Receive()) {
                return false;
            }
            peer.Send(STAGES[stage]().dump());
        }
        return stages >= 2 || peer.Receive();
    }

    // A client that follows the server, and its connection.
    struct Led {
        std::unique_ptr<ScriptedPeer> peer;
        std::unique_ptr<OvsdbSource> source;
    };
    static Led LeadNewClient(const ScriptedServer& server, const OvsdbLimits& limits)
    {
        Led led;
        auto opening = std::async([&] {
            auto opened = std::make_unique<OvsdbSource>(server.Remote(), limits);
            opened->Follow();
            return opened;
        });
        led.peer = std::make_unique<ScriptedPeer>(server.Accept());
        EXPECT_TRUE(Lead(*led.peer, 2) && led.peer->IsAlive());
        led.source = opening.get();
        return led;
    }

    // One log line for each loss, without messages of the JSON library.
    static void ExpectClearLines(const std::string& message)
    {
        const std::string log = TakeLogText();
        EXPECT_EQ(log.find("exception"), std::string::npos) << message << "\n" << log;
        EXPECT_LT(log.size(), 2000U) << message << "\n" << log;
    }

    const ScriptedServer server_;
};

// A quarter of the mutations, a different one in each run, unless all are requested.
std::vector<std::string> Chosen(std::vector<std::string> mutations, std::minstd_rand& random)
{
    if (std::getenv("TARND_ALL_MUTATIONS") == nullptr) {
        std::erase_if(mutations, [&](const std::string&) { return random() % 4 != 0; });
    }
    return mutations;
}

// Each mutation of each message, after a correct conversation up to its stage. A refused message
// does not change the tables, and the next correct conversation succeeds.
TEST_F(HostileTest, RefusedMessagesDoNotChangeTheTables)
{
    Led led = LeadNewClient(server_, BRISK);
    led.peer.reset();
    const auto expected = AllRows();
    EXPECT_EQ(expected.size(), 5U);
    const auto seed = std::random_device()();
    std::minstd_rand random(seed);
    RecordProperty("seed", std::to_string(seed));
    size_t refused = 0;
    size_t accepted = 0;
    for (size_t stage = 0; stage < STAGES.size(); ++stage) {
        for (const std::string& message : Chosen(Mutations(STAGES[stage]()), random)) {
            TakeLogText();
            bool isAccepted = false;
            {
                ScriptedPeer peer(server_.Accept());
                EXPECT_TRUE(Lead(peer, stage)) << message;
                peer.Send(message);
                isAccepted = peer.IsAlive();
            }
            ExpectClearLines(message);
            if (isAccepted) {
                ScriptedPeer peer(server_.Accept());
                EXPECT_TRUE(Lead(peer, 2) && peer.IsAlive()) << message;
            }
            (isAccepted ? accepted : refused) += 1;
            EXPECT_TRUE(std::ranges::is_permutation(AllRows(), expected)) << message;
            if (HasFailure()) {
                return;
            }
        }
    }
    EXPECT_GT(refused, accepted) << accepted;
}

// ---- updates that contradict each other ----

TEST_F(HostileTest, ContradictingUpdatesAreRefused)
{
    Replica replica;
    const auto takeContents = [&](Wire tables) {
        replica.TakeContents(sources::ovsdb::ParseContents(tables));
    };
    const auto takeChanges = [&](Wire tables) {
        replica.TakeChanges(sources::ovsdb::ParseChanges(tables));
    };
    takeContents(Contents());
    const auto expected = AllRows();
    const Wire insert = {{"insert", {{"if_index", 9}}}};
    const std::pair<Wire, std::string> wrong[] = {
        {{{"if_phy", {{Uuid(8), insert}}}, {"port", {{Uuid(8), insert}}}}, "in two tables"},
        {{{"port", {{Uuid(0), {{"modify", {{"pvid", 1}}}}}}}}, "without having been inserted"},
        {{{"port", {{Uuid(0), {{"delete", nullptr}}}}}}, "without having been inserted"},
        {{{"if_phy", {{Uuid(0), insert}}}}, "inserted twice"},
        {{{"port", {{Uuid(0), insert}}}}, "inserted twice"},
        {{{"if_phy", {{Uuid(8), {{"modify", {{"speed", 1}}}}}}}}, "without having been inserted"},
        {{{"if_phy", {{Uuid(8), {{"initial", {{"speed", 1}}}}}}}}, "initial"},
        {{{"if_phy", {{Uuid(1), {{"delete", nullptr}}}, {Uuid(0), insert}}}}, "inserted twice"},
    };
    for (const auto& [changes, reason] : wrong) {
        const std::string refusal = RefusalOf([&, &given = changes] { takeChanges(given); });
        EXPECT_NE(refusal.find(reason), std::string::npos) << refusal << "\n" << changes;
        EXPECT_EQ(AllRows(), expected) << changes;
    }
    takeChanges(Changes());  // the refused updates have no effect
    EXPECT_EQ(Speed(1), 6U);
}

// With any place that the schema allows, new rows still get higher places.
TEST_F(HostileTest, AHighestPlaceLeavesPlacesForNewRows)
{
    Replica replica;
    for (const int64_t place : {INT64_MAX - 1, INT64_MAX}) {
        Wire tables = {{"if_phy", {{Uuid(0), {{"initial", {{"if_index", 1}, {"place", place}}}}}}}};
        replica.TakeContents(sources::ovsdb::ParseContents(tables));
        EXPECT_LT(replica.NextPlace(), 1000);
    }
}

// ---- replies to transactions ----

TEST_F(HostileTest, AReplyThatDoesNotMatchIsAFailure)
{
    Led led = LeadNewClient(server_, BRISK);
    led.peer.reset();
    const Wire inserted = {{"uuid", {"uuid", Uuid(9)}}};
    const Wire counted = {{"count", 1}};
    const Wire waited = Wire::object();
    const std::pair<Wire, std::string> replies[] = {
        {{inserted, waited, counted}, ""},
        {Wire::array(), "not known"},
        {{inserted}, "not known"},
        {{inserted, waited}, "not known"},
        {{inserted, waited, counted, counted}, "not known"},
        {{nullptr, nullptr, nullptr}, "not known"},
        {{inserted, waited, {{"count", 0}}}, "not known"},
        {{inserted, waited, {{"count", "1"}}}, "not known"},
        {{counted, waited, counted}, "not known"},
        {"done", "not known"},
        {nullptr, "not known"},
        {{inserted, {{"error", "timed out"}}, nullptr}, "there is no such row"},
        {{inserted, waited, {{"error", ""}}}, "unknown error"},
        {{inserted, waited, {{"error", 7}}}, "7"},
        {{inserted, waited, counted, {{"error", "x"}, {"details", "the whole"}}}, "the whole"},
    };
    for (const auto& [results, outcome] : replies) {
        ScriptedPeer peer(server_.Accept());
        EXPECT_TRUE(Lead(peer, 2) && peer.IsAlive());
        auto commit = std::async([&] {
            return RefusalOf([&] {
                led.source->Commit({{WriteKind::Insert, Phy(9)}, {WriteKind::Update, Phy(1, 7)}});
            });
        });
        const auto request = peer.Receive();
        EXPECT_TRUE(request);
        peer.Send(Reply(request->value("id", Wire()), results).dump());
        const std::string refusal = commit.get();
        EXPECT_EQ(refusal.empty(), outcome.empty()) << results << refusal;
        EXPECT_NE(refusal.find(outcome), std::string::npos) << results << refusal;
    }
}

// ---- sizes and times ----

TEST_F(HostileTest, LimitsOfSizeAndTimeEndTheConnection)
{
    OvsdbLimits small = BRISK;
    small.longestMessage = 1 << 16;
    small.mostValues = 1000;
    const struct {
        OvsdbLimits limits;
        std::string reason;
        std::function<void(ScriptedPeer&)> act;
    } cases[] = {
        {small, "a message of more than 65536 bytes",
         [](ScriptedPeer& peer) { peer.Send("{\"x\":\"" + std::string(1 << 20, 'x')); }},
        {small, "a message of more than 1000 values",
         [](ScriptedPeer& peer) {
             std::string values = "{\"x\":[0";
             for (int i = 0; i < 5000; ++i) {
                 values += ",0";
             }
             peer.Send(values);
         }},
        {BRISK, "does not read the replies",
         [](ScriptedPeer& peer) {
             const std::string echo =
                 R"({"id":1,"method":"echo","params":[")" + std::string(10'000, 'x') + "\"]}";
             std::string stream;
             for (int i = 0; i < 2000; ++i) {
                 stream += echo;
             }
             const auto end = Clock::now() + 5s;
             for (size_t sent = 0; sent < stream.size() && Clock::now() < end;) {
                 const size_t now = peer.SendSome(std::string_view(stream).substr(sent));
                 sent += now;
                 if (now == 0) {
                     std::this_thread::sleep_for(1ms);
                     if (!peer.Send("")) {
                         return;
                     }
                 }
             }
         }},
        {{.initialBackoff = 1ms, .messageTimeout = 200ms},
         "does not complete a message in time",
         [](ScriptedPeer& peer) {
             for (int i = 0; i < 100 && peer.Send(i == 0 ? "{\"x\":\"" : "x"); ++i) {
                 std::this_thread::sleep_for(10ms);
             }
         }},
        {{.probeInterval = 50ms, .initialBackoff = 1ms},
         "silent for too long",
         [](ScriptedPeer&) {}},
    };
    for (const auto& [limits, reason, act] : cases) {
        const ScriptedServer server;
        const Led led = LeadNewClient(server, limits);
        TakeLogText();
        act(*led.peer);
        std::string log;
        EXPECT_TRUE(Eventually([&, &expected = reason] {
            log += TakeLogText();
            return log.find(expected) != std::string::npos;
        })) << log;
    }
}

TEST_F(HostileTest, ATransactionWithoutReplyTimesOut)
{
    OvsdbLimits limits = BRISK;
    limits.requestTimeout = 300ms;
    const Led led = LeadNewClient(server_, limits);
    const auto begin = Clock::now();
    auto commit = std::async([&] {
        return RefusalOf([&] { led.source->Commit({{WriteKind::Insert, Phy(9)}}); });
    });
    while (commit.wait_for(20ms) == std::future_status::timeout && led.peer->IsAlive()) {
    }
    EXPECT_NE(commit.get().find("not known"), std::string::npos);
    EXPECT_LT(Clock::now() - begin, 3s);
}

// Servers that accept the connection and send nothing, before one that works.
TEST_F(HostileTest, HungServersDoNotDelayAWorkingOne)
{
    const ScriptedServer hung[3];
    std::string remotes;
    for (const ScriptedServer& server : hung) {
        remotes += server.Remote() + ",";
    }
    const auto begin = Clock::now();
    std::optional<ScriptedPeer> peer;  // connected until the source is closed
    std::jthread good([&] {
        peer.emplace(server_.Accept());
        EXPECT_TRUE(Lead(*peer, 2));
    });
    OvsdbLimits limits;
    limits.attemptDelay = 100ms;
    const OvsdbSource source(remotes + server_.Remote(), limits);
    EXPECT_EQ(source.Server(), server_.Remote());
    EXPECT_LT(Clock::now() - begin, 2s);
}

// The first server accepts the connection and sends nothing, the second does not answer a write.
TEST_F(HostileTest, WaitsOfMoreThanASecondAreReported)
{
    OvsdbLimits limits = BRISK;
    limits.requestTimeout = 1300ms;
    std::vector<std::string> waits;
    const auto onWait = [&](const std::string& what) { waits.push_back(what); };
    const std::string refusal = RefusalOf([&] { OvsdbSource(server_.Remote(), limits, onWait); });
    EXPECT_NE(refusal.find("no server can be followed"), std::string::npos) << refusal;
    EXPECT_EQ(waits, std::vector<std::string>{"a server"});

    const ScriptedServer second;
    std::optional<ScriptedPeer> peer;
    std::jthread serving([&] {
        peer.emplace(second.Accept());
        EXPECT_TRUE(Lead(*peer, 2) && peer->IsAlive());
    });
    OvsdbSource source(second.Remote(), limits, onWait);
    source.Follow();
    serving.join();
    EXPECT_NE(RefusalOf([&] {
                  source.Commit({{WriteKind::Insert, Phy(9)}});
              }).find("not known"),
              std::string::npos);
    EXPECT_EQ(waits.back(), second.Remote() + " to commit a transaction");
}

// The backoff grows although each connection receives the contents.
TEST_F(HostileTest, BackoffGrowsIfAServerClosesEachConnectionSoon)
{
    OvsdbLimits limits;
    limits.initialBackoff = 20ms;
    Led led = LeadNewClient(server_, limits);
    led.peer.reset();
    int attempts = 0;
    for (const auto end = Clock::now() + 1s; Clock::now() < end;) {
        if (server_.IsWanted(10ms)) {
            ScriptedPeer peer(server_.Accept());
            EXPECT_TRUE(Lead(peer, 2) && peer.IsAlive());
            ++attempts;
        }
    }
    EXPECT_GE(attempts, 2);
    EXPECT_LE(attempts, 8);  // 20 + 40 + ... ms, each at least half of it
}

}  // namespace
