#include "shell/shell.h"

#include <chrono>

#include <standin/deliveries.h>

#include "shell/commands/command.h"
#include "shell/events/event_queue.h"
#include "shell/nearest_name.h"

namespace shell {
namespace {

constexpr std::chrono::seconds LONGEST_WAIT(3);

// What is wrong with the words is told together with those that would be right.
CallResult CallWith(const Function& function, Words& words)
{
    try {
        return function.call(words);
    } catch (const UsageError& error) {
        throw UsageError(std::string(error.what()) + "\nusage: " + std::string(function.name) +
                         " " + function.Usage());
    }
}

// Carries out the action; what it throws is told.
template <typename Action>
Status Told(Printer& printer, const Action& action)
{
    try {
        return action();
    } catch (const UsageError& error) {
        printer.PrintError(error.what());
        return Status::Usage;
    } catch (const std::exception& error) {
        printer.PrintError(error.what());
        return Status::Failed;
    }
}

}  // namespace

Status Shell::Execute(std::string_view line)
{
    return Told(printer_, [&] { return Execute(SplitLine(line)); });
}

Status Shell::Execute(const std::vector<std::string>& words)
{
    if (words.empty()) {
        return Status::Good;
    }
    const Status status = Told(printer_, [&] {
        Words arguments(std::span<const std::string>(words).subspan(1));
        return Carry(words[0], arguments);
    });
    // What a write brought about stands behind it.
    standin::AwaitDeliveries(LONGEST_WAIT);
    PrintEvents();
    return status;
}

Status Shell::Finish()
{
    if (!writes_.IsOpen()) {
        return Status::Good;
    }
    printer_.PrintError("a transaction was not committed: " + std::to_string(writes_.Waiting()) +
                        " rows are not written");
    return Status::Failed;
}

void Shell::PrintEvents()
{
    while (const auto event = Events().Pop()) {
        printer_.PrintEvent(*event);
    }
}

Status Shell::Carry(const std::string& name, Words& words)
{
    if (const Command* command = FindCommand(name)) {
        return command->run(*this, words);
    }
    const Function* function = FindFunction(name);
    if (function == nullptr) {
        throw UsageError(NoSuch("function or command", name, CallableNames()));
    }
    // Registries are changed only while nothing is published.
    CallResult answer;
    standin::BetweenDeliveries([&] { answer = CallWith(*function, words); });
    printer_.Print(*function, answer);
    const bool good = !answer.code || function->result.Of(*answer.code).good;
    return good ? Status::Good : Status::Failed;
}

}  // namespace shell
