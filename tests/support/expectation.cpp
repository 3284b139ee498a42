// What docs/failures tells, read and applied.
#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <span>

#include <climits>

#include "support/example_calls.h"

namespace calls {

namespace {

// How the title of a shape ends.
constexpr char SHAPE[] = " A; B";

// clang-format off
// What a step is called whose operation looks like this.
constexpr std::pair<const char*, const char*> STEPS[] = {
    {"OrmOpenSession*", "open"},  {"OrmCloseSession", "close"},    {"OrmPrepare", "prepare"},
    {"OrmSet*Key*", "key"},       {"Ormg*KeyInner", "key"},        {"OrmExecute", "execute"},
    {"OrmGetField*", "field"},    {"OrmSetScanCond", "condition"}, {"OrmScanStart", "start"},
    {"OrmScanNext", "next"},      {"OrmScanEnd", "end"},           {"OrmNodeGetChild", "list"},
    {"OrmNodeGetSize", "size"},   {"OrmNodeGetItem*", "item"},     {"OrmNodeGetField*", "value"},
    {"Ormg*ReadInner", "read"},   {"Ormg*FieldsInner", "row"},     {"OrmSubExtractData", "extract"},
    {"OrmSubFetchNext", "fetch"}, {"sprintf_s", "format"},         {"str*_s", "copy"},
    {"mem*_s", "copy"},           {"calloc", "memory"},            {"malloc_ex", "memory"},
};
// clang-format on

// What docs/failures tells, row by row, by title.
const std::map<std::string, Lines>& Told()
{
    static const std::map<std::string, Lines> told = [] {
        std::map<std::string, Lines> read;
        for (const auto& file :
             std::filesystem::directory_iterator(TARND_PROJECT_ROOT "/docs/failures")) {
            if (file.path().extension() != ".txt") {
                continue;  // the device
            }
            std::ifstream text(file.path());
            std::string title;
            for (std::string line; std::getline(text, line);) {
                if (line.starts_with("    ")) {
                    read[title].push_back(line.substr(4));
                } else if (!line.empty() && line[0] != '#') {
                    read[title = line];
                }
            }
        }
        return read;
    }();
    return told;
}

std::string NameOf(const std::string& operation)
{
    for (const auto& [pattern, step] : STEPS) {
        if (fnmatch(pattern, operation.c_str(), 0) == 0) {
            return step;
        }
    }
    return operation;
}

unsigned Number(const std::string& digits, unsigned otherwise)
{
    return digits.empty() ? otherwise : static_cast<unsigned>(std::stoul(digits));
}

// An outcome, and the lines of another one behind.
Outcome Followed(Outcome outcome, const Outcome& other)
{
    outcome.insert(outcome.end(), other.begin() + 1, other.end());
    return outcome;
}

// Reads what is told of a call, row by row.
class Reader {
public:
    explicit Reader(const Call& call) : name_(call.Name())
    {
        const auto told = Told().find(call.title);
        if (told == Told().end() || told->second.empty()) {
            read_.good = {"is not told"};
            return;
        }
        read_.good = ReadOutcome(told->second[0], name_);
        for (const std::string& row : std::span(told->second).subspan(1)) {
            row_ = row;
            read_.unused.insert(row);
            const auto [word, outcome] = ReadRow(row);
            const auto shape = Told().find(word + SHAPE);
            if (word == "within") {
                AddStepsWithin(outcome);
            } else if (shape != Told().end()) {
                AddShape(shape->second, outcome);
            } else {
                AddStep(word, outcome);
            }
        }
    }

    const Expectation& Result() const { return read_; }

private:
    std::pair<std::string, Outcome> ReadRow(const std::string& row) const
    {
        const size_t end = row.find(' ');
        return {row.substr(0, end),
                ReadOutcome(row.substr(row.find_first_not_of(' ', end)), name_)};
    }

    // The rows of a shape. Told are "A" or "A; B", and what is logged behind.
    void AddShape(const Lines& rows, const Outcome& told)
    {
        const std::string& answers = told[0];
        const size_t end = answers.find(';');
        for (const std::string& row : rows) {
            auto [word, outcome] = ReadRow(row);
            outcome[0] = outcome[0] == "A" || end == std::string::npos ? answers.substr(0, end)
                                                                       : answers.substr(end + 2);
            AddStep(word, Followed(outcome, told));
        }
    }

