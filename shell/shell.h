// Executes command lines in order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shell/commands/pending_writes.h"
#include "shell/output/file_replacement.h"
#include "shell/output/printer.h"

namespace shell {

// Exit statuses. The exit status of several lines is the highest of them.
enum class Status : uint8_t {
    Success = 0,
    Failed = 1,       // a result "no" or "failure", or a refused write
    Usage = 2,        // a line that can't be parsed
    Unavailable = 3,  // a source, a file or the output can't be read or written
};

class Shell {
public:
    // sourceName: as for sources::OpenSource; empty for a source that has none.
    Shell(sources::Source& source, Printer& printer, std::string sourceName = "")
        : source_(source), writes_(source), printer_(printer), sourceName_(std::move(sourceName))
    {
    }

    // Errors are printed, except for OutputError, which is thrown.
    Status Execute(std::string_view line);
    Status Execute(const std::vector<std::string>& words);

    // Must be called after the last line. Prints an error and returns Failed if a transaction is
    // open.
    Status Finish();

    // Prints the queued events.
    void PrintEvents();

    bool Ended() const { return ended_; }
    void End() { ended_ = true; }
    void Continue() { ended_ = false; }

    const sources::Source& Source() const { return source_; }
    const std::string& SourceName() const { return sourceName_; }
    // Path of the JSON file that is the source; empty for other sources.
    std::string File() const;
    // The last log lines that were printed as events, an array of {"time", "line"}.
    const Json& RecentLog() const { return recentLog_; }
    Printer& Out() { return printer_; }
    PendingWrites& Writes() { return writes_; }

private:
    Status Dispatch(const std::string& name, Words& words);

    std::optional<double> SecondsStale() const;

    const sources::Source& source_;
    PendingWrites writes_;
    Printer& printer_;
    const std::string sourceName_;
    Json recentLog_ = Json::array();
    bool ended_ = false;
};

}  // namespace shell
