// Watching events, and raising those of the interface tree.
#include <poll.h>

#include <chrono>
#include <optional>

#include <standin/deliveries.h>
#include <tarnd_qrb/event_publish.h>

#include "shell/commands/command.h"
#include "shell/events/event_queue.h"
#include "shell/events/event_watch.h"
#include "shell/output/log_capture.h"
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

// Prints events as they come, until the deadline or an interrupt.
void PrintEvents(Shell& shell, const Deadline& deadline)
{
    const Interrupt interrupt;
    pollfd waitedFor[] = {{Events().Descriptor(), POLLIN, 0}, {interrupt.Descriptor(), POLLIN, 0}};
    while (waitedFor[1].revents == 0 && MillisecondsTo(deadline) != 0) {
        poll(waitedFor, std::size(waitedFor), MillisecondsTo(deadline));
        shell.PrintEvents();
    }
}

Deadline TakeDeadline(Words& words)
{
    if (words.Empty()) {
        return std::nullopt;
    }
    const Argument seconds{.name = "SECONDS", .highest = 1'000'000};
    const auto count = NumberFromWord(seconds, words.Take("SECONDS"), UINT32_MAX);
    return Clock::now() + std::chrono::seconds(count);
}

Status Watch(Shell& shell, Words& words)
{
    const bool isOn = !words.Empty() && words.Front() == "on";
    const bool isOff = !words.Empty() && words.Front() == "off";
    if (isOn || isOff) {
        words.Take("on");
    }
    const Deadline deadline = isOn || isOff ? Deadline() : TakeDeadline(words);
    words.ExpectEnd();
    if (isOff) {
        WatchNothing();
    } else {
        WatchEverything();
    }
    if (!isOn && !isOff) {
        PrintEvents(shell, deadline);
        WatchNothing();
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
    const auto take = [&](std::string_view name) {
        return static_cast<uint32_t>(NumberFromWord({.name = name}, words.Take(name), UINT32_MAX));
    };
    InterfaceEventCall call{take("EVENT"), take("SUB"), take("IFINDEX"), 0};
    call.flag = words.Empty() ? 0 : take("FLAG");
    words.ExpectEnd();
    return call;
}

// Calls the callbacks, as every publisher of an interface event does.
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
        {"watch", "[SECONDS|on|off]", "Prints every event and notification as it comes, until Ctrl-C or for so long; on and off: from here on, beside other commands.", Watch},
        {"publish", "EVENT SUB IFINDEX [FLAG]", "Publishes an interface event. For the others: L2IF_SH_EvtPublishEvent, IF_NotifyAll.", Publish},
    };
}
// clang-format on

}  // namespace shell