    // "Call@session answer", and what is logged behind.
    void AddStepsWithin(const Outcome& told)
    {
        static const Calls calls = AllCalls();
        static const std::regex shape(R"((\w+)(?:@(\d+))? +(.*))");
        std::smatch part;
        ASSERT_TRUE(std::regex_match(told[0], part, shape)) << name_ << ": " << told[0];
        const auto call = std::ranges::find(calls, part[1].str(), &Call::Name);
        ASSERT_NE(call, calls.end()) << name_ << ": " << told[0];
        for (Step step : Read(*call).steps) {
            step.row = row_;
            step.session = Number(part[2], step.session);
            if (step.outcome[0] != "=") {
                step.outcome[0] = part[3].str();
                step.outcome = Followed(step.outcome, told);
            }
            read_.steps.push_back(step);
        }
    }

    void AddStep(const std::string& condition, const Outcome& outcome)
    {
        static const std::regex shape(
            R"(([^#@=!]+)(?:#([1-9]\d*)(?:-(\d+))?)?(?:@([1-9]\d*))?(?:=([1-9]\d*))?(!)?)");
        std::smatch part;
        ASSERT_TRUE(std::regex_match(condition, part, shape)) << name_ << ": " << condition;
        const unsigned from = Number(part[2], 1);
        const unsigned to = Number(part[3], Number(part[2], UINT_MAX));
        read_.steps.push_back({part[1], from, to, Number(part[4], 0), Number(part[5], 0),
                               part[6].matched, outcome, row_});
    }

    std::string name_;
    std::string row_;
    Expectation read_;
};

std::string Named(const std::string& name, const std::string& line)
{
    static const std::regex named(R"(^\w*(_|DbListener)\w*: )");
    return line[0] == '/'                   ? line.substr(1)
           : std::regex_search(line, named) ? line
                                            : name + ": " + line;
}

// "%" and "%+n" in the words of an expectation.
std::string WithCode(std::string text, uint32_t code)
{
    static const std::regex sum(R"(%(\+(\d+))?)");
    for (std::smatch part; std::regex_search(text, part, sum);) {
        const std::string value = std::to_string(code + Number(part[2], 0));
        text = part.prefix().str() + value + part.suffix().str();
    }
    return text;
}

// The step that a fault makes fail: the nth of its name in a session.
const Step* FindStep(const std::vector<Step>& steps, const Fault& fault)
{
    const std::string name = NameOf(fault.operations.back());
    unsigned session = 0;
    unsigned nth = 0;
    for (const std::string& operation : fault.operations) {
        const std::string step = NameOf(operation);
        if (step == "open") {
            session++;
            nth = 0;
        }
        nth += step == name ? 1U : 0U;
    }
    const auto found = std::ranges::find_if(steps, [&](const Step& step) {
        return (step.name == name || step.name == "any") && nth >= step.from && nth <= step.to &&
               (step.session == 0 || step.session == session) &&
               (step.code == 0 || step.code == fault.code) &&
               (!step.cleanUpsFail || fault.cleanUps == support::CleanUp::FailsToo);
    });
    return found != steps.end() ? &*found : nullptr;
}

}  // namespace

Expectation Read(const Call& call)
{
    return Reader(call).Result();
}

// "answer | line | line"
Outcome ReadOutcome(const std::string& text, const std::string& name)
{
    static const std::regex bar(" *\\| ");
    static const std::regex newline(R"(\\n)");
    const std::sregex_token_iterator part(text.begin(), text.end(), bar, -1);
    Outcome outcome = {*part};
    for (auto line = std::next(part); line != std::sregex_token_iterator(); ++line) {
        outcome.push_back(Named(name, std::regex_replace(line->str(), newline, "\n")));
    }
    return outcome;
}

std::set<std::string> Titles()
{
    std::set<std::string> titles;
    for (const auto& [title, rows] : Told()) {
        if (!title.ends_with(SHAPE)) {
            titles.insert(title);
        }
    }
    return titles;
}

bool IsLogging(const std::string& operation)
{
    return operation == "malloc" || operation == "vsprintf_s";
}

Outcome WithFault(Expectation& expectation, const Fault& fault)
{
    Outcome good = expectation.good;
    const std::string& failed = fault.operations.back();
    if (IsLogging(failed)) {
        const auto line = std::ranges::count(fault.operations, failed);
        if (line < std::ssize(good)) {
            good.erase(good.begin() + line);
        }
        return good;
    }
    const Step* const step = FindStep(expectation.steps, fault);
    if (step == nullptr) {
        return {"not told"};
    }
    expectation.unused.erase(step->row);
    Outcome outcome = step->outcome;
    if (outcome[0] == "=") {
        outcome[0] = good[0];
        outcome = Followed(outcome, good);
    }
    for (std::string& text : outcome) {
        text = WithCode(text, fault.code);
    }
    return outcome;
}

}  // namespace calls
