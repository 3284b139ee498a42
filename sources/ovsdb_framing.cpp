#include "sources/ovsdb_framing.h"

#include <stdexcept>

namespace sources::ovsdb {
namespace {

constexpr size_t longestMessage = size_t{1} << 30;
constexpr int deepest = 64;

}  // namespace

std::optional<std::string> Framing::Next()
{
    while (scanned_ < bytes_.size()) {
        if (!Scan(bytes_[scanned_++])) {
            continue;
        }
        const std::string message = bytes_.substr(begin_, scanned_ - begin_);
        begin_ = scanned_;
        return message;
    }
    bytes_.erase(0, begin_);
    scanned_ -= begin_;
    begin_ = 0;
    if (bytes_.size() > longestMessage) {
        throw std::runtime_error("a message never ends");
    }
    return std::nullopt;
}

bool Framing::Scan(char c)
{
    if (inString_) {
        inString_ = c != '"' || escaped_;
        escaped_ = c == '\\' && !escaped_;
        return false;
    }
    inString_ = c == '"';
    if (c == '{' || c == '[') {
        ++depth_;
    } else if (c == '}' || c == ']') {
        --depth_;
    }
    const bool isBlank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
    if (depth_ < 0 || depth_ > deepest || (depth_ == 0 && !isBlank && c != '}')) {
        throw std::runtime_error("what comes is not JSON");
    }
    return c == '}' && depth_ == 0;
}

}  // namespace sources::ovsdb
