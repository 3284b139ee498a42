// A hash index over one key of a table's rows.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

#include <tsl/robin_set.h>

#include "store/stored_row.h"

namespace standin {

class KeyIndex {
public:
    explicit KeyIndex(const Key& key) : rows_(0, Hash{&key}, Equal{&key})
    {
        rows_.max_load_factor(0.8F);
    }

    const Key& Description() const { return *rows_.hash_function().key; }

    // Returns the row whose key has these bytes, or null.
    const StoredRow* Find(const uint8_t* bytes) const
    {
        const auto found = rows_.find(bytes);
        return found == rows_.end() ? nullptr : *found;
    }
    const StoredRow* FindLike(const StoredRow& row) const
    {
        return Find(row.Record() + Description().offset);
    }

    // Reserves space for another row, or shrinks an index that is nearly empty.
    void Reserve()
    {
        const size_t needed = (rows_.size() + 1) * 5 / 4 + 1;  // buckets, at most 0.8 of them used
        if (needed > rows_.bucket_count() || needed * 16 < rows_.bucket_count()) {
            rows_.rehash(needed);
        }
    }
    // Requires reserved space, and that no row has the key.
    // NOLINTNEXTLINE(bugprone-exception-escape)
    void Insert(const StoredRow& row) noexcept { rows_.insert(&row); }
    void Erase(const StoredRow& row) noexcept { rows_.erase(&row); }

private:
    static constexpr uint64_t GOLDEN_RATIO = 0x9E3779B97F4A7C15;  // of 2^64

    // The bytes of the key: of a row, or given directly.
    struct KeyBytes {
        const Key* key;

        const uint8_t* Of(const uint8_t* bytes) const { return bytes; }
        const uint8_t* Of(const StoredRow* row) const { return row->Record() + key->offset; }
    };
    struct Hash : KeyBytes {
        template <typename Keyed>
        size_t operator()(Keyed keyed) const
        {
            const uint8_t* bytes = Of(keyed);
            if (key->width == sizeof(uint32_t)) {  // most keys: Fibonacci hashing
                uint32_t number = 0;
                std::memcpy(&number, bytes, sizeof(number));
                return number * GOLDEN_RATIO >> 32;
            }
            return std::hash<std::string_view>()(
                {reinterpret_cast<const char*>(bytes), key->width});
        }
    };
    struct Equal : KeyBytes {
        using is_transparent = void;

        template <typename One, typename Other>
        bool operator()(One one, Other other) const
        {
            return std::memcmp(Of(one), Of(other), key->width) == 0;
        }
    };

    // The hash is stored with the pointer, which avoids most accesses to rows with another key.
    static constexpr bool STORE_HASH = true;
    tsl::robin_set<const StoredRow*, Hash, Equal, std::allocator<const StoredRow*>, STORE_HASH>
        rows_;
};

}  // namespace standin
