// Where the database's contents come from, and where writes go.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <standin/store.h>

namespace sources {

struct Write {
    enum class Kind : uint8_t { Insert, Update, Replace, Delete };

    Kind kind;
    standin::Row row;
};

// A source fills the database when it is made, or throws std::runtime_error.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // From here on writes each change of what it mirrors, as it comes, on a thread of its own.
    virtual void Follow() {}

    // Several writes, all or nothing. Throws standin::Error, and has then changed nothing. Here:
    // to this process's database.
    virtual void Commit(const std::vector<Write>& writes);
};

}  // namespace sources
