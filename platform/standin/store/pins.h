// The rows that a session stands on or is about to deliver. They are not freed while it does.
//
// Set inside the gate, while the rows are still in their table. So whoever has since taken a row
// out of its table sees every pin there will ever be on it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace standin {

class StoredRow;

class Pins {
public:
    static constexpr uint32_t capacity = 32;

    void Set(uint32_t place, const StoredRow& row)
    {
        rows_[place].store(&row, std::memory_order_release);
    }
    void SetCount(uint32_t count) { count_.store(count, std::memory_order_release); }
    const StoredRow* At(uint32_t place) const
    {
        return rows_[place].load(std::memory_order_relaxed);
    }

    // On any thread.
    template <typename OnRow>
    void ForEach(OnRow onRow) const
    {
        const uint32_t count = count_.load(std::memory_order_acquire);
        for (uint32_t place = 0; place < count; place++) {
            onRow(rows_[place].load(std::memory_order_acquire));
        }
    }

private:
    std::array<std::atomic<const StoredRow*>, capacity> rows_ = {};
    std::atomic<uint32_t> count_ = 0;
};

}  // namespace standin
