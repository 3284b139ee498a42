// The prompt in a terminal: line editing, history, completion.
#pragma once

#include "shell/shell.h"

namespace shell {

// Carries out lines until the shell has ended.
Status RunPrompt(Shell& shell);

}  // namespace shell
