// Where each message ends in a stream of JSON objects with nothing between them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sources/json/json_extent.h"

namespace sources::ovsdb {

class Framing {
public:
    void Add(std::string_view bytes) { bytes_ += bytes; }

    // The next whole message. Throws std::runtime_error for what is no object, or never ends.
    std::optional<std::string> Next();

private:
    bool Scan(char c);  // whether the message ends with this character

    std::string bytes_;
    size_t begin_ = 0;  // of the message
    size_t scanned_ = 0;
    JsonExtent extent_;
};

}  // namespace sources::ovsdb
