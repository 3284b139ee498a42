// The interface of data sources: they fill the database, follow changes and execute writes.
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

// The state of a source: its data and the server that provides them.
struct SourceState {
    using Time = std::chrono::system_clock::time_point;

    std::string server;             // the followed server; empty: none, or a source without servers
    std::string role;               // of the server: "leader", "follower" or "standalone"
    std::optional<Time> connected;  // time since which the server is followed
    std::optional<Time> lost;       // time since which no server is followed: the data are stale
    std::optional<Time> loaded;     // time of loading, for a source that does not follow changes
    std::string lastError;          // why the source can't be followed; empty: no error
};

// A source fills the database when it is constructed, or throws std::runtime_error.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // Starts a thread that mirrors each later change into the database. Does nothing by default.
    virtual void Follow() {}

    // Executes the writes as one transaction. Throws standin::Error if it fails; nothing has
    // changed then. By default the transaction is executed on the stand-in database of this
    // process.
    virtual void Commit(const std::vector<RowWrite>& writes);

    // Any thread. By default the data are current.
    virtual SourceState State() const { return {}; }
};

// Progress callbacks for the time in which the caller is blocked.
struct SourceProgress {
    std::function<void()> onRow;  // a row was read from a file
    // A wait has taken a second; what names the thing that is waited for. Called on the thread that
    // waits, also during Commit.
    std::function<void(const std::string& what)> onWait;
};

// Opens "host", "ovsdb:" followed by servers as sources/ovsdb/ovsdb_servers.h describes them, or
// the path of a JSON file. Throws std::runtime_error.
std::unique_ptr<Source> OpenSource(const std::string& name, const SourceProgress& progress);

// Whether OpenSource takes the name as the path of a JSON file.
bool IsFile(const std::string& name);

}  // namespace sources
