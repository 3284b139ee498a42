#include "shell/named_numbers.h"

#include <strings.h>

#include <algorithm>

namespace shell {
namespace {

constexpr NamedNumber DUPLEX_NAMES[] = {{1, "full"}, {0, "half"}};
constexpr NamedNumber YES_NO_NAMES[] = {{1, "yes"}, {0, "no"}};
constexpr NamedNumber ACTIVITY_NAMES[] = {{1, "active"}, {0, "inactive"}};
constexpr NamedNumber ACTION_NAMES[] = {{1, "permit"}, {0, "deny"}};

struct FieldValueNames {
    std::string_view table;
    std::string_view field;
    NamedNumbers names;
};

constexpr FieldValueNames FIELD_VALUE_NAMES[] = {
    {"if_phy", "phy_state", STORED_STATES},   {"if_phy", "duplex", DUPLEX_NAMES},
    {"if_link", "link_state", STORED_STATES}, {"if_route", "route_state", STORED_STATES},
    {"port", "switch_port", YES_NO_NAMES},    {"vlan", "state", ACTIVITY_NAMES},
    {"acl_group", "isipv6", YES_NO_NAMES},    {"acl_adv", "action", ACTION_NAMES},
    {"acl_rule_id", "action", ACTION_NAMES}};

}  // namespace

std::string_view NameOf(NamedNumbers names, uint64_t number)
{
    const auto found = std::ranges::find_if(
        names, [=](const NamedNumber& candidate) { return candidate.number == number; });
    return found != names.end() ? found->name : "";
}

std::optional<uint32_t> NumberOf(NamedNumbers names, std::string_view name)
{
    for (const NamedNumber& candidate : names) {
        if (candidate.name.size() == name.size() &&
            strncasecmp(candidate.name.data(), name.data(), name.size()) == 0) {
            return candidate.number;
        }
    }
    return std::nullopt;
}

NamedNumbers ValueNames(std::string_view table, std::string_view field)
{
    for (const FieldValueNames& known : FIELD_VALUE_NAMES) {
        if (known.table == table && known.field == field) {
            return known.names;
        }
    }
    return {};
}

}  // namespace shell
