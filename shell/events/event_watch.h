// The printing callbacks of "watch": one for every event that there is.
#pragma once

namespace shell {

// What is watched already, or not, stays so.
void WatchEverything();
void WatchNothing();

}  // namespace shell
