// Memory blocks of one size that a thread was given back, for it to hand out again.
#pragma once

#include <cstddef>
#include <new>

#ifndef STANDIN_HIGHEST_PILE
#define STANDIN_HIGHEST_PILE 128
#endif

namespace standin {

class Pile {
public:
    // The block that came last, or null.
    void* Take()
    {
        Kept* block = top_;
        if (block != nullptr) {
            top_ = block->below;
        }
        return block;
    }

    // False where the pile is high enough: the block stays the caller's.
    bool Put(void* block)
    {
        const size_t height = top_ != nullptr ? top_->height + 1 : 1;
        if (height > STANDIN_HIGHEST_PILE) {
            return false;
        }
        top_ = new (block) Kept{top_, height};
        return true;
    }

private:
    struct Kept {
        Kept* below;
        size_t height;
    };

    Kept* top_;
};

}  // namespace standin
