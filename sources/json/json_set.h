// A set of ids as people write it: [1, "10-20", 4094]. The whole as one text, "1,10-20,4094", is
// read too.
#pragma once

#include <cstdint>
#include <span>

#include <standin/tables.h>

#include "sources/json/json_error.h"

namespace sources {

Json SetToJson(std::span<const uint8_t> bits);

// Turns the bits on in the row. Throws JsonError for what is no id and no range of ids of the
// field.
void AddSet(standin::Row& row, const standin::Field& field, const Json& value);

}  // namespace sources
