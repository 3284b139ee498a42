// Replaces the C library's system log in a program that links this file.
#pragma once

// Receives a formatted line with its priority. Called by C code on the thread that writes the line,
// so it must not throw.
using SystemLogReceiver = void (*)(int priority, const char* text) noexcept;

// Before the first call, lines are formatted and dropped. Thread-safe.
void SetSystemLogReceiver(SystemLogReceiver receiver);
