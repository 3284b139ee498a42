// The library, hosted as the device's daemon does.
#pragma once

namespace shell {

// Starts it in the specified order. Throws std::runtime_error where it does not start.
void StartLibrary();

}  // namespace shell
