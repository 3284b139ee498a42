// Several writes as a transaction of the servers.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "sources/ovsdb/ovsdb_schema.h"
#include "sources/source.h"

namespace sources::ovsdb {

// Why a request or an operation was refused, in the servers' words; empty where it was not.
std::string ReasonIn(const Json& answer);

class Operations {
public:
    // The writes must stay while it is in use. nextPlace: for each inserted row, behind all that
    // are there.
    Operations(std::span<const RowWrite> writes, const std::function<int64_t()>& nextPlace);

    // The parameters of the request, as JSON. Throws standin::Error for a text that is not UTF-8.
    std::string Parameters() const;

    // Throws standin::Error with the servers' reason where the transaction was refused.
    void Check(const Json& results) const;

private:
    void Add(const standin::Row& row, Json operation);
    void AddWhereItStands(const standin::Row& row, Json operation);

    Json operations_ = Json::array({database});
    std::vector<const standin::Row*> rows_;  // of each operation
};

}  // namespace sources::ovsdb
