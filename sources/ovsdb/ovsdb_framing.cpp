#include "sources/ovsdb/ovsdb_framing.h"

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
    const bool wasInside = extent_.Depth() > 0;
    const bool ends = extent_.Next(c);
    const bool isBlank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
    const bool begins = c == '{' || isBlank;
    const int depth = extent_.Depth();
    if (depth < 0 || depth > deepest || (!wasInside && !begins)) {
        throw std::runtime_error("what comes is not JSON");
    }
    return ends;
}

}  // namespace sources::ovsdb
