// The lines of an expectation, read and applied.
#include <algorithm>
#include <climits>
#include <optional>
#include <regex>
#include <sstream>

#include "calls/calls.h"

namespace calls {

namespace {

// What an operation is called, by how its name begins and ends.
constexpr struct {
    std::string_view begin;
    std::string_view end;
    const char*      step;
} STEPS[] = {
    {"OrmOpenSession", "", "open"},
    {"OrmCloseSession", "", "close"},
    {"OrmPrepare", "", "prepare"},
    {"OrmSetKeyName", "", "key"},
    {"OrmSetIndexKeyValue", "", "key"},
    {"Ormg", "KeyInner", "key"},
    {"OrmExecute", "", "execute"},
    {"OrmGetField", "", "field"},
    {"OrmSetScanCond", "", "condition"},
    {"OrmScanStart", "", "start"},
    {"OrmScanNext", "", "next"},
    {"OrmScanEnd", "", "end"},
    {"OrmNodeGetChild", "", "list"},
    {"OrmNodeGetSize", "", "size"},
    {"OrmNodeGetItem", "", "item"},
    {"OrmNodeGetField", "", "value"},
    {"Ormg", "ReadInner", "read"},
    {"Ormg", "GetAllFieldsInner", "row"},
    {"str", "_s", "copy"},
    {"mem", "_s", "copy"},
    {"sprintf_s", "", "format"},
    {"OrmSubFetchNext", "", "fetch"},
    {"OrmSubExtractData", "", "extract"},
    {"calloc", "", "memory"},
    {"malloc_ex", "", "memory"},
};

std::string_view StepOf(const std::string& operation)
{
    for (const auto& [begin, end, step] : STEPS) {
        if (operation.starts_with(begin) && operation.ends_with(end)) {
            return step;
        }
    }
    return operation;
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
        } else if (word == "session") {
            AddStep("open", text + " | Failed to fetch DB, ret=%\\n");
            AddStep("any", text + " | DB error: %\\n");
        } else if (word == "closing") {
            AddStep("close", text + " | Failed to fetch DB, ret=%\\n");
        } else if (word == "scan") {
            AddScan(text.substr(0, text.find(';')), text.substr(text.find(';') + 2));
        } else {
            AddStep(word, text);
        }
    }

    void AddStep(const std::string& condition, const std::string& outcome)
    {
        static const std::regex shape(
            R"(([^#@=!]+)(?:#(\d+)(?:-(\d+))?)?(?:@(\d+))?(?:=(\d+))?(!)?)");
        std::smatch part;
        if (!std::regex_match(condition, part, shape)) {
            ADD_FAILURE() << name_ << ": not a step: " << condition;
            return;
        }
        const auto number = [&part](size_t group, unsigned otherwise) {
            return part[group].matched ? static_cast<unsigned>(std::stoul(part[group])) : otherwise;
        };
        Step step = {part[1],      number(2, 1), number(3, number(2, UINT_MAX)), number(4, 0),
                     number(5, 0), {},           ReadOutcome(outcome, reporter_)};
        if (part[6].matched) {
            step.cleanUps = support::CleanUp::FailsToo;
        }
        for (const std::string& line : ReadOutcome(behind_, name_).lines) {
            step.outcome.lines.push_back(line);
        }
        read_.steps.push_back(step);
    }

    void AddScan(const std::string& failure, const std::string& afterEntry)
    {
        const std::string line   = ": Failed to fetch DB, ret=%\\n";
        const std::string outer  = " | QRB_DB_Scan" + line;
        const std::string behind = line + " | QRB_DB_Scan: DB error: 1\\n";
        const std::string inner  = " | QRB_DB_SESSION_Scan" + behind;
        AddStep("open", failure + outer);
        AddStep("close", afterEntry + outer);
        AddStep("end", afterEntry + inner);
        for (const char* step : {"prepare", "condition", "start"}) {
            AddStep(step, failure + inner);
        }
        AddStep("any", failure + " | QRB_DB_SESSION_ProcessScanEntries" + behind);
    }

    // "answer | line | line"
    static Outcome ReadOutcome(const std::string& text, const std::string& reporter)
    {
        static const std::regex          bar(" *\\| ");
        const std::sregex_token_iterator part(text.begin(), text.end(), bar, -1);
        Outcome                          outcome = {*part, {}};
        for (auto line = std::next(part); line != std::sregex_token_iterator(); ++line) {
            outcome.lines.push_back(Named(reporter, *line));
        }
        return outcome;
    }

    static std::string Named(const std::string& reporter, const std::string& line)
    {
        static const std::regex named(R"((\w+_\w+|DbListener\w+): .*)");
        static const std::regex newline(R"(\\n)");
        const std::string       text = std::regex_replace(line, newline, "\n");
        return line[0] == '/'                  ? text.substr(1)
               : std::regex_match(line, named) ? text
                                               : reporter + ": " + text;
    }

    std::string name_;
    std::string reporter_;  // of the lines from here on
    std::string behind_;    // what the call logs behind them
    Expectation read_;
};

// "%" and "%+n" in the words of an expectation.
std::string WithCode(std::string text, uint32_t code)
{
    for (size_t at = text.find('%'); at != std::string::npos; at = text.find('%')) {
        size_t digits = 0;
        size_t more   = 0;
        if (text.substr(at).starts_with("%+")) {
            more = std::stoul(text.substr(at + 2), &digits);
            digits++;
        }
        text.replace(at, 1 + digits, std::to_string(code + more));
    }
    return text;
}

Outcome WithCode(Outcome outcome, uint32_t code)
{
    outcome.answer = WithCode(outcome.answer, code);
    for (std::string& line : outcome.lines) {
        line = WithCode(line, code);
    }
    return outcome;
}

bool Holds(const Step& step, const Lines& points, const Fault& fault)
{
    const std::string_view operation = StepOf(points[fault.number - 1]);
    unsigned               session   = 0;
    unsigned               nth       = 0;
    for (unsigned i = 0; i < fault.number; i++) {
        const std::string_view point = StepOf(points[i]);
        if (point == "open") {
            session++;
            nth = 0;
        }
        nth += point == operation ? 1U : 0U;
    }
    return (step.operation == operation || step.operation == "any") && nth >= step.from &&
           nth <= step.to && (step.session == 0 || step.session == session) &&
           (step.code == 0 || step.code == fault.code) &&
           (!step.cleanUps || step.cleanUps == fault.cleanUps);
}

}  // namespace

Expectation Read(const Call& call)
{
    return Reader(call).Result();
}

Outcome WithFault(const Expectation& expectation, const Lines& points, const Fault& fault)
{
    Outcome            outcome   = expectation.good;
    const std::string& operation = points[fault.number - 1];
    if (operation == "malloc" || operation == "vsprintf_s") {  // a line that is lost
        const auto lost = std::count(points.begin(), points.begin() + fault.number - 1, operation);
        if (lost < std::ssize(outcome.lines)) {
            outcome.lines.erase(outcome.lines.begin() + lost);
        }
        return outcome;
    }
    for (const Step& step : expectation.steps) {
        if (Holds(step, points, fault)) {
            if (step.outcome.answer != "=") {
                outcome = step.outcome;
            } else {
                outcome.lines.insert(outcome.lines.begin(), step.outcome.lines.begin(),
                                     step.outcome.lines.end());
            }
            return WithCode(outcome, fault.code);
        }
    }
    return {"not told", {}};
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
