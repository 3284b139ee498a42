// The rows that benchmarks read.
#pragma once

#include <cstdint>
#include <functional>

#include <standin/store.h>
#include <tarnd_qrb/records.h>

namespace bench {

// The "if_base" row of an interface; indexes count from 1.
standin::Row Interface(uint32_t ifIndex);
QRB_IF_BASE_S InterfaceRecord(uint32_t ifIndex);

// Replaces the contents of the database by rows 1 to count of one table. Does nothing if it has
// them already.
void Fill(std::string_view table, uint32_t count, const std::function<standin::Row(uint32_t)>& row);

// Row numbers 1 to count, shuffled to defeat prefetching; the same order for all contenders.
class RandomOrder {
public:
    explicit RandomOrder(uint32_t count) : count_(count) {}

    uint32_t Next()
    {
        state_ = state_ * 6364136223846793005 + 1442695040888963407;
        return static_cast<uint32_t>((state_ >> 32) * count_ >> 32) + 1;
    }

private:
    uint64_t count_;
    uint64_t state_ = 1;
};

}  // namespace bench
