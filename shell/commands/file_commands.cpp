// Commands that read and write the database as a file: load, dump, save, diff.
#include <algorithm>
#include <functional>
#include <map>

#include "shell/commands/command.h"
#include "shell/output/json_text.h"
#include "shell/table_lookup.h"
#include "shell/terminal/progress.h"
#include "sources/json/json_file.h"
#include "sources/json/json_row.h"

namespace shell {
namespace {

using standin::Row;

// Throws FileError if the file can't be read or is not in the JSON format.
void ReadRows(const std::string& file, const std::function<void(Row)>& onRow)
{
    try {
        sources::ReadJson(file, onRow);
    } catch (const standin::Error& error) {
        throw FileError(error.what());
    }
}

Status Load(Shell& shell, Words& words)
{
    const std::string file = words.Take("file");
    words.ExpectEnd();
    std::vector<sources::RowWrite> writes;
    Progress progress("rows read");
    ReadRows(file, [&](Row row) {
        writes.push_back({sources::WriteKind::Insert, std::move(row)});
        progress.Step();
    });
    const size_t count = writes.size();
    shell.Writes().Write(std::move(writes));
    shell.Out().PrintDone(shell.Writes().IsOpen() ? "waiting for commit" : "loaded", count);
    return Status::Success;
}

Status Dump(Shell& shell, Words& words)
{
    const std::string file = words.Empty() ? "-" : words.Take("file");
    words.ExpectEnd();
    const std::string text = sources::DumpJson();
    if (file == "-") {
        shell.Out().Page([&] { shell.Out().PrintRaw(text); });
    } else {
        ReplaceFile(file, text);
    }
    return Status::Success;
}

Status Save(Shell& shell, Words& words)
{
    const std::string file = words.Empty() ? shell.File() : words.Take("file");
    words.ExpectEnd();
    if (file.empty()) {
        throw UsageError("the source is not a file; save FILE writes the rows to one");
    }
    ReplaceFile(file, sources::DumpJson());
    if (file == shell.File()) {
        shell.Writes().SetSaved();
    }
    shell.Out().PrintText("saved to " + EscapeControls(file) + "\n");
    return Status::Success;
}

// The rows of a device, sorted by table and key.
using Contents = std::map<std::pair<size_t, Json>, Json>;

void AddTo(Contents& contents, const Row& row)
{
    const standin::Table& table = row.Description();
    Json whole = sources::RowToJson(row);
    Json key = Json::array();
    for (const standin::Field* member : table.keys[0].members) {
        key.push_back(whole[std::string(member->name)]);
    }
    const auto place = static_cast<size_t>(&table - standin::Tables().data());
    contents.emplace(std::pair(place, std::move(key)), std::move(whole));
}

Contents ContentsOf(const std::string& file)
{
    Contents contents;
    ReadRows(file, [&](const Row& row) { AddTo(contents, row); });
    return contents;
}

Contents DatabaseContents()
{
    Contents contents;
    for (const standin::Table& table : standin::Tables()) {
        standin::ForEachRow(table, [&](const Row& row) { AddTo(contents, row); });
    }
    return contents;
}

Json ValueOr(const Json& row, const std::string& field)
{
    const auto found = row.is_object() ? row.find(field) : row.end();
    return found != row.end() && row.is_object() ? *found : Json();
}

// One row of the difference; before or after is null if the row is absent.
Json Difference(const std::pair<size_t, Json>& place, const Json& before, const Json& after)
{
    const standin::Table& table = standin::Tables()[place.first];
    Json key = Json::object();
    for (size_t i = 0; i < place.second.size(); ++i) {
        key[std::string(table.keys[0].members[i]->name)] = place.second[i];
    }
    const char* change = before.is_null() ? "added" : after.is_null() ? "removed" : "changed";
    return {{"change", change},
            {"table", table.name},
            {"key", key},
            {"before", before},
            {"after", after}};
}

Json Compare(const Contents& before, const Contents& after)
{
    Json differences = Json::array();
    for (const auto& [place, row] : before) {
        const auto now = after.find(place);
        if (now == after.end()) {
            differences.push_back(Difference(place, row, nullptr));
        } else if (now->second != row) {
            differences.push_back(Difference(place, row, now->second));
        }
    }
    for (const auto& [place, row] : after) {
        if (!before.contains(place)) {
            differences.push_back(Difference(place, nullptr, row));
        }
    }
    return differences;
}

// "+ table key...", "- table key...", "~ table key: field before -> after".
std::string Described(const Json& difference)
{
    const Json& before = difference["before"];
    const Json& after = difference["after"];
    const std::string table = difference["table"].get<std::string>() + " ";
    if (before.is_null()) {
        return "+ " + table + OneLine(after) + "\n";
    }
    if (after.is_null()) {
        return "- " + table + OneLine(before) + "\n";
    }
    std::string changes;
    for (const std::string& field :
         FieldNames(KnownTable(difference["table"].get<std::string>()))) {
        const Json was = ValueOr(before, field);
        const Json is = ValueOr(after, field);
        if (was != is) {
            changes += (changes.empty() ? ": " : ", ") + field + " " +
                       (was.is_null() ? "nothing" : OneLine(was)) + " -> " +
                       (is.is_null() ? "nothing" : OneLine(is));
        }
    }
    return "~ " + table + OneLine(difference["key"]) + changes + "\n";
}

// Returns 1 if there is a difference, like diff(1).
Status Diff(Shell& shell, Words& words)
{
    const Contents before = ContentsOf(words.Take("file"));
    const Contents after = words.Empty() ? DatabaseContents() : ContentsOf(words.Take("file"));
    words.ExpectEnd();
    const Json differences = Compare(before, after);
    std::string text;
    for (const Json& difference : differences) {
        text += Described(difference);
    }
    if (shell.Out().IsJson()) {
        shell.Out().PrintRows(differences);
    } else {
        shell.Out().PrintText(text);
    }
    return differences.empty() ? Status::Success : Status::Failed;
}

}  // namespace

// clang-format off
std::vector<Command> FileCommands()
{
    return {
        {"load", "FILE", "Inserts the rows of a JSON file, all or none.", Load},
        {"dump", "[FILE]", "Writes the whole database as JSON, to the output or to a file.", Dump, true},
        {"save", "[FILE]", "Writes the whole database back to the file it was read from, or to another.", Save},
        {"diff", "FILE [FILE]", "Compares a file with another, or with the database.", Diff, true},
    };
}
// clang-format on

}  // namespace shell
