// What a subscription covers, from its JSON definition.
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

// Nothing where the text is no definition, or names a table or an operation that there isn't.
std::optional<Definition> ParseDefinition(std::string_view text);

}  // namespace standin
