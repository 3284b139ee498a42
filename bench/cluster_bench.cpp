// Cost of following an ovsdb-server. bench/cluster starts the server and runs these steps:
//
//   fill COUNT   inserts COUNT routes and one interface, which is queried later
//   start        time until all rows are stored, compared with only receiving them
//   storm        changes received per second, and the cost of queries at the same time
//   delay        time from a change to its callback, compared with ovsdb-client monitor
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <thread>

#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/interface_lookup.h>

#include "sources/ovsdb/ovsdb_source.h"

namespace {

using sources::OvsdbSource;
using sources::RowWrite;
using sources::WriteKind;
using sources::ovsdb::Json;
using standin::Row;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

double SecondsSince(Clock::time_point begin)
{
    return Seconds(Clock::now() - begin).count();
}

double ThreadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A client that only sends requests and receives responses.
class BareClient {
public:
    explicit BareClient(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
            throw std::runtime_error("cannot connect to " + path);
        }
    }
    ~BareClient() { close(socket_); }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    void Send(const char* method, const Json& parameters)
    {
        const std::string text = Json{{"id", 1}, {"method", method}, {"params", parameters}}.dump();
        if (write(socket_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("cannot send a request");
        }
    }

    // Returns the size of the next message.
    size_t Receive()
    {
        for (;;) {
            if (const auto message = framing_.Next()) {
                return message->size();
            }
            char bytes[1 << 16];
            const ssize_t size = read(socket_, bytes, sizeof bytes);
            if (size <= 0) {
                throw std::runtime_error("the server closed the connection");
            }
            framing_.Add({bytes, static_cast<size_t>(size)});
        }
    }

    void SetSpeed(uint64_t speed)
    {
        const Json where = Json::array({Json::array({"if_index", "==", 1})});
        Send("transact", Json::array({sources::ovsdb::DATABASE_NAME,
                                      {{"op", "update"},
                                       {"table", "if_phy"},
                                       {"where", where},
                                       {"row", {{"speed", speed}}}}}));
    }

private:
    int socket_;
    sources::OvsdbLimits limits_;
    sources::ovsdb::Framing framing_{limits_};
};

// ---- callbacks ----

std::atomic<uint64_t> callbacks;
std::atomic<uint32_t> lastSpeed;
std::atomic<int64_t> lastCallback;  // ticks of the steady clock

void OnChange(ORM_MESSAGE message, uint32_t)
{
    uint32_t speed = 0;
    for (uint8_t end = 0; OrmSubFetchNext(message, &end) == 0 && end == 0;) {
        OrmSubExtractData(message, ORM_OBJECT_NEW, 0);
        OrmGetFieldById(message, 1, &speed, sizeof speed);
        ++callbacks;
    }
    lastCallback = Clock::now().time_since_epoch().count();
    lastSpeed = speed;
}

void Subscribe()
{
    ORM_SESSION_PARAM parameter = 0;
    ORM_SESSION session = 0;
    OrmCreateSessionParam("channel:", "osc", &parameter);
    OrmOpenSubSession(parameter, nullptr, &session);
    OrmDestroySessionParam(parameter);
    OrmSubscribe(session, "bench", R"({"label_name":"if_phy","events":[{"type":"update"}]})",
                 OnChange, nullptr, "bench");
}

// ---- fill, start ----

void Fill(const std::string& path, uint64_t count)
{
    constexpr uint64_t ROWS_AT_ONCE = 10'000;
    OvsdbSource cluster("unix:" + path);
    cluster.Follow();
    std::vector<RowWrite> writes = {
        {WriteKind::Insert, Row("if_phy").Set("if_index", 1)},
        {WriteKind::Insert, Row("if_base").Set("if_index", 1).Set("if_name", "Ethernet0/0/1")}};
    for (uint64_t i = 0; i < count; ++i) {
        writes.push_back({WriteKind::Insert, Row("Fib.ConfigIpv4Fwd")
                                                 .Set("destAddr", 0x0a000000 + (i << 8))
                                                 .Set("prefixLen", 24)
                                                 .Set("nhpGroupId", i % 1000)});
        if (writes.size() >= ROWS_AT_ONCE || i + 1 == count) {
            cluster.Commit(std::exchange(writes, {}));
        }
    }
}

void Start(const std::string& path)
{
    BareClient bare(path);
    Json tables;
    for (const standin::Table& table : standin::Tables()) {
        tables[sources::ovsdb::ColumnsOf(table).name] = Json::array({Json::object()});
    }
    const auto bareBegin = Clock::now();
    bare.Send("monitor_cond", Json::array({sources::ovsdb::DATABASE_NAME, "bare", tables}));
    const size_t size = bare.Receive();
    const double bareSeconds = SecondsSince(bareBegin);

    const auto begin = Clock::now();
    const double own = ThreadSeconds();
    const OvsdbSource cluster("unix:" + path);
    const double seconds = SecondsSince(begin);
    const double spent = ThreadSeconds() - own;
    std::printf(
        "start with %zu routes: %.2f s, CPU time of the client %.2f s; only receiving the %zu MB: "
        "%.2f s; ratio %.2f\n",
        standin::CountRows(*standin::FindTable("Fib.ConfigIpv4Fwd")), seconds, spent, size >> 20,
        bareSeconds, seconds / bareSeconds);
}

// ---- storm ----

struct QueryCost {
    double wall;  // nanoseconds
    double own;   // CPU time of the thread
    double worst;
};

// Queries until goOn is false. The worst time is the 99.9th percentile.
QueryCost QueryWhile(const std::atomic<bool>& goOn)
{
    char name[64];
    std::vector<double> walls;
    const double own = ThreadSeconds();
    while (goOn) {
        const auto begin = Clock::now();
        IF_INTF_GetIfNameByIfIndex(name, 1);
        walls.push_back(SecondsSince(begin) * 1e9);
    }
    const double spent = (ThreadSeconds() - own) * 1e9 / static_cast<double>(walls.size());
    std::ranges::sort(walls);
    return {walls[walls.size() / 2], spent, walls[walls.size() * 999 / 1000]};
}

void Print(const char* when, const QueryCost& cost)
{
    std::printf("query %s: median %.0f ns, 99.9th percentile %.0f ns, CPU time %.0f ns\n", when,
                cost.wall, cost.worst, cost.own);
}

constexpr uint64_t STORM_CHANGES = 20'000;

// Sends all changes as fast as the server takes them.
void SendChanges(const std::string& path)
{
    constexpr uint64_t IN_FLIGHT = 64;
    BareClient client(path);
    for (uint64_t sent = 0, done = 0; done < STORM_CHANGES; ++done) {
        for (; sent < STORM_CHANGES && sent < done + IN_FLIGHT; ++sent) {
            client.SetSpeed(sent + 1);
        }
        client.Receive();
    }
}

void Storm(const std::string& path)
{
    double alone = 0, followed = 0;  // the best of several rounds, in changes per second
    Subscribe();
    for (int round = 0; round < 5; ++round) {
        auto begin = Clock::now();
        SendChanges(path);
        alone = std::max(alone, STORM_CHANGES / SecondsSince(begin));

        OvsdbSource cluster("unix:" + path);
        cluster.Follow();
        callbacks = 0;
        lastSpeed = 0;
        begin = Clock::now();
        SendChanges(path);
        while (lastSpeed != STORM_CHANGES) {
            std::this_thread::yield();
        }
        followed = std::max(followed, STORM_CHANGES / SecondsSince(begin));
    }
    std::printf(
        "changes: %.0f per second, %lu callbacks for %lu changes; %.0f per second without a "
        "follower; ratio %.2f\n",
        followed, callbacks.load(), STORM_CHANGES, alone, followed / alone);

    OvsdbSource cluster("unix:" + path);
    cluster.Follow();
    std::atomic<bool> goOn = true;
    std::jthread calm([&] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        goOn = false;
    });
    Print("without changes", QueryWhile(goOn));
    calm.join();
    goOn = true;
    std::jthread storm([&] {
        SendChanges(path);
        goOn = false;
    });
    Print("during the changes", QueryWhile(goOn));
}

