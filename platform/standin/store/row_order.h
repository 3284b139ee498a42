// The table's references to its rows, ordered by place.
//
// A sorted list in blocks: a map from places to short sorted arrays. Inserting, replacing and
// erasing take logarithmic time.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <vector>

#include "store/stored_row.h"

namespace standin {

class RowOrder {
public:
    RowOrder();

    void Insert(RowReference row);          // no row has its place
    void Replace(const RowReference& row);  // the one at the same place
    void Erase(Place place);
    size_t RowCount() const { return rowCount_; }

    // The rows at a place and after it that are contiguous in memory, and the place of the next
    // row.
    struct Run {
        std::span<const RowReference> rows;
        std::optional<Place> next;
    };
    Run RunFrom(Place place) const;

private:
    using Block = std::vector<RowReference>;
    using Blocks = std::map<Place, Block>;

    static constexpr size_t BLOCK_ROWS = 64;

    static Block EmptyBlock();
    static Block::iterator Find(Block& block, Place place);
    Blocks::iterator BlockOf(Place place);
    Block& SplitBefore(Place place, Block& block);
    void MergeWithNext(Blocks::iterator block);

    // A block has the places from its key up to the next block's key. There is always a block at
    // the first place.
    Blocks blocks_;
    size_t rowCount_ = 0;
};

}  // namespace standin
