// The shell's input lines. Whatever is typed is carried out or refused, in each style of output;
// for programs every line of output is JSON.
#include <sstream>
#include <string>

#include <tarnd_qrb/memory_map.h>

#include "fuzz.h"
#include "shell/log_catcher.h"
#include "shell/shell.h"
#include "sources/json_error.h"

namespace {

using shell::Printer;

void Type(const std::string& lines, Printer::Style style)
{
    sources::Source    source;
    std::ostringstream output;
    std::istringstream input(lines);
    Printer            printer(output, style);
    shell::Shell       shell(source, printer);
    size_t             left = 5;
    for (std::string line; left-- > 0 && std::getline(input, line) && !shell.Ended();) {
        CHECK(shell.Execute(line) <= shell::Status::Usage);
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