// ---- delay ----

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void Delay(const std::string& path)
{
    constexpr uint32_t CHANGES = 2000;
    constexpr uint32_t FIRST_SPEED = 1'000'000;
    OvsdbSource cluster("unix:" + path);
    Subscribe();
    cluster.Follow();
    const std::string command =
        "exec ovsdb-client --no-headings --format=csv monitor unix:" + path + " " +
        sources::ovsdb::DATABASE_NAME + " if_phy speed 2>/dev/null";
    FILE* const monitor = popen(command.c_str(), "r");
    BareClient client(path);
    char line[512];
    std::vector<double> callback, printed, responded;
    for (uint32_t i = 0; i < CHANGES; ++i) {
        const auto begin = Clock::now();
        client.SetSpeed(FIRST_SPEED + i);
        client.Receive();
        responded.push_back(SecondsSince(begin));
        const std::string wanted = ',' + std::to_string(FIRST_SPEED + i) + '\n';
        do {
            if (fgets(line, sizeof line, monitor) == nullptr) {
                throw std::runtime_error("ovsdb-client monitor ended");
            }
        } while (!std::string_view(line).ends_with(wanted));
        printed.push_back(SecondsSince(begin));
        while (lastSpeed != FIRST_SPEED + i) {
            std::this_thread::yield();
        }
        callback.push_back(
            Seconds(Clock::duration(lastCallback.load()) - begin.time_since_epoch()).count());
    }
    std::printf(
        "from a request: %.0f us to its response, %.0f us to the callback, %.0f us to the line "
        "of ovsdb-client monitor\n",
        Median(responded) * 1e6, Median(callback) * 1e6, Median(printed) * 1e6);
    // pclose would block: the monitor does not exit before its server.
}

int Run(int count, char** words)
{
    const std::string what = count > 2 ? words[2] : "";
    if (what == "fill" && count == 4) {
        Fill(words[1], std::stoull(words[3]));
    } else if (what == "start") {
        Start(words[1]);
    } else if (what == "storm") {
        Storm(words[1]);
    } else if (what == "delay") {
        Delay(words[1]);
    } else {
        throw std::runtime_error("usage: tarnd_cluster_bench SOCKET fill COUNT|start|storm|delay");
    }
    return 0;
}

}  // namespace

int main(int count, char** words)
{
    try {
        return Run(count, words);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
