// A set of ids in JSON: [1, "10-20", 4094]. One text, "1,10-20,4094", is accepted too.
#pragma once

#include <cstdint>
#include <span>

#include <standin/tables.h>

#include "sources/json/json_error.h"

namespace sources {

Json SetToJson(std::span<const uint8_t> bits);

// Sets the bits of the ids in the row. Throws JsonError for a value that is neither an id nor a
// range of ids of the field.
void AddSet(standin::Row& row, const standin::Field& field, const Json& value);

}  // namespace sources
