// Observation and fault injection for the platform: the test program interposes the platform's
// functions, records calls, and makes chosen ones fail.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace support {

// The operations called since the last ResetPlatform, by name, in order, on any thread, and the
// texts among their arguments.
std::vector<std::string> FaultPoints();
std::vector<std::string> PlatformTexts();

// Clears the recorded calls and the planned failures.
void ResetPlatform();

// Calls are recorded, and fail as planned, only while watching is on. This takes a lock for each
// call, so load tests turn it off. PlatformTest turns it on.
void WatchPlatform(bool on);

enum class CleanUp { Works, FailsToo };

// The nth call (from 1) of this operation, counted from now, does nothing and returns code. With
// FailsToo, every later close of a scan or session returns code too, after closing. Also accepts
// "strcpy_s" and its variants; "malloc", "calloc" and "malloc_ex", which return null; and
// "pthread_create", "epoll_create", "epoll_ctl", "epoll_wait" and "close", whose error is code. For
// system functions only the library's own calls are counted.
void FailCall(std::string_view operation, unsigned nth, uint32_t code,
              CleanUp later = CleanUp::Works);

// Sessions, scans and session parameters: opened less closed, since the program started.
int OpenHandles();

// Number of blocks that the library allocated by malloc, calloc or malloc_ex while watching was on
// and has not freed.
int LibraryBlocks();

struct LogLine {
    int priority;
    std::string text;  // as passed to the system log
};

// The lines written to the system log since the last call.
std::vector<LogLine> TakeLog();

// The same as "function: message", without identity and line number.
std::vector<std::string> TakeMessages();

// The same without lines of the listener thread, which may arrive at any time.
std::vector<std::string> TakeComplaints();

// Starts with an empty database, no planned failure and an empty log. Fails if anything is left
// open.
class PlatformTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    int handlesBefore_ = 0;
};

}  // namespace support
