#include "shell/hosted_library.h"

#include <chrono>
#include <stdexcept>

#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/subscription.h>

#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"

namespace shell {
namespace {

// The line that the listener thread logs when it starts.
bool IsListenerStart(const Json& event)
{
    return event.value("line", "").find("DbListener thread start") != std::string::npos;
}

// Removes the log lines of the start-up from the queue.
std::string TakeStartLog()
{
    std::string lines;
    for (bool isThere = false; !isThere;) {
        Events().Wait(std::chrono::seconds(1));
        const auto event = Events().Pop();
        if (!event) {
            break;
        }
        isThere = IsListenerStart(*event);
        lines += "\n" + event->value("line", "");
    }
    return lines;
}

}  // namespace

HostedLibrary::HostedLibrary()
{
    MEM_EX_Init();
    // Without a notification list, the library logs an error for each change of an interface.
    IF_NotifyFuncRegTbl_Init();
    const bool isStarted = BDS_InitStart() == 0;
    const std::string log = TakeStartLog();
    if (!isStarted) {
        throw std::runtime_error("the library does not start" + log);
    }
}

HostedLibrary::~HostedLibrary()
{
    OrmCloseSession(g_dbListenerSubSession);
    g_isDbListenerSubOpened = 0;
}

}  // namespace shell
