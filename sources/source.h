// Where the database's contents come from, and where writes go.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <standin/store.h>

namespace sources {

enum class WriteKind : uint8_t { Insert, Update, Replace, Delete };

struct RowWrite {
    WriteKind kind;
    standin::Row row;
};

// What a source knows about its data and about the server that it has them from.
struct SourceState {
    using Time = std::chrono::system_clock::time_point;

    std::string server;             // that is followed; empty: none, or not a source with servers
    std::string role;               // of that server: "leader", "follower" or "standalone"
    std::optional<Time> connected;  // since when that server is followed
    std::optional<Time> lost;       // since when none is followed: the data are stale
    std::optional<Time> loaded;     // when the data were read, by a source that follows no changes
    std::string lastError;          // why the source can't be followed; empty: it can
};

// A source fills the database when it is constructed, or throws std::runtime_error.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // Starts a thread that writes each change of what the source mirrors. Nothing by default.
    virtual void Follow() {}

    // Carries out several writes, all or none. Throws standin::Error, and has then changed nothing.
    // By default the writes go to this process's database.
    virtual void Commit(const std::vector<RowWrite>& writes);

    // Any thread. By default the data are current.
    virtual SourceState State() const { return {}; }
};

// What a source reports while its caller waits.
struct SourceProgress {
    std::function<void()> onRow;  // a row was read from a file
    // A wait for this, such as a server, has taken a second. Also from Commit, on its thread.
    std::function<void(const std::string& what)> onWait;
};

// Opens "host", "ovsdb:" followed by servers as sources/ovsdb/ovsdb_servers.h describes them, or
// the path of a JSON file. Throws std::runtime_error.
std::unique_ptr<Source> OpenSource(const std::string& name, const SourceProgress& progress);

// Whether OpenSource takes the name as the path of a JSON file.
bool IsFile(const std::string& name);

}  // namespace sources
