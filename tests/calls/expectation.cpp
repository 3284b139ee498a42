// The lines of an expectation, read and applied.
#include <fnmatch.h>

#include <algorithm>
#include <climits>
#include <map>
#include <optional>
#include <regex>
#include <sstream>

#include "calls/calls.h"

namespace calls {

namespace {

// What an operation is called.
constexpr std::pair<const char*, const char*> STEPS[] = {{"OrmOpenSession*", "open"},
                                                         {"OrmCloseSession", "close"},
                                                         {"OrmPrepare", "prepare"},
                                                         {"OrmSetKeyName", "key"},
                                                         {"OrmSetIndexKeyValue", "key"},
                                                         {"Ormg*KeyInner", "key"},
                                                         {"OrmExecute", "execute"},
                                                         {"OrmGetField*", "field"},
                                                         {"OrmSetScanCond", "condition"},
                                                         {"OrmScanStart", "start"},
                                                         {"OrmScanNext", "next"},
                                                         {"OrmScanEnd", "end"},
                                                         {"OrmNodeGetChild", "list"},
                                                         {"OrmNodeGetSize", "size"},
                                                         {"OrmNodeGetItem*", "item"},
                                                         {"OrmNodeGetField*", "value"},
                                                         {"Ormg*ReadInner", "read"},
                                                         {"Ormg*GetAllFieldsInner", "row"},
                                                         {"str*_s", "copy"},
                                                         {"mem*_s", "copy"},
                                                         {"sprintf_s", "format"},
                                                         {"OrmSubFetchNext", "fetch"},
                                                         {"OrmSubExtractData", "extract"},
                                                         {"calloc", "memory"},
                                                         {"malloc_ex", "memory"}};

std::string StepOf(const std::string& operation)
{
    for (const auto& [pattern, step] : STEPS) {
        if (fnmatch(pattern, operation.c_str(), 0) == 0) {
            return step;
        }
    }
    return operation;
}

// Lines that stand for many, with A and B for $1 and $2.
const std::map<std::string, const char*> SHAPES = {{"session", R"(
        close     $2 | Failed to fetch DB, ret=%\n
        open      $1 | Failed to fetch DB, ret=%\n
        any       $1 | DB error: %\n)"},
                                                   {"scan", R"(
        open      $1 | QRB_DB_Scan: Failed to fetch DB, ret=%\n
        close     $2 | QRB_DB_Scan: Failed to fetch DB, ret=%\n
        end       $2 | QRB_DB_SESSION_Scan: $failed
        prepare   $1 | QRB_DB_SESSION_Scan: $failed
        condition $1 | QRB_DB_SESSION_Scan: $failed
        start     $1 | QRB_DB_SESSION_Scan: $failed
        any       $1 | QRB_DB_SESSION_ProcessScanEntries: $failed)"}};
const char* const FAILED_SCAN = R"(Failed to fetch DB, ret=%\n | QRB_DB_Scan: DB error: 1\n)";

// Reads an expectation line by line.
class Reader {
public:
    explicit Reader(const Call& call) : name_(call.name), reporter_(call.name)
    {
        const size_t end = call.expectations.find('\n');
        read_.good       = ReadOutcome(call.expectations.substr(0, end), name_);
        AddLines(end != std::string::npos ? call.expectations.substr(end) : "");
    }

    const Expectation& Result() const { return read_; }

private:
    // row: the one that stands for these lines, if there is one.
    void AddLines(const std::string& lines, const std::string& row = "")
    {
        std::istringstream text(lines);
        for (std::string word, line; text >> word && std::getline(text >> std::ws, line);) {
            AddLine(word, line, row.empty() ? word + ' ' + line : row);
        }
    }

    void AddLine(const std::string& word, const std::string& text, const std::string& row)
    {
        if (word == "reporter") {
            reporter_ = text;
        } else if (word == "behind") {
            behind_ = text == "-" ? "" : "| " + text;
        } else if (word == "within") {
            AddWithin(text, row);
        } else if (SHAPES.contains(word)) {
            const size_t      semicolon = text.find("; ");
            const std::string first     = text.substr(0, semicolon);
            const std::string second =
                semicolon != std::string::npos ? text.substr(semicolon + 2) : first;
            AddLines(
                Fill(SHAPES.at(word), {{"$1", first}, {"$2", second}, {"$failed", FAILED_SCAN}}),
                row);
        } else {
            AddStep(word, ReadOutcome(text, reporter_), row);
        }
    }

    void AddWithin(const std::string& text, const std::string& row)
    {
        static const Calls      calls = QueryCalls();
        static const std::regex shape(R"((\w+)(?:@(\d+))? +(.*))");
        std::smatch             part;
        ASSERT_TRUE(std::regex_match(text, part, shape)) << name_ << ": " << row;
        const auto call = std::ranges::find(calls, part[1], &Call::name);
        ASSERT_NE(call, calls.end()) << name_ << ": " << row;
        for (Step step : Reader(*call).read_.steps) {
            if (step.outcome.answer != "=") {
                step.outcome.answer = part[3];
            }
            step.session =
                part[2].matched ? static_cast<unsigned>(std::stoul(part[2])) : step.session;
            Add(step, row);
        }
    }

    void AddStep(const std::string& condition, const Outcome& outcome, const std::string& row)
    {
        static const std::regex shape(
            R"(([^#@=!]+)(?:#(\d+)(?:-(\d+))?)?(?:@(\d+))?(?:=(\d+))?(!)?)");
        std::smatch part;
        ASSERT_TRUE(std::regex_match(condition, part, shape)) << name_ << ": " << row;
        const auto number = [&part](size_t group, unsigned otherwise) {
            return part[group].matched ? static_cast<unsigned>(std::stoul(part[group])) : otherwise;
        };
        Step step = {part[1],
                     number(2, 1),
                     number(3, number(2, UINT_MAX)),
                     number(4, 0),
                     number(5, 0),
                     {},
                     outcome,
                     {}};
        if (part[6].matched) {
            step.cleanUps = support::CleanUp::FailsToo;
        }
        Add(step, row);
    }

    void Add(Step step, const std::string& row)
    {
        std::ranges::move(ReadOutcome(behind_, name_).lines,
                          std::back_inserter(step.outcome.lines));
        step.row = row;
        read_.steps.push_back(step);
        read_.unused.insert(row);
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
    static const std::regex sum(R"(%(\+(\d+))?)");
    std::smatch             part;
    while (std::regex_search(text, part, sum)) {
        const size_t more = part[2].matched ? std::stoul(part[2]) : 0;
        text              = part.prefix().str() + std::to_string(code + more) + part.suffix().str();
    }
    return text;
}

// Which step a fault makes fail: the nth of its kind in this session.
struct Place {
    std::string operation;
    unsigned    session = 0;
    unsigned    nth     = 0;
};

Place PlaceOf(const Lines& points, const Fault& fault)
{
    Place place = {StepOf(points[fault.number - 1])};
    for (unsigned i = 0; i < fault.number; i++) {
        const std::string step = StepOf(points[i]);
        if (step == "open") {
            place.session++;
            place.nth = 0;
        }
        place.nth += step == place.operation ? 1U : 0U;
    }
    return place;
}

bool Holds(const Step& step, const Place& place, const Fault& fault)
{
    return (step.operation == place.operation || step.operation == "any") &&
           place.nth >= step.from && place.nth <= step.to &&
           (step.session == 0 || step.session == place.session) &&
           (step.code == 0 || step.code == fault.code) &&
           (!step.cleanUps || step.cleanUps == fault.cleanUps);
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

Outcome WithFault(Expectation& expectation, const Lines& points, const Fault& fault)
{
    Outcome            outcome   = expectation.good;
    const std::string& operation = points[fault.number - 1];
    if (IsLogging(operation)) {
        const auto lost = std::count(points.begin(), points.begin() + fault.number - 1, operation);
        if (lost < std::ssize(outcome.lines)) {
            outcome.lines.erase(outcome.lines.begin() + lost);
        }
        return outcome;
    }
    const Place place = PlaceOf(points, fault);
    const auto  step  = std::ranges::find_if(
          expectation.steps, [&](const Step& told) { return Holds(told, place, fault); });
    if (step == expectation.steps.end()) {
        return {"not told", {}};
    }
    expectation.unused.erase(step->row);
    if (step->outcome.answer != "=") {
        outcome = {step->outcome.answer, {}};
    }
    outcome.lines.insert(outcome.lines.begin(), step->outcome.lines.begin(),
                         step->outcome.lines.end());
    outcome.answer = WithCode(outcome.answer, fault.code);
    for (std::string& line : outcome.lines) {
        line = WithCode(line, fault.code);
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
