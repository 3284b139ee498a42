// Everything that the library tells its modules, in words; and how that comes to an end.
#pragma once

#include <string>
#include <vector>

#include "support/fault_injection.h"

namespace support {

using Events = std::vector<std::string>;

// Registers for every event that there is, named by the library or not. Each call becomes one text:
//
//   "36 if 7 pvid 1"              layer-2 event, from a port row
//   "11 if 7 pvid 1 bitmap 0"     ... and what changed in its VLANs
//   "13 if 7 use 1"               ... a switch port's use
//   "9/2 flag 0 if 7"             interface event, sub-event
//   "9/3 flag 0 if 7 with 1, 0"   ... what its two pointers point to
//   "notify 3 if 7"               interface notification
void RecordEvents();

// Tears the registries down, those that others registered for included.
void ForgetEvents();

// What was called since the last time.
Events TakeEvents();

// The same, once everything is told that was committed before. Only in tests that are notified of
// if_base: it writes a row there.
Events AwaitEvents();

// Closes the listener's session, stops and joins its thread, as a daemon would, and sets everything
// back, so that a registration starts anew. Nothing where nothing runs.
void StopListener();

// Afterwards nobody listens, and nobody is registered.
class EventTest : public PlatformTest {
protected:
    void TearDown() override;
};

}  // namespace support
