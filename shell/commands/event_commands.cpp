// Commands that follow events and changes, or raise events: watch, monitor, publish.
#include <poll.h>

#include <chrono>
#include <optional>

#include <standin/deliveries.h>
#include <tarnd_qrb/event_publish.h>

#include "shell/commands/command.h"
#include "shell/events/event_queue.h"
#include "shell/events/event_watch.h"
#include "shell/events/table_monitor.h"
#include "shell/output/log_capture.h"
#include "shell/table_lookup.h"
#include "shell/terminal/interrupt.h"

namespace shell {
namespace {

using Clock = std::chrono::steady_clock;
using Deadline = std::optional<Clock::time_point>;

int MillisecondsTo(const Deadline& deadline)
{
    if (!deadline) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now());
    return static_cast<int>(std::max<int64_t>(left.count(), 0));
}

// Prints events as they arrive, until the deadline or Ctrl-C.
void PrintEvents(Shell& shell, const Deadline& deadline)
{
    const Interrupt interrupt;
    pollfd waitedFor[] = {{Events().Descriptor(), POLLIN, 0}, {interrupt.Descriptor(), POLLIN, 0}};
    while (waitedFor[1].revents == 0 && MillisecondsTo(deadline) != 0) {
        poll(waitedFor, std::size(waitedFor), MillisecondsTo(deadline));
        shell.PrintEvents();
    }
}

// How long a command follows events: until Ctrl-C, until a deadline, or in the background.
struct Period {
    bool isOn = false;
    bool isOff = false;
    Deadline deadline;
};

// [SECONDS|on|off]
Period TakePeriod(Words& words)
{
    Period period;
    const std::string word = words.Empty() ? "" : words.Front();
    period.isOn = word == "on";
    period.isOff = word == "off";
    const bool isNumber =
        !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
    if (isNumber) {
        const Argument seconds{.name = "SECONDS", .highest = 1'000'000};
        period.deadline =
            Clock::now() + std::chrono::seconds(NumberFromWord(seconds, word, UINT32_MAX));
    }
    if (period.isOn || period.isOff || isNumber) {
        words.Take("SECONDS");
    }
    return period;
}

// [event=PATTERN...] [interface=INDEX|PATTERN...]
WatchFilter TakeWatchFilter(Words& words)
{
    constexpr std::string_view EVENT = "event=";
    constexpr std::string_view INTERFACE = "interface=";
    WatchFilter filter;
    for (const std::string& word : words.TakeAll()) {
        if (word.starts_with(EVENT)) {
            filter.events.push_back(word.substr(EVENT.size()));
            CheckEventPattern(filter.events.back());
        } else if (word.starts_with(INTERFACE)) {
            filter.interfaces.push_back(word.substr(INTERFACE.size()));
        } else {
            throw UsageError("\"" + word + "\" is neither event=NAME nor interface=INDEX|NAME");
        }
    }
    return filter;
}

Status Watch(Shell& shell, Words& words)
{
    const Period period = TakePeriod(words);
    const WatchFilter filter = TakeWatchFilter(words);
    if (period.isOff) {
        StopWatching();
        return Status::Success;
    }
    shell.Out().PrintEvent(filter.Description());
    shell.Out().Flush();
    WatchEvents(filter);
    if (!period.isOn) {
        PrintEvents(shell, period.deadline);
        StopWatching();
    }
    return Status::Success;
}

Status MonitorRows(Shell& shell, Words& words)
{
    const std::string name = words.Empty() ? "" : words.Front();
    if (name == "off") {
        words.Take("off");
        words.ExpectEnd();
        StopMonitoring();
        return Status::Success;
    }
    const standin::Table& table = KnownTable(words.Take("TABLE"));
    const Period period = TakePeriod(words);
    MonitorTable(table, RowFilter(table, TakeAssignments(table, words)));
    shell.Out().PrintEvent({{"event", "monitoring"}, {"table", table.name}});
    shell.Out().Flush();
    if (!period.isOn) {
        PrintEvents(shell, period.deadline);
        StopMonitoring();
    }
    return Status::Success;
}

struct InterfaceEventCall {
    uint32_t event;
    uint32_t sub;
    uint32_t ifIndex;
    uint32_t flag;
};

InterfaceEventCall TakeInterfaceEvent(Words& words)
{
    const auto take = [&](std::string_view name, NamedNumbers names) {
        const Argument argument{.name = name, .names = names};
        return static_cast<uint32_t>(NumberFromWord(argument, words.Take(name), UINT32_MAX));
    };
    InterfaceEventCall call{take("EVENT", INTERFACE_EVENTS), take("SUB", STATE_SUB_EVENTS),
                            take("IFINDEX", {}), 0};
    call.flag = words.Empty() ? 0 : take("FLAG", EVENT_FLAGS);
    words.ExpectEnd();
    return call;
}

// Publishes an interface event: the callbacks run on this thread.
uint32_t PublishInterfaceEvent(const InterfaceEventCall& call)
{
    UTIL_LIST_NODE_S* node = nullptr;
    uint64_t count = 0;
    const uint32_t ret = IF_SH_EvtPublishEventGetEventNode(call.event, call.sub, &node, &count);
    for (; ret == 0 && count > 0 && node != nullptr; --count, node = node->next) {
        if (const auto* entry = static_cast<const IF_EVT_CB_S*>(UTIL_LIST_Data(node));
            entry->pfCallback != nullptr) {
            entry->pfCallback(call.sub, call.flag, call.ifIndex, nullptr, nullptr);
        }
    }
    return ret;
}

Status Publish(Shell& shell, Words& words)
{
    const InterfaceEventCall call = TakeInterfaceEvent(words);
    uint32_t ret = 0;
    LogCapture log;
    standin::BetweenDeliveries([&] { ret = PublishInterfaceEvent(call); });
    shell.Out().PrintLog(log.Take());
    return ret == 0 ? Status::Success : Status::Failed;
}

}  // namespace

// clang-format off
std::vector<Command> EventCommands()
{
    return {
        {"watch", "[SECONDS|on|off] [event=NAME...] [interface=INDEX|NAME...]", "Prints events and notifications as they arrive, until Ctrl-C or for the given number of seconds; on: in the background, until off. Names may be patterns with * and ?.", Watch},
        {"monitor", "TABLE|off [SECONDS|on] [FIELD=VALUE...]", "Prints the old and the new row of each change of a table, until Ctrl-C or for the given number of seconds; on: in the background, until off. The conditions are the same as for show.", MonitorRows},
        {"publish", "EVENT SUB IFINDEX [FLAG]", "Publishes an interface event. For other events: L2IF_SH_EvtPublishEvent, IF_NotifyAll.", Publish},
    };
}
// clang-format on

}  // namespace shell
