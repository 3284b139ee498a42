// The condition of a scan: every term's field has the term's bytes.
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
    // Terms "field = value" joined by " and "; nothing where the text is anything else.
    static std::optional<ScanCondition> Parse(const Table& table, std::string_view text);

    bool Matches(const uint8_t* record) const
    {
        return std::ranges::all_of(terms_, [=](const Term& term) {
            return std::memcmp(record + term.offset, term.bytes.data(), term.bytes.size()) == 0;
        });
    }
    bool IsEmpty() const { return terms_.empty(); }
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
