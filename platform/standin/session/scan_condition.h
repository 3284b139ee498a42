// The condition of a scan. A row matches if the field of every term has the term's value.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "standin/tables.h"

namespace standin {

class ScanCondition {
public:
    // Parses terms "field = value" joined by " and "; no value for any other text.
    static std::optional<ScanCondition> Parse(const Table& table, std::string_view text);

    bool Matches(const uint8_t* record) const
    {
        return std::ranges::all_of(terms_, [=](const Term& term) {
            return std::memcmp(record + term.offset, term.bytes.data(), term.bytes.size()) == 0;
        });
    }
    void Clear() { terms_.clear(); }

private:
    struct Term {
        uint32_t offset;
        std::vector<uint8_t> bytes;  // of the field's width
    };

    bool AddTerm(const Table& table, std::string_view name, std::string_view value);

    std::vector<Term> terms_;
};

}  // namespace standin
