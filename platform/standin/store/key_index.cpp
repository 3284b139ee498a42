#include "store/key_index.h"

#include <algorithm>
#include <bit>

namespace standin {

static_assert(sizeof(void*) == 8, "buckets rely on the upper 16 bits of an address");

namespace {

// At most three quarters full.
size_t BucketsFor(size_t rows, size_t smallest)
{
    return std::max(smallest, std::bit_ceil(rows + rows / 3 + 1));
}

}  // namespace

KeyIndex::KeyIndex(const Key& key, size_t buckets)
    : key_(&key), buckets_(buckets), homeShift_(64 - std::countr_zero(buckets))
{
}

size_t KeyIndex::BucketOf(const StoredRow& row) const
{
    size_t at = Home(HashOf(KeyOf(row)));
    while (RowIn(buckets_[at]) != &row) {
        at = Next(at);
    }
    return at;
}

void KeyIndex::Insert(const StoredRow& row)
{
    const uint64_t hash = HashOf(KeyOf(row));
    size_t at = Home(hash);
    while (buckets_[at] != empty) {
        at = Next(at);
    }
    buckets_[at] = Filled(row, hash);
    count_++;
}

void KeyIndex::Exchange(const StoredRow& present, const StoredRow& other)
{
    buckets_[BucketOf(present)] = Filled(other, HashOf(KeyOf(other)));
}

// Closes the gap: a row behind it moves up, unless that would put it before its home.
void KeyIndex::Remove(const StoredRow& row)
{
    const size_t mask = buckets_.size() - 1;
    size_t gap = BucketOf(row);
    for (size_t at = Next(gap); buckets_[at] != empty; at = Next(at)) {
        const size_t home = Home(HashOf(KeyOf(*RowIn(buckets_[at]))));
        if (((at - home) & mask) >= ((at - gap) & mask)) {
            buckets_[gap] = buckets_[at];
            gap = at;
        }
    }
    buckets_[gap] = empty;
    count_--;
}

bool KeyIndex::Fits(size_t more) const
{
    const size_t needed = BucketsFor(count_ + more, smallest);
    return needed <= buckets_.size() && needed * 8 > buckets_.size();
}

KeyIndex KeyIndex::Resized(size_t more) const
{
    KeyIndex resized(*key_, BucketsFor(count_ + more, smallest));
    for (const Bucket bucket : buckets_) {
        if (bucket != empty) {
            resized.Insert(*RowIn(bucket));
        }
    }
    return resized;
}

}  // namespace standin
