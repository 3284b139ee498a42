// The prompt in a terminal: line editing, history, completion.
#pragma once

#include "shell/shell.h"

namespace shell {

// Executes lines until the end. Asks before an open transaction or unsaved rows are lost.
Status RunPrompt(Shell& shell);

}  // namespace shell
