// Finds rows by one of their keys: a flat hash table of row pointers, probed one by one.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "store/stored_row.h"

namespace standin {

class KeyIndex {
public:
    explicit KeyIndex(const Key& key) : KeyIndex(key, smallest) {}

    // The row whose key has these bytes, or null.
    const StoredRow* Find(const void* key) const
    {
        const uint64_t hash = HashOf(key);
        for (size_t at = Home(hash);; at = Next(at)) {
            const Bucket bucket = buckets_[at];
            if (bucket == empty) {
                return nullptr;
            }
            if (SameTag(bucket, hash) && SameKey(KeyOf(*RowIn(bucket)), key)) {
                return RowIn(bucket);
            }
        }
    }
    const StoredRow* FindLike(const StoredRow& row) const { return Find(KeyOf(row)); }

    void Insert(const StoredRow& row);  // no row has its key, and there is room
    void Remove(const StoredRow& row);
    void Exchange(const StoredRow& present, const StoredRow& other);  // of the same key

    bool SameKeyIn(const StoredRow& one, const StoredRow& other) const
    {
        return SameKey(KeyOf(one), KeyOf(other));
    }
    const Key& Description() const { return *key_; }

    // Whether rows more would leave the table too full, or leave it nearly empty.
    bool Fits(size_t more) const;
    KeyIndex Resized(size_t more) const;

private:
    KeyIndex(const Key& key, size_t buckets);

    // A row's address, and in the 16 bits that addresses leave unused a part of its key's hash,
    // which spares looking at most rows that are not the one.
    using Bucket = uint64_t;

    static constexpr size_t smallest = 16;
    static constexpr Bucket empty = 0;
    static constexpr unsigned addressBits = 48;
    static constexpr Bucket addressMask = (Bucket{1} << addressBits) - 1;

    static const StoredRow* RowIn(Bucket bucket)
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the tag is what the integer is for
        return reinterpret_cast<const StoredRow*>(bucket & addressMask);
    }
    static Bucket Tag(uint64_t hash) { return hash << 16 & ~addressMask; }
    static bool SameTag(Bucket bucket, uint64_t hash)
    {
        return (bucket & ~addressMask) == Tag(hash);
    }
    static Bucket Filled(const StoredRow& row, uint64_t hash)
    {
        return reinterpret_cast<uintptr_t>(&row) | Tag(hash);
    }

    const uint8_t* KeyOf(const StoredRow& row) const { return row.Record() + key_->offset; }
    uint64_t HashOf(const void* key) const;
    bool SameKey(const void* one, const void* other) const;

    // The place is the hash's upper end, the tag lies in its middle.
    size_t Home(uint64_t hash) const { return hash >> homeShift_; }
    size_t Next(size_t at) const { return (at + 1) & (buckets_.size() - 1); }
    size_t BucketOf(const StoredRow& row) const;

    const Key* key_;
    std::vector<Bucket> buckets_;  // a power of two, never full
    int homeShift_;
    size_t count_ = 0;
};

inline uint64_t MixBits(uint64_t one, uint64_t other)
{
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(one) * other;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

inline constexpr uint64_t goldenRatio = 0x9E3779B97F4A7C15;  // of 2^64

// Eight bytes at a time, the last of them zero-filled.
inline uint64_t HashBytes(const void* bytes, size_t size)
{
    constexpr uint64_t odd = 0xD6E8FEB86659FD93;

    const auto* at = static_cast<const uint8_t*>(bytes);
    uint64_t hash = odd + size;
    for (; size >= 8; at += 8, size -= 8) {
        uint64_t word = 0;
        std::memcpy(&word, at, 8);
        hash = MixBits(hash ^ word, goldenRatio);
    }
    uint64_t rest = 0;
    std::memcpy(&rest, at, size);
    return MixBits(hash ^ rest, goldenRatio);
}

inline uint64_t KeyIndex::HashOf(const void* key) const
{
    // Most keys are an index of four bytes, and neighbours are in use: multiples of the golden
    // ratio spread them evenly, so most find their home free.
    uint32_t index = 0;
    if (key_->width == sizeof(index)) {
        std::memcpy(&index, key, sizeof(index));
        return index * goldenRatio;
    }
    return HashBytes(key, key_->width);
}

inline bool KeyIndex::SameKey(const void* one, const void* other) const
{
    return (key_->width == 4 ? std::memcmp(one, other, 4) : std::memcmp(one, other, key_->width)) ==
           0;
}

}  // namespace standin
