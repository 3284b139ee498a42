// Converts between a field of a row and its JSON value: numbers, "10.0.0.1",
// "02:00:00:00:00:01", texts, and sets as ids and ranges.
#pragma once

#include <cstdint>
#include <span>

#include <standin/tables.h>

#include "sources/json/json_error.h"

namespace sources {

// "02:00:00:00:00:01" for its six bytes.
std::string MacToText(std::span<const uint8_t> bytes);

Json ValueToJson(standin::Kind kind, std::span<const uint8_t> bytes);

// Throw JsonError for a value of the wrong type, out of range or too long.
void SetFromJson(standin::Row& row, const standin::Field& field, const Json& value);
uint64_t NumberFromJson(const standin::Field& field, const Json& value);  // Number, Ipv4

}  // namespace sources
