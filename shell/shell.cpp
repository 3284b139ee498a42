#include "shell/shell.h"

#include <chrono>
#include <new>

#include <standin/deliveries.h>

#include "shell/commands/command.h"
#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"
#include "shell/nearest_name.h"

namespace shell {
namespace {

using namespace std::chrono_literals;

constexpr auto LONGEST_WAIT = 3s;  // maximum wait for the callbacks of a write
constexpr auto PRINT_INTERVAL = 10ms;
constexpr size_t RECENT_LINES = 5;

// Appends the usage of the function to a UsageError.
CallResult CallWith(const Function& function, Words& words)
{
    try {
        return function.call(words);
    } catch (const UsageError& error) {
        throw UsageError(std::string(error.what()) + "\nusage: " + std::string(function.name) +
                         " " + function.Usage());
    }
}

// Runs the action and returns its status. Exceptions are printed.
template <typename Action>
Status RunReported(Printer& printer, const Action& action)
{
    try {
        return action();
    } catch (const OutputError&) {
        throw;
    } catch (const UsageError& error) {
        printer.PrintError(error.what());
        return Status::Usage;
    } catch (const FileError& error) {
        printer.PrintError(error.what());
        return Status::Unavailable;
    } catch (const std::bad_alloc&) {
        printer.PrintError("out of memory");
        return Status::Unavailable;
    } catch (const std::exception& error) {
        printer.PrintError(error.what());
        return Status::Failed;
    }
}

Status StatusOf(Verdict verdict)
{
    return verdict == Verdict::Success ? Status::Success : Status::Failed;
}

}  // namespace

Status Shell::Execute(std::string_view line)
{
    std::vector<std::string> words;
    const Status status = RunReported(printer_, [&] {
        words = SplitLine(line);
        return Status::Success;
    });
    return status == Status::Success ? Execute(words) : status;
}

Status Shell::Execute(const std::vector<std::string>& words)
{
    if (words.empty()) {
        return Status::Success;
    }
    const Status status = RunReported(printer_, [&] {
        Words arguments(std::span<const std::string>(words).subspan(1));
        return Dispatch(words[0], arguments);
    });
    printer_.Flush();
    // The events of a write are printed before the next line is executed.
    const auto deadline = std::chrono::steady_clock::now() + LONGEST_WAIT;
    while (!standin::AwaitDeliveries(PRINT_INTERVAL) &&
           std::chrono::steady_clock::now() < deadline) {
        PrintEvents();
    }
    PrintEvents();
    return status;
}

Status Shell::Finish()
{
    if (!writes_.IsOpen()) {
        return Status::Success;
    }
    printer_.SetInputLine(0);
    printer_.PrintError("a transaction was not committed: " + std::to_string(writes_.Waiting()) +
                        " rows are not written");
    return Status::Failed;
}

void Shell::PrintEvents()
{
    while (const auto event = Events().Pop()) {
        if ((*event)["event"] == "log") {
            recentLog_.push_back(
                {{"time", TimeText(std::chrono::system_clock::now())}, {"line", (*event)["line"]}});
            if (recentLog_.size() > RECENT_LINES) {
                recentLog_.erase(0);
            }
        }
        printer_.PrintEvent(*event);
    }
    printer_.Flush();
}

std::string Shell::File() const
{
    return sources::IsFile(sourceName_) ? sourceName_ : "";
}

// No value while the data are current.
std::optional<double> Shell::SecondsStale() const
{
    const auto lost = source_.State().lost;
    if (!lost) {
        return std::nullopt;
    }
    return RoundedSeconds(std::chrono::system_clock::now() - *lost);
}

Status Shell::Dispatch(const std::string& name, Words& words)
{
    printer_.SetStale(SecondsStale());
    if (const Command* command = FindCommand(name)) {
        if (command->readsTables) {
            printer_.PrintStale();
        }
        return command->run(*this, words);
    }
    const Function* function = FindFunction(name);
    if (function == nullptr) {
        throw UsageError(UnknownName("function or command", name, CallableNames()));
    }
    // A registry must not change while events are published.
    CallResult result;
    standin::BetweenDeliveries([&] { result = CallWith(*function, words); });
    printer_.Print(*function, result);
    return StatusOf(function->VerdictOf(result));
}

}  // namespace shell
