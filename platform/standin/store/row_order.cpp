#include "store/row_order.h"

#include <algorithm>
#include <iterator>

namespace standin {

namespace {

Place PlaceOf(const RowReference& row)
{
    return row->TablePlace();
}

}  // namespace

RowOrder::RowOrder()
{
    blocks_.emplace(Place(), EmptyBlock());
}

RowOrder::Block RowOrder::EmptyBlock()
{
    Block block;
    block.reserve(BLOCK_ROWS + 1);
    return block;
}

RowOrder::Block::iterator RowOrder::Find(Block& block, Place place)
{
    return std::ranges::lower_bound(block, place, {}, PlaceOf);
}

RowOrder::Blocks::iterator RowOrder::BlockOf(Place place)
{
    return std::prev(blocks_.upper_bound(place));
}

void RowOrder::Insert(RowReference row)
{
    const Place place = PlaceOf(row);
    Block* block = &BlockOf(place)->second;
    if (block->size() >= BLOCK_ROWS) {
        block = &SplitBefore(place, *block);
    }
    block->insert(Find(*block, place), std::move(row));
    rowCount_++;
}

// The new block begins at the place of the row to insert, so that ascending insertions leave full
// blocks.
RowOrder::Block& RowOrder::SplitBefore(Place place, Block& block)
{
    Block& added = blocks_.emplace(place, EmptyBlock()).first->second;
    const auto first = Find(block, place);
    std::move(first, block.end(), std::back_inserter(added));
    block.erase(first, block.end());
    return added;
}

void RowOrder::Replace(const RowReference& row)
{
    *Find(BlockOf(PlaceOf(row))->second, PlaceOf(row)) = row;
}

void RowOrder::Erase(Place place)
{
    const auto block = BlockOf(place);
    block->second.erase(Find(block->second, place));
    rowCount_--;
    MergeWithNext(block);
    if (block != blocks_.begin()) {
        MergeWithNext(std::prev(block));
    }
}

// Merges two blocks with few rows, so that memory is proportional to the number of rows.
void RowOrder::MergeWithNext(Blocks::iterator block)
{
    const auto next = std::next(block);
    if (next != blocks_.end() && block->second.size() + next->second.size() <= BLOCK_ROWS / 2) {
        std::ranges::move(next->second, std::back_inserter(block->second));
        blocks_.erase(next);
    }
}

RowOrder::Run RowOrder::RunFrom(Place place) const
{
    const auto next = blocks_.upper_bound(place);
    const auto& [start, block] = *std::prev(next);
    auto first = block.begin();
    if (place != start) {
        first = std::ranges::lower_bound(block, place, {}, PlaceOf);
    }
    return {{first, block.end()},
            next == blocks_.end() ? std::nullopt : std::optional(next->first)};
}

}  // namespace standin
