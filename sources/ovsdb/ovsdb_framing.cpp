#include "sources/ovsdb/ovsdb_framing.h"

#include <stdexcept>

namespace sources::ovsdb {
namespace {

constexpr int DEEPEST = 64;

}  // namespace

std::optional<std::string> Framing::Next()
{
    while (scanned_ < bytes_.size()) {
        if (!Scan(bytes_[scanned_++])) {
            continue;
        }
        CheckLimits();
        std::string message = bytes_.substr(begin_, scanned_ - begin_);
        begin_ = scanned_;
        values_ = 0;
        return message;
    }
    bytes_.erase(0, begin_);
    scanned_ -= begin_;
    begin_ = 0;
    CheckLimits();
    return std::nullopt;
}

bool Framing::Scan(char c)
{
    const bool wasInside = extent_.Depth() > 0;
    const bool isStructure = !extent_.IsInString();
    const bool ends = extent_.Next(c);
    const bool isBlank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
    const bool begins = c == '{' || isBlank;
    const int depth = extent_.Depth();
    if (depth > DEEPEST || (!wasInside && !begins)) {
        throw std::runtime_error("the server sends something that is not JSON-RPC");
    }
    if (isStructure && (c == ',' || c == '{' || c == '[')) {
        ++values_;
    }
    return ends;
}

void Framing::CheckLimits() const
{
    if (scanned_ - begin_ > limits_.longestMessage) {
        throw std::runtime_error("the server sends a message of more than " +
                                 std::to_string(limits_.longestMessage) + " bytes");
    }
    if (values_ > limits_.mostValues) {
        throw std::runtime_error("the server sends a message of more than " +
                                 std::to_string(limits_.mostValues) + " values");
    }
}

}  // namespace sources::ovsdb
