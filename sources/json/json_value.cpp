#include "sources/json/json_value.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "sources/json/json_set.h"

namespace sources {
namespace {

using standin::Field;
using standin::Kind;

using Mac = std::array<uint8_t, 6>;

uint64_t LittleEndian(std::span<const uint8_t> bytes)
{
    uint64_t number = 0;
    for (size_t i = bytes.size(); i-- > 0;) {
        number = number << 8 | bytes[i];
    }
    return number;
}

std::string TextOf(std::span<const uint8_t> bytes)
{
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
}

uint64_t Ipv4FromJson(const Json& value)
{
    const auto* text = value.get_ptr<const std::string*>();
    in_addr network{};
    if (text == nullptr || inet_pton(AF_INET, text->c_str(), &network) != 1) {
        RefuseType(value, "an IPv4 address such as \"192.0.2.1\"");
    }
    return ntohl(network.s_addr);
}

bool TakeMac(const std::string& text, Mac& mac)
{
    if (text.size() != mac.size() * 3 - 1) {
        return false;
    }
    for (size_t i = 0; i < mac.size(); ++i) {
        const char* digits = text.data() + i * 3;
        if (std::from_chars(digits, digits + 2, mac[i], 16).ptr != digits + 2) {
            return false;
        }
        if (i > 0 && digits[-1] != ':') {
            return false;
        }
    }
    return true;
}

Mac MacFromJson(const Json& value)
{
    const auto* text = value.get_ptr<const std::string*>();
    Mac mac{};
    if (text == nullptr || !TakeMac(*text, mac)) {
        RefuseType(value, "a MAC address such as \"02:00:00:00:00:01\"");
    }
    return mac;
}

const std::string& TextFromJson(const Field& field, const Json& value)
{
    const auto* text = value.get_ptr<const std::string*>();
    const uint32_t longest = standin::LongestText(field);
    if (text == nullptr || text->size() > longest) {
        RefuseType(value, "a text of up to " + std::to_string(longest) + " bytes");
    }
    if (text->find('\0') != std::string::npos) {
        RefuseType(value, "a text without NUL");
    }
    return *text;
}

}  // namespace

std::string MacToText(std::span<const uint8_t> bytes)
{
    std::string text;
    for (const uint8_t byte : bytes) {
        std::array<char, 4> part{};
        std::snprintf(part.data(), part.size(), ":%02x", byte);
        text += part.data();
    }
    return text.substr(1);
}

Json ValueToJson(Kind kind, std::span<const uint8_t> bytes)
{
    switch (kind) {
        case Kind::Number:
            return LittleEndian(bytes);
        case Kind::Ipv4:
            return standin::Ipv4ToText(static_cast<uint32_t>(LittleEndian(bytes)));
        case Kind::Mac:
            return MacToText(bytes);
        case Kind::Text:
            return TextOf(bytes);
        case Kind::Set:
            return SetToJson(bytes);
    }
    return nullptr;
}

void SetFromJson(standin::Row& row, const Field& field, const Json& value)
{
    switch (field.kind) {
        case Kind::Number:
        case Kind::Ipv4:
            row.Set(field.name, NumberFromJson(field, value));
            break;
        case Kind::Mac:
            row.SetBytes(field.name, MacFromJson(value));
            break;
        case Kind::Text:
            row.Set(field.name, TextFromJson(field, value));
            break;
        case Kind::Set:
            AddSet(row, field, value);
            break;
    }
}

uint64_t NumberFromJson(const Field& field, const Json& value)
{
    if (field.kind == Kind::Ipv4) {
        return Ipv4FromJson(value);
    }
    return WholeNumber(value, ~uint64_t{0} >> (64 - 8 * field.width));
}

}  // namespace sources
