#include "sources/json/json_error.h"

namespace sources {
namespace {

std::string Shown(const Json& value)
{
    constexpr size_t LONGEST = 80;
    if (value.is_structured()) {
        return std::string("an ") + value.type_name();
    }
    const std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    return text.size() > LONGEST ? text.substr(0, LONGEST) + "..." : text;
}

}  // namespace

JsonError::JsonError(const std::string& reason, const std::string& path)
    : Error(path.empty() ? reason : path + ": " + reason), reason_(reason), path_(path)
{
}

void RefuseType(const Json& value, const std::string& expected)
{
    throw JsonError(Shown(value) + " is not " + expected);
}

void RefuseRange(const std::string& number, uint64_t highest)
{
    throw JsonError(number + " is out of range 0 to " + std::to_string(highest));
}

uint64_t WholeNumber(const Json& value, uint64_t highest)
{
    if (!value.is_number_integer()) {
        RefuseType(value, "a whole number");
    }
    if (value < 0 || value.get<uint64_t>() > highest) {
        RefuseRange(Shown(value), highest);
    }
    return value.get<uint64_t>();
}

}  // namespace sources
