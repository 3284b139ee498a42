#include "sources/json/json_extent.h"

namespace sources {

bool JsonExtent::Next(char c)
{
    if (inString_) {
        inString_ = c != '"' || escaped_;
        escaped_ = c == '\\' && !escaped_;
        return false;
    }
    inString_ = c == '"';
    if (c == '{' || c == '[') {
        ++depth_;
        return false;
    }
    if (c != '}' && c != ']') {
        return false;
    }
    --depth_;
    return depth_ == 0;
}

}  // namespace sources
