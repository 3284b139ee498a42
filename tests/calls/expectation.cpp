// The lines of an expectation, read and applied.
#include <fnmatch.h>

#include <algorithm>
#include <climits>
#include <map>
#include <regex>
#include <sstream>

#include "calls/calls.h"

namespace calls {

namespace {

// clang-format off
// What a step is called whose operation looks like this.
constexpr std::pair<const char*, const char*> STEPS[] = {
    {"OrmOpenSession*", "open"},      {"OrmCloseSession", "close"},      {"OrmPrepare", "prepare"},
    {"OrmSetKeyName", "key"},         {"OrmSetIndexKeyValue", "key"},    {"Ormg*KeyInner", "key"},
    {"OrmExecute", "execute"},        {"OrmGetField*", "field"},         {"OrmSetScanCond", "condition"},
    {"OrmScanStart", "start"},        {"OrmScanNext", "next"},           {"OrmScanEnd", "end"},
    {"OrmNodeGetChild", "list"},      {"OrmNodeGetSize", "size"},        {"OrmNodeGetItem*", "item"},
    {"OrmNodeGetField*", "value"},    {"Ormg*ReadInner", "read"},        {"Ormg*FieldsInner", "row"},
    {"OrmSubExtractData", "extract"}, {"OrmSubFetchNext", "fetch"},      {"sprintf_s", "format"},
    {"str*_s", "copy"},               {"mem*_s", "copy"},                {"calloc", "memory"},
    {"malloc_ex", "memory"},
};
// Lines that stand for many, with A and B for $1 and $2.
const std::map<std::string, const char*> SHAPES = {
    {"session", R"(
        close     $2 | Failed to fetch DB, ret=%\n
        open      $1 | Failed to fetch DB, ret=%\n
        any       $1 | DB error: %\n)"},
    {"scan", R"(
        open      $1 | QRB_DB_Scan: Failed to fetch DB, ret=%\n
        close     $2 | QRB_DB_Scan: Failed to fetch DB, ret=%\n
        end       $2 | QRB_DB_SESSION_Scan: Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n
        prepare   $1 | QRB_DB_SESSION_Scan: Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n
        condition $1 | QRB_DB_SESSION_Scan: Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n
        start     $1 | QRB_DB_SESSION_Scan: Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n
        any       $1 | QRB_DB_SESSION_ProcessScanEntries: Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n)"},
};
// clang-format on

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

// Reads an expectation line by line.
class Reader {
public:
    explicit Reader(const Call& call) : name_(call.name), reporter_(call.name)
    {
        std::istringstream text(call.expectations);
        std::string        line;
        std::getline(text, line);
        read_.good = ReadOutcome(line, name_);
        for (std::string word; text >> word && std::getline(text >> std::ws, line);) {
            row_ = word + ' ' + line;
            AddLine(word, line);
        }
    }

    const Expectation& Result() const { return read_; }

private:
    void AddLine(const std::string& word, const std::string& text)
    {
        if (word == "reporter") {
            reporter_ = text;
        } else if (word == "behind") {
            behind_ = text == "-" ? "" : "| " + text;
        } else if (word == "within") {
            AddStepsWithin(text);
        } else if (SHAPES.contains(word)) {
            const size_t       first  = text.find(';');
            const size_t       second = first == std::string::npos ? 0 : first + 2;
            std::istringstream lines(Fill(
                SHAPES.at(word), {{"$1", text.substr(0, first)}, {"$2", text.substr(second)}}));
            for (std::string step, line; lines >> step && std::getline(lines >> std::ws, line);) {
                AddLine(step, line);
            }
        } else {
            AddStep(word, ReadOutcome(text, reporter_));
        }
    }

    void AddStepsWithin(const std::string& text)
    {
        static const Calls      calls = QueryCalls();
        static const std::regex shape(R"((\w+)(?:@(\d+))? +(.*))");
        std::smatch             part;
        ASSERT_TRUE(std::regex_match(text, part, shape)) << name_ << ": " << text;
        const auto call = std::ranges::find(calls, part[1], &Call::name);
        ASSERT_NE(call, calls.end()) << name_ << ": " << text;
        for (Step step : Read(*call).steps) {
            step.row            = row_;
            step.session        = Number(part[2], step.session);
            std::string& answer = step.outcome[0];
            answer              = answer == "=" ? answer : part[3].str();
            Add(step);
        }
    }

    void AddStep(const std::string& condition, const Outcome& outcome)
    {
        static const std::regex shape(
            R"(([^#@=!]+)(?:#(\d+)(?:-(\d+))?)?(?:@(\d+))?(?:=(\d+))?(!)?)");
        std::smatch part;
        ASSERT_TRUE(std::regex_match(condition, part, shape)) << name_ << ": " << condition;
        const unsigned from = Number(part[2], 1);
        const unsigned to   = Number(part[3], Number(part[2], UINT_MAX));
        Add({part[1], from, to, Number(part[4], 0), Number(part[5], 0), part[6].matched, outcome,
             row_});
    }

    void Add(Step step)
    {
        const Outcome behind = ReadOutcome(behind_, name_);
        step.outcome.insert(step.outcome.end(), behind.begin() + 1, behind.end());
        read_.steps.push_back(step);
        read_.unused.insert(row_);
    }

    // "answer | line | line"
    static Outcome ReadOutcome(const std::string& text, const std::string& reporter)
    {
        static const std::regex          bar(" *\\| ");
        const std::sregex_token_iterator part(text.begin(), text.end(), bar, -1);
        Outcome                          outcome = {*part};
        for (auto line = std::next(part); line != std::sregex_token_iterator(); ++line) {
            outcome.push_back(Named(reporter, Fill(*line, {{R"(\n)", "\n"}})));
        }
        return outcome;
    }

    static std::string Named(const std::string& reporter, const std::string& line)
    {
        static const std::regex named(R"((\w+_\w+|DbListener\w+): [^]*)");
        return line[0] == '/'                  ? line.substr(1)
               : std::regex_match(line, named) ? line
                                               : reporter + ": " + line;
    }

    std::string name_;
    std::string row_;
    std::string reporter_;  // of the lines from here on
    std::string behind_;    // what the call logs behind them
    Expectation read_;
};

// "%" and "%+n" in the words of an expectation.
std::string WithCode(std::string text, uint32_t code)
{
    static const std::regex sum(R"(%(\+(\d+))?)");
    for (std::smatch part; std::regex_search(text, part, sum);) {
        const std::string value = std::to_string(code + Number(part[2], 0));
        text                    = part.prefix().str() + value + part.suffix().str();
    }
    return text;
}

// The step that a fault makes fail: the nth of its name in a session.
const Step* FindStep(const std::vector<Step>& steps, const Fault& fault)
{
    const std::string name    = NameOf(fault.operations.back());
    unsigned          session = 0;
    unsigned          nth     = 0;
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

bool IsLogging(const std::string& operation)
{
    return operation == "malloc" || operation == "vsprintf_s";
}

Outcome WithFault(Expectation& expectation, const Fault& fault)
{
    Outcome            good   = expectation.good;
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
        outcome.insert(outcome.end(), good.begin() + 1, good.end());
    }
    for (std::string& text : outcome) {
        text = WithCode(text, fault.code);
    }
    return outcome;
}

std::string Fill(std::string text, const Values& values)
{
    for (const auto& [name, value] : values) {
        for (size_t at = text.find(name); at != std::string::npos; at = text.find(name)) {
            text.replace(at, std::string_view(name).size(), value);
        }
    }
    return text;
}

}  // namespace calls
