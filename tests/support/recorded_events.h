// Records all events that the library delivers to its modules, as text; stops the listener.
#pragma once

#include <string>
#include <vector>

#include "support/fault_injection.h"

namespace support {

using Events = std::vector<std::string>;

// Registers for all event ids, with or without a name in the library. Each call is recorded as
// text:
//
//   "36 if 7 pvid 1"              layer-2 event, from a port row
//   "11 if 7 pvid 1 bitmap 0"     ... and what changed in its VLANs
//   "13 if 7 use 1"               ... a switch port's use
//   "9/2 flag 0 if 7"             interface event, sub-event
//   "9/3 flag 0 if 7 with 1, 0"   ... what its two pointers point to
//   "notify 3 if 7"               interface notification
void RecordEvents();

// Tears down all registries, including entries of others.
void ForgetEvents();

// The calls since the last call of this function.
Events TakeEvents();

// The same, after all earlier commits are delivered. Only in tests that are notified of
// if_base: it writes a row there.
Events AwaitEvents();

// Closes the listener's session, stops and joins its thread, as a daemon would, and sets everything
// back, so that a registration starts over. No effect if no listener runs.
void StopListener();

// After each test no listener runs and no callback is registered.
class EventTest : public PlatformTest {
protected:
    void TearDown() override;
};

}  // namespace support
