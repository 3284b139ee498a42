// The callbacks of the watch command: one for every event of the library.
#pragma once

#include <string>
#include <vector>

#include "shell/output/json_text.h"

namespace shell {

// Which events are printed; an empty member means all.
struct WatchFilter {
    std::vector<std::string> events;      // names or kinds, as patterns with * and ?
    std::vector<std::string> interfaces;  // indexes, or names as patterns

    bool Admits(const Json& event) const;
    // {"event": "watching", "events": [...], "interfaces": [...]}
    Json Description() const;
};

// Throws UsageError if no event has a name that the pattern matches.
void CheckEventPattern(const std::string& pattern);
std::vector<std::string> EventNames();

// Registers the callbacks. If they are already registered, only replaces the filter.
void WatchEvents(const WatchFilter& filter);
void StopWatching();

// Whether the filter admits an event of the registration with this module name.
bool IsAdmitted(const std::string& module, const Json& event);

}  // namespace shell
