// Input lines of the shell: commands with valid and random arguments. Every line is executed or
// refused, in each style of output; with --json every line of output is JSON.
#include <algorithm>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <tarnd_qrb/memory_map.h>

#include "fuzz.h"
#include "shell/commands/command.h"
#include "shell/functions/function.h"
#include "shell/output/log_capture.h"
#include "sources/json/json_error.h"

namespace {

using shell::Printer;
using Texts = std::vector<std::string>;

template <typename Named>
void AddNames(Texts& texts, const std::vector<Named>& named)
{
    std::ranges::transform(named, std::back_inserter(texts),
                           [](const Named& one) { return std::string(one.name); });
}

// Excludes commands that access files or have effects after a run: callbacks, the listener, and the
// type table, which each call allocates and none frees.
Texts Verbs()
{
    Texts leftOut = {"watch", "monitor", "publish", "load",
                     "dump",  "save",    "diff",    "BDS_InitIfTypeInfo"};
    AddNames(leftOut, shell::EventFunctions());
    AddNames(leftOut, shell::ListenerFunctions());
    Texts verbs;
    AddNames(verbs, shell::Commands());
    AddNames(verbs, shell::Functions());
    std::erase_if(verbs, [&](const auto& verb) { return std::ranges::count(leftOut, verb) != 0; });
    return verbs;
}

Texts LikelyWords()
{
    Texts words = {"0", "1", "4", "-", "0.0.0.1", "'a b'", "{\"a\": 1}", "#"};
    for (const standin::Table& table : standin::Tables()) {
        const std::string field(table.fields[0].name);
        words.insert(words.end(),
                     {std::string(table.name), field, field + "=0", '"' + field + " = 0\""});
    }
    return words;
}

const std::string& Any(fuzz::Input& input, const Texts& texts)
{
    return texts[input.ConsumeIntegralInRange<size_t>(0, texts.size() - 1)];
}

std::string TakeLine(fuzz::Input& input)
{
    static const Texts verbs = Verbs();
    static const Texts words = LikelyWords();
    std::string line = Any(input, verbs);
    while (const auto choice = input.ConsumeIntegralInRange(0, 3)) {
        line += ' ' + (choice > 1 ? Any(input, words) : input.ConsumeRandomLengthString());
    }
    return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool started = [] {
        MEM_EX_Init();
        shell::SetLogSink([](const std::string&) {});
        std::cerr.rdbuf(nullptr);  // error messages are not checked
        return true;
    }();
    CHECK(started);

    fuzz::Input input(data, size);
    const auto style = input.PickValueInArray(
        {Printer::Style::Plain, Printer::Style::Colour, Printer::Style::JsonLines});
    sources::Source source;
    std::ostringstream output;
    Printer printer(output, style);
    shell::Shell shell(source, printer);
    fuzz::StartOver();
    for (int left = 4; left > 0 && input.remaining_bytes() > 0 && !shell.Ended(); left--) {
        CHECK(shell.Execute(TakeLine(input)) <= shell::Status::Usage);
    }
    std::istringstream written(output.str());
    for (std::string line; style == Printer::Style::JsonLines && std::getline(written, line);) {
        CHECK(sources::Json::accept(line));
    }
    return 0;
}
