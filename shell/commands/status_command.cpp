// Command status: the source, the state of its data, and the lengths of the queues.
#include <chrono>
#include <utility>

#include <standin/deliveries.h>

#include "shell/commands/command.h"
#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"

namespace shell {
namespace {

// Whether the data follow the source, "current"; else "stale" or "loaded", and for how long.
void AddDataState(Json& status, const sources::SourceState& state)
{
    const auto now = std::chrono::system_clock::now();
    if (!state.server.empty()) {
        status["server"] = state.server;
        status["role"] = state.role;
    }
    if (state.connected) {
        status["connected"] = TimeText(*state.connected);
    }
    status["data"] = state.lost ? "stale" : state.loaded ? "loaded" : "current";
    double age = 0;
    if (state.lost) {
        age = RoundedSeconds(now - *state.lost);
        status["stale"] = age;
    } else if (state.loaded) {
        age = RoundedSeconds(now - *state.loaded);
    }
    status["age"] = age;
    if (!state.lastError.empty()) {
        status["error"] = state.lastError;
    }
}

Json PendingState()
{
    const standin::PendingMessages pending = standin::CountPendingMessages();
    const auto now = std::chrono::steady_clock::now();
    return {{"messages", pending.count},
            {"seconds", pending.count > 0 ? RoundedSeconds(now - pending.oldest) : 0},
            {"events", Events().Size()}};
}

Json CurrentStatus(Shell& shell)
{
    Json status = {{"source", shell.SourceName()}};
    AddDataState(status, shell.Source().State());
    status["waiting"] = PendingState();
    status["transaction"] =
        shell.Writes().IsOpen() ? Json(shell.Writes().Waiting()) : Json(nullptr);
    if (!shell.File().empty()) {
        status["unsaved"] = shell.Writes().Unsaved();
    }
    Json rows = Json::object();
    for (const standin::Table& table : standin::Tables()) {
        rows[std::string(table.name)] = standin::CountRows(table);
    }
    status["rows"] = rows;
    status["log"] = shell.RecentLog();
    return status;
}

std::string DataText(const Json& status)
{
    const std::string age = OneLine(status["age"]) + " s";
    const std::string data = status["data"];
    if (data == "stale") {
        return "stale for " + age + ", no server is followed";
    }
    return data == "loaded" ? "loaded " + age + " ago, not followed"
                            : "current, changes are followed";
}

std::string WaitingText(const Json& waiting)
{
    std::string text = OneLine(waiting["messages"]) + " changes pending for the listener";
    if (waiting["messages"] > 0) {
        text += ", the oldest for " + OneLine(waiting["seconds"]) + " s";
    }
    return text + "; " + OneLine(waiting["events"]) + " events queued for printing";
}

std::string StatusText(const Json& status)
{
    std::string text;
    const auto add = [&](const std::string& name, const std::string& value) {
        text += name + std::string(13 - name.size(), ' ') + value + "\n";
    };
    add("source", OneLine(status["source"]));
    if (status.contains("server")) {
        add("server", OneLine(status["server"]) + " (" + OneLine(status["role"]) +
                          "), followed since " + OneLine(status["connected"]));
    }
    add("data", DataText(status));
    if (status.contains("error")) {
        add("error", OneLine(status["error"]));
    }
    add("queue", WaitingText(status["waiting"]));
    if (!status["transaction"].is_null()) {
        add("transaction", OneLine(status["transaction"]) + " rows wait for commit");
    }
    if (status.contains("unsaved")) {
        add("unsaved", OneLine(status["unsaved"]) + " writes; save writes them to the file");
    }
    std::string name = "rows";
    for (const auto& table : status["rows"].items()) {
        add(std::exchange(name, ""), table.key() + " " + OneLine(table.value()));
    }
    name = "log";
    for (const Json& entry : status["log"]) {
        add(std::exchange(name, ""), OneLine(entry["time"]) + "  " + OneLine(entry["line"]));
    }
    return text;
}

Status ShowStatus(Shell& shell, Words& words)
{
    words.ExpectEnd();
    const Json status = CurrentStatus(shell);
    if (shell.Out().IsJson()) {
        shell.Out().PrintRows(status);
    } else {
        shell.Out().PrintText(StatusText(status));
    }
    return Status::Success;
}

}  // namespace

// clang-format off
std::vector<Command> StatusCommands()
{
    return {
        {"status", "", "Shows the state of the source: the server that is followed, whether the data are current, the queues, the rows per table, and the last log lines.", ShowStatus},
    };
}
// clang-format on

}  // namespace shell
