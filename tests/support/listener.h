// The listener thread, from outside: stopped as a daemon would.
#pragma once

namespace support {

// Closes the session, stops and joins the thread, and sets everything back, so that a registration
// starts anew. Nothing where nothing runs.
void StopListener();

}  // namespace support
