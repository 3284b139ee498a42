// The shell: carries out lines, one after another.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shell/commands/pending_writes.h"
#include "shell/output/printer.h"

namespace shell {

// As exit codes have it; of several lines, the highest counts.
enum class Status : uint8_t { Good = 0, Failed = 1, Usage = 2 };

class Shell {
public:
    Shell(sources::Source& source, Printer& printer) : writes_(source), printer_(printer) {}

    Status Execute(std::string_view line);
    Status Execute(const std::vector<std::string>& words);

    // When no line comes any more: Failed where writes still wait for commit, which is told.
    Status Finish();

    // Those that wait in the queue.
    void PrintEvents();

    bool Ended() const { return ended_; }
    void End() { ended_ = true; }
    Printer& Out() { return printer_; }
    PendingWrites& Writes() { return writes_; }

private:
    Status Carry(const std::string& name, Words& words);

    PendingWrites writes_;
    Printer& printer_;
    bool ended_ = false;
};

}  // namespace shell
