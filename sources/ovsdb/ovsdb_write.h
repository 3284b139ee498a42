// Converts several writes into one transaction of the servers.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "sources/ovsdb/ovsdb_replica.h"
#include "sources/source.h"

namespace sources::ovsdb {

class Operations {
public:
    // The writes must outlive the operations. Rows that are in the replica are selected by their
    // ids, others by their keys.
    Operations(std::span<const RowWrite> writes, Replica& replica);

    // The parameters of the request, as JSON. Throws standin::Error for a text that is not UTF-8.
    std::string Parameters() const;

    // Throws standin::Error with the servers' reason if they refused the transaction, and
    // ProtocolError if the results do not belong to it.
    void Check(const Json& results) const;

private:
    // The state of the row with one key after the operations so far.
    struct KeyState {
        bool isPresent;
        std::optional<Json> id;  // how operations refer to the row, if it is known
    };
    using RowKey = std::pair<const standin::Table*, std::string>;

    KeyState& StateOf(const standin::Row& row);
    void Insert(const standin::Row& row);
    void Change(const standin::Row& row, Json operation);
    void Add(const standin::Row& row, Json operation);

    Replica& replica_;
    std::map<RowKey, KeyState> states_;
    Json operations_ = Json::array({DATABASE_NAME});
    std::vector<const standin::Row*> rows_;  // the row of each operation
};

}  // namespace sources::ovsdb
