// Splits a stream of bytes into JSON objects. Enforces the limits on a message's size.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sources/json/json_extent.h"
#include "sources/ovsdb/ovsdb_limits.h"

namespace sources::ovsdb {

class Framing {
public:
    explicit Framing(const OvsdbLimits& limits) : limits_(limits) {}

    void Add(std::string_view bytes) { bytes_ += bytes; }

    // Returns the next complete message, if any. Throws std::runtime_error for input that is not an
    // object, and for a message that exceeds a limit.
    std::optional<std::string> Next();

    // Whether the beginning of a message has arrived without its end.
    bool IsInsideMessage() const { return extent_.Depth() > 0; }

private:
    bool Scan(char c);  // returns whether the message ends with this character
    void CheckLimits() const;

    const OvsdbLimits& limits_;
    std::string bytes_;
    size_t begin_ = 0;  // of the message
    size_t scanned_ = 0;
    size_t values_ = 0;  // of the message, so far
    JsonExtent extent_;
};

}  // namespace sources::ovsdb
