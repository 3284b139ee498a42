// The shell's input lines. Whatever is typed is carried out or refused, in each style of output;
// for programs every line of output is JSON.
#include <set>
#include <sstream>
#include <string>

#include <tarnd_qrb/memory_map.h>

#include "fuzz.h"
#include "shell/function.h"
#include "shell/log_catcher.h"
#include "shell/shell.h"
#include "shell/words.h"
#include "sources/json_error.h"

namespace {

using shell::Printer;

std::set<std::string> LeftOut()
{
    std::set<std::string> names = {"watch", "publish", "load", "dump", "diff"};
    for (const auto& family : {shell::EventFunctions(), shell::ListenerFunctions()}) {
        for (const shell::Function& function : family) {
            names.emplace(function.name);
        }
    }
    return names;
}

bool IsLeftOut(const std::string& line)
{
    static const std::set<std::string> names = LeftOut();
    try {
        const auto words = shell::SplitLine(line);
        return !words.empty() && names.contains(words[0]);
    } catch (const shell::UsageError&) {
        return false;
    }
}

void Type(const std::string& lines, Printer::Style style)
{
    sources::Source    source;
    std::ostringstream output;
    std::istringstream input(lines);
    Printer            printer(output, style);
    shell::Shell       shell(source, printer);
    size_t             left = 5;
    for (std::string line; left-- > 0 && std::getline(input, line) && !shell.Ended();) {
        CHECK(IsLeftOut(line) || shell.Execute(line) <= shell::Status::Usage);
    }
    std::istringstream written(output.str());
    for (std::string line; style == Printer::Style::JsonLines && std::getline(written, line);) {
        CHECK(sources::Json::accept(line));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool started = [] {
        MEM_EX_Init();
        shell::SetLogSink([](const std::string&) {});
        return true;
    }();
    CHECK(started);

    fuzz::Input input(data, size);
    const auto  style = input.PickValueInArray(
         {Printer::Style::Plain, Printer::Style::Colour, Printer::Style::JsonLines});
    fuzz::StartOver();
    Type(input.ConsumeRemainingBytesAsString(), style);
    return 0;
}
