#include "shell/functions/result_codes.h"

#include <algorithm>
#include <string_view>

namespace shell {

Meaning ResultCodes::Of(uint32_t code) const
{
    const auto found = std::ranges::find(cases, code, &Case::code);
    return found != cases.end() ? found->meaning : otherwise;
}

std::string ResultCodes::Help() const
{
    std::string text;
    for (const Case& known : cases) {
        text += CodeText(known.code) + " " + known.meaning.text + ", ";
    }
    const bool isValue = std::string_view(otherwise.text).empty();
    return text + (text.empty() ? "" : "else ") + (isValue ? "a value" : otherwise.text);
}

std::string CodeText(uint32_t code)
{
    return code == 0xFFFFFFFF ? "0xFFFFFFFF" : std::to_string(code);
}

}  // namespace shell
