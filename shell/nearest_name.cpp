#include "shell/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace shell {
namespace {

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Returns the case-insensitive Levenshtein distance.
size_t Distance(std::string_view a, std::string_view b)
{
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (Lower(a[i]) != Lower(b[j]) ? 1 : 0);
            diagonal = row[j + 1];
            row[j + 1] = std::min(changed, std::min(row[j], row[j + 1]) + 1);
        }
    }
    return row.back();
}

}  // namespace

std::string UnknownName(std::string_view kind, std::string_view name,
                        const std::vector<std::string>& names)
{
    std::string message = "unknown " + std::string(kind) + " " + std::string(name);
    const size_t most = std::max<size_t>(name.size() / 3, name.size() > 3 ? 2 : 1);
    const auto distance = [&](const std::string& other) {
        const size_t longer = std::max(name.size(), other.size());
        return longer - std::min(name.size(), other.size()) > most ? longer : Distance(name, other);
    };
    const auto nearest = std::ranges::min_element(names, {}, distance);
    if (nearest != names.end() && distance(*nearest) <= most) {
        message += "; did you mean " + *nearest + "?";
    }
    return message;
}

}  // namespace shell
