#include "shell/functions/argument.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include <standin/store.h>

#include "shell/table_lookup.h"
#include "shell/words.h"

namespace shell {
namespace {

[[noreturn]] void Refuse(const Argument& argument, const std::string& reason)
{
    throw UsageError(std::string(argument.name) + ": " + reason);
}

std::string NamesIn(NamedNumbers names)
{
    std::string text;
    for (const NamedNumber& named : names) {
        text += ", " + std::string(named.name);
    }
    return text;
}

uint32_t Ipv4FromWord(const Argument& argument, const std::string& word)
{
    in_addr network{};
    if (inet_pton(AF_INET, word.c_str(), &network) != 1) {
        Refuse(argument, "\"" + word + "\" is not an IPv4 address such as 192.0.2.1");
    }
    return ntohl(network.s_addr);
}

}  // namespace

uint64_t NumberFromWord(const Argument& argument, const std::string& word, uint64_t highest)
{
    highest = std::min(highest, argument.highest);
    if (argument.form == Form::Ipv4 && word.find('.') != std::string::npos) {
        return Ipv4FromWord(argument, word);
    }
    if (const auto named = NumberOf(argument.names, word)) {
        return *named;
    }
    const bool hexadecimal = word.starts_with("0x");
    const char* const begin = word.data() + (hexadecimal ? 2 : 0);
    const char* const end = word.data() + word.size();
    uint64_t number = 0;
    const auto [stopped, overflow] = std::from_chars(begin, end, number, hexadecimal ? 16 : 10);
    if (stopped != end || begin == end) {
        Refuse(
            argument,
            "\"" + word + "\" is not a number" +
                (argument.names.empty() ? "" : " and none of" + NamesIn(argument.names).substr(1)));
    }
    if (overflow != std::errc() || number > highest) {
        Refuse(argument, word + " is out of range 0 to " + std::to_string(highest));
    }
    return number;
}

std::string WordBeside(const Argument& argument, const Json& value)
{
    if (!value.is_number_unsigned()) {
        return "";
    }
    const bool isIfIndex = argument.field == "if_index";
    return isIfIndex ? InterfaceName(value) : std::string(NameOf(argument.names, value));
}

Json NumberToJson(Form form, uint64_t number)
{
    if (form == Form::Ipv4) {
        return standin::Ipv4ToText(static_cast<uint32_t>(number));
    }
    if (form != Form::Hex) {
        return number;
    }
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(number));
    return text.data();
}

}  // namespace shell
