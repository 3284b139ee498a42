// A message of the database, for functions that take one.
#pragma once

#include <functional>

#include <tarnd_platform/orm_subscription.h>

#include "shell/output/json_text.h"

namespace shell {

enum class MessagePosition : uint8_t { BeforeRow, OnRow };

// Subscribes to a table, writes an interface's row as it is, and runs the action on the message
// that tells of it, on this thread. Throws standin::Error where there is no such row.
void OnMessage(const char* table, uint32_t ifIndex, MessagePosition position,
               const std::function<void(ORM_MESSAGE)>& action);

// The fields of a record that stands in memory as its table has it.
Json FieldsOf(const char* table, const void* record);

}  // namespace shell
