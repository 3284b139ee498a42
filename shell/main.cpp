// tarnd-qrb: hosts the library and calls its functions by name.
#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"
#include "shell/hosted_library.h"
#include "shell/output/log_capture.h"
#include "shell/terminal/line_reader.h"
#include "shell/terminal/progress.h"
#include "shell/terminal/prompt.h"
#include "sources/source.h"

namespace {

using shell::Status;

struct Options {
    std::string source;
    std::vector<std::string> command;
    bool json = false;
    bool echo = false;
};

constexpr auto EXAMPLES = R"(
Examples:
  tarnd-qrb host                                       a prompt; this host's interfaces
  tarnd-qrb device.json IF_INTF_GetIfNameByIfIndex 2   one call and its result
  tarnd-qrb device.json < calls.txt                    calls from a file, one per line
  tarnd-qrb device.json help                           all commands
  tarnd-qrb ovsdb:unix:/run/a.sock,tcp:10.0.0.2:6641   a prompt; the database of these servers

Exit status: 0 success; 1 a result "no" or "failure", or a refused write; 2 a line that can't be
parsed; 3 a source, a file or the output that can't be read or written.
)";

// Incremented with every change of the JSON output format.
constexpr auto VERSION_TEXT = "tarnd-qrb " TARND_VERSION ", JSON form 1";

void Describe(CLI::App& app, Options& options)
{
    app.footer(EXAMPLES);
    app.add_flag("-j,--json", options.json, "Prints JSON, one object per line");
    app.add_flag("-e,--echo", options.echo,
                 "Repeats each line of standard input before its result");
    app.add_option(
           "SOURCE", options.source,
           "Where the data comes from: a JSON file, \"host\" for this host, or \"ovsdb:\" and "
           "servers")
        ->required();
    app.set_version_flag("-V,--version", VERSION_TEXT);
    app.add_option("COMMAND", options.command,
                   "A function or command and its arguments; without one, lines are read");
}

// Number of words before the command, which begins at the second word that is not an option.
int CountOwn(int count, char** words)
{
    int own = 1;
    int positionals = 0;
    for (; own < count && positionals < 2; ++own) {
        positionals += words[own][0] == '-' ? 0 : 1;
    }
    return positionals < 2 ? own : own - 1;
}

shell::Printer::Style StyleFor(const Options& options)
{
    if (options.json) {
        return shell::Printer::Style::JsonLines;
    }
    const bool colour = isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
    return colour ? shell::Printer::Style::Colour : shell::Printer::Style::Plain;
}

Status RunInput(shell::Shell& shell, bool echo)
{
    shell::LineReader lines(STDIN_FILENO);
    const auto printEvents = [&] { shell.PrintEvents(); };
    Status worst = Status::Success;
    for (size_t number = 1; !shell.Ended(); ++number) {
        const auto line = lines.Next(shell::Events().Descriptor(), printEvents);
        if (!line) {
            break;
        }
        if (echo) {
            shell.Out().PrintRaw((line->starts_with('#') ? "" : "> ") + *line + "\n");
            shell.Out().Flush();
        }
        shell.Out().SetInputLine(number);
        worst = std::max(worst, shell.Execute(*line));
    }
    return worst;
}

Status RunLines(shell::Shell& shell, const Options& options)
{
    if (!options.command.empty()) {
        return shell.Execute(options.command);
    }
    return isatty(STDIN_FILENO) != 0 ? RunPrompt(shell) : RunInput(shell, options.echo);
}

// Only the main thread handles SIGINT: threads started while it is blocked never receive it.
void BlockInterrupts(int how)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(how, &signals, nullptr);
}

void ReportWait(const std::string& what)
{
    std::fprintf(stderr, "waiting for %s\n", what.c_str());
}

std::unique_ptr<sources::Source> OpenSource(const std::string& name)
{
    shell::Progress progress("rows read from " + name);
    return sources::OpenSource(name, {[&] { progress.Step(); }, ReportWait});
}

Status Run(const Options& options)
{
    shell::EventQueue& events = shell::Events();  // created before any thread can log
    shell::SetLogSink([&](const std::string& line) { events.PushNow(shell::LogEvent(line)); });
    BlockInterrupts(SIG_BLOCK);
    const auto source = OpenSource(options.source);
    const shell::HostedLibrary library;
    source->Follow();
    BlockInterrupts(SIG_UNBLOCK);
    shell::Printer printer(std::cout, StyleFor(options));
    shell::Shell shell(*source, printer, options.source);
    shell.PrintEvents();
    const Status worst = RunLines(shell, options);
    return std::max(worst, shell.Finish());
}

// A closed standard descriptor would be reused by the next file that is opened.
void CheckStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            open("/dev/null", descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY);
            if (descriptor == STDOUT_FILENO) {
                throw shell::OutputError("standard output: closed");
            }
        }
    }
}

int RunProgram(int count, char** words)
{
    CheckStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    if (MB_CUR_MAX == 1) {
        std::setlocale(LC_CTYPE, "C.UTF-8");  // names and texts are UTF-8 in every locale
    }
    std::signal(SIGPIPE, SIG_IGN);  // writing to a closed pipe fails with EPIPE instead
    Options options;
    CLI::App app("Calls the functions of libtarnd_qrb by name.", "tarnd-qrb");
    Describe(app, options);
    try {
        const int own = CountOwn(count, words);
        app.parse(own, words);
        options.command.assign(words + own, words + count);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : static_cast<int>(Status::Usage);
    }
    return static_cast<int>(Run(options));
}

}  // namespace

int main(int count, char** words)
{
    try {
        return RunProgram(count, words);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarnd-qrb: %s\n", error.what());
        return static_cast<int>(Status::Unavailable);
    }
}
