// One session: what was prepared on it, its current row, and its handle.
#pragma once

#include <memory>

#include "session/current_row.h"
#include "session/handles.h"
#include "session/read_key.h"
#include "session/scan_condition.h"
#include "session/table_scan.h"

namespace standin {

class Subscriber;
class Delivery;

class Session {
public:
    explicit Session(uint32_t numberInPool) : number(numberInPool) {}

    uint32_t Prepare(std::string_view table, uint32_t operation);
    uint32_t Execute();
    uint32_t SetCondition(std::string_view text);
    uint32_t StartScan(uint64_t* scanHandle);
    uint32_t MoveToNext(uint64_t scanHandle, uint8_t* end);
    uint32_t EndScan(uint64_t scanHandle);

    // Null unless the session was prepared for a keyed read.
    ReadKey* Key() { return state_ == State::Read ? &read_ : nullptr; }

    const uint32_t number;
    std::atomic<uint64_t> handle = 0;  // the valid one; 0: closed
    uint64_t uses = 0;                 // handles made with this number
    CurrentRow current;

    // Only a subscription session has a subscriber, only a message has a delivery.
    std::shared_ptr<Subscriber> subscriber;
    const Delivery* delivery = nullptr;
    size_t fetched = 0;  // rows of the delivery moved to so far

    // Releases whatever was prepared or read.
    void Reset();

private:
    enum class State : uint8_t { Open, Read, Scan, Scanning };

    State state_ = State::Open;
    ReadKey read_;
    ScanCondition condition_;
    TableScan scan_;
    uint64_t scanHandle_ = 0;
    const TableStore* store_ = nullptr;
};

}  // namespace standin
