// Parses the JSON definition of a subscription: its table and operations.
#pragma once

#include <optional>
#include <string_view>

#include "store/table_store.h"

namespace standin {

struct Definition {
    const TableStore* store;
    uint32_t events;  // a bit for each ORM_EVENT_*

    bool Covers(const TableStore& changed, uint32_t event) const
    {
        return store == &changed && (events >> event & 1) != 0;
    }
};

// No value if the text is not a definition, or if its table or an operation is unknown.
std::optional<Definition> ParseDefinition(std::string_view text);

}  // namespace standin
