// One session: what was prepared on it, where it stands, and what its handle is good for.
#pragma once

#include <memory>

#include "session/current_row.h"
#include "session/handles.h"
#include "session/read_key.h"
#include "session/scan_condition.h"
#include "session/table_scan.h"
#include "store/pins.h"

namespace standin {

class Subscriber;
class Delivery;

class Session {
public:
    explicit Session(uint32_t placeInPool) : place(placeInPool) {}

    uint32_t Prepare(std::string_view table, uint32_t operation);
    uint32_t Execute();
    uint32_t SetCondition(std::string_view text);
    uint32_t StartScan(uint64_t* scanHandle);
    uint32_t MoveToNext(uint64_t scanHandle, uint8_t* end);
    uint32_t EndScan(uint64_t scanHandle);

    // Null unless the session was prepared for a keyed read.
    ReadKey* Key() { return step_ == Step::Read ? &read_ : nullptr; }

    const uint32_t place;
    std::atomic<uint64_t> handle = 0;  // the one that is good now; 0: closed
    uint64_t uses = 0;                 // handles given out for this place
    Pins pins;
    CurrentRow position;

    // Only a subscription session has these, or a message.
    std::shared_ptr<Subscriber> subscriber;
    const Delivery* delivery = nullptr;
    size_t fetched = 0;  // rows of the delivery moved to so far

    // Gives up whatever was prepared or read.
    void Reset();

private:
    enum class Step : uint8_t { Open, Read, Scan, Scanning };

    void LeaveRow();

    Step step_ = Step::Open;
    ReadKey read_;
    ScanCondition condition_;
    TableScan scan_{pins};
    uint64_t scanHandle_ = 0;
    const TableStore* store_ = nullptr;
};

}  // namespace standin
