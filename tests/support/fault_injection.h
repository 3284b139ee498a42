// The platform, watched and made to fail from outside: a thin layer of operations defined in the
// test program, so that they come before the platform library's, which they call.
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

// Forgets the calls and whatever was to fail.
void ResetPlatform();

// Calls are recorded, and fail as planned, only while watching is on. It costs a lock for each
// call, so tests under load turn it off. PlatformTest turns it on.
void WatchPlatform(bool on);

enum class CleanUp { Works, FailsToo };

// The nth call (from 1) of this operation, counted from now, does nothing and answers code; with
// FailsToo, every later end of a scan or session answers it too, after having done its work. Also
// "strcpy_s" and its variants, "malloc", "calloc" and "malloc_ex", which return null, and
// "pthread_create", "epoll_create", "epoll_ctl", "epoll_wait" and "close", whose error is code. Of
// what belongs to the system only the library's own calls count.
void FailCall(std::string_view operation, unsigned nth, uint32_t code,
              CleanUp later = CleanUp::Works);

// Sessions, scans and session parameters: opened less closed, since the program started.
int OpenHandles();

// Blocks that the library took while it was watched, of malloc, calloc and malloc_ex, and has not
// given back.
int LibraryBlocks();

struct LogLine {
    int priority;
    std::string text;  // as handed to the system log
};

// The lines written to the system log since the last call.
std::vector<LogLine> TakeLog();

// Only what a function reported: "function: message", without identity and line number.
std::vector<std::string> TakeMessages();

// The same, without what the listener's thread says, which may come at any time.
std::vector<std::string> TakeComplaints();

// An empty database, nothing to fail, an empty log; afterwards nothing may be open.
class PlatformTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    int handlesBefore_ = 0;
};

}  // namespace support
