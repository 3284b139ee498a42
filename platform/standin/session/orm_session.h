// One session: its prepared operation, current row and handle.
#pragma once

#include <memory>

#include "session/current_row.h"
#include "session/handles.h"
#include "session/read_key.h"
#include "session/scan_condition.h"
#include "session/table_scan.h"

namespace standin {

class Subscriber;
struct Delivery;

enum class SessionState : uint8_t { Open, Read, Scan, Scanning };

struct Session {
    explicit Session(uint32_t numberInPool) : number(numberInPool) {}

    const uint32_t number;
    std::atomic<uint64_t> handle = 0;  // the valid one; 0: closed
    uint64_t uses = 0;                 // handles made with this number
    CurrentRow current;

    // The prepared operation.
    SessionState state = SessionState::Open;
    const TableStore* store = nullptr;
    ReadKey key;
    ScanCondition condition;
    TableScan scan;
    uint64_t scanHandle = 0;

    // Only subscription sessions have a subscriber; only messages have a delivery.
    std::shared_ptr<Subscriber> subscriber;
    const Delivery* delivery = nullptr;
    size_t fetched = 0;  // rows of the delivery moved to so far
};

}  // namespace standin
