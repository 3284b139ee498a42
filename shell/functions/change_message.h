// Builds a database message, for functions that take one.
#pragma once

#include <functional>

#include <tarnd_platform/orm_subscription.h>

#include "shell/output/json_text.h"

namespace shell {

enum class MessagePosition : uint8_t { BeforeRow, OnRow };

// Subscribes to a table, rewrites an interface's row unchanged, and runs the action on the
// resulting message, on this thread. Throws standin::Error if there is no such row.
void OnMessage(const char* table, uint32_t ifIndex, MessagePosition position,
               const std::function<void(ORM_MESSAGE)>& action);

// Returns the fields of a record whose memory layout is that of its table.
Json FieldsOf(const char* table, const void* record);

}  // namespace shell
