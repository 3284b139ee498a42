#include "sources/json/json_place.h"

#include <string_view>

namespace sources {
namespace {

constexpr std::string_view BETWEEN_TOKENS = " \t\r\n,:";

size_t CountValues(const Json& value)
{
    size_t count = 1;
    if (value.is_structured()) {
        for (const Json& member : value) {
            count += CountValues(member);
        }
    }
    return count;
}

}  // namespace

void PlacedText::Advance()
{
    const auto c = static_cast<char>(text_.sbumpc());
    if (awaitsToken_ && BETWEEN_TOKENS.find(c) == std::string_view::npos) {
        begin_ = next_;
        awaitsToken_ = false;
    }
    if (c == '\n') {
        ++next_.line;
        next_.column = 1;
    } else {
        ++next_.column;
    }
}

size_t ValueNumber(const Json& document, const std::string& path)
{
    if (!document.is_structured()) {
        return 0;
    }
    size_t number = 1;
    for (const auto& member : document.items()) {
        const std::string step = "/" + member.key();
        if (path == step || path.starts_with(step + "/")) {
            return number + ValueNumber(member.value(), path.substr(step.size()));
        }
        number += CountValues(member.value());
    }
    return 0;
}

}  // namespace sources
