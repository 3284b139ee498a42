// Commands that read tables: tables, show, walk.
#include <algorithm>
#include <map>

#include <tarnd_qrb/table_walk.h>

#include "shell/commands/assignment.h"
#include "shell/commands/command.h"
#include "shell/commands/row_selection.h"
#include "shell/named_numbers.h"
#include "shell/output/log_capture.h"
#include "shell/output/row_printer.h"
#include "shell/table_lookup.h"
#include "sources/json/json_row.h"
#include "sources/json/json_value.h"

namespace shell {
namespace {

Status ListTables(Shell& shell, Words& words)
{
    words.ExpectEnd();
    Json rows = Json::array();
    for (const standin::Table& table : standin::Tables()) {
        const Json fields = FieldNames(table);
        rows.push_back(
            {{"table", table.name}, {"rows", standin::CountRows(table)}, {"fields", fields}});
    }
    shell.Out().PrintRows(rows);
    return Status::Success;
}

// Returns the fields and lists that have a value in a selected row. Fields of the key and of
// conditions are always included.
std::vector<std::string> UsedColumns(const RowSelection& selection)
{
    const standin::Table& table = selection.table;
    std::vector<bool> used(table.fields.size() + table.lists.size());
    selection.ForEachRow([&](const standin::Row& row) {
        for (size_t i = 0; i < table.fields.size(); ++i) {
            used[i] = used[i] || std::ranges::any_of(row.Bytes(table.fields[i]),
                                                     [](uint8_t byte) { return byte != 0; });
        }
        for (size_t i = 0; i < table.lists.size(); ++i) {
            used[table.fields.size() + i] = used[table.fields.size() + i] || row.Items(i);
        }
    });
    for (const standin::Field* member : table.keys[0].members) {
        used[static_cast<size_t>(member - table.fields.data())] = true;
    }
    std::vector<std::string> columns;
    const auto names = FieldNames(table);
    for (size_t i = 0; i < names.size(); ++i) {
        if (used[i] || std::ranges::count(selection.conditions, names[i]) != 0) {
            columns.push_back(names[i]);
        }
    }
    return columns;
}

Json OnlyColumns(const Json& row, const std::vector<std::string>& columns)
{
    Json chosen = Json::object();
    for (const std::string& column : columns) {
        if (const auto found = row.find(column); found != row.end()) {
            chosen.emplace(column, Json(*found));
        }
    }
    return chosen;
}

// Formats numbers with their names: "1 (up)".
Json WithValueNames(Json row, const standin::Table& table)
{
    for (auto& member : row.items()) {
        if (!ValueNames(table.name, member.key()).empty()) {
            member.value() = ValueText(table, member.key(), member.value());
        }
    }
    return row;
}

// Text output omits fields that have no value in any row, unless they are requested.
void ShowForPeople(Printer& printer, const RowSelection& selection)
{
    const auto columns = selection.columns.empty() ? UsedColumns(selection) : selection.columns;
    RowPrinter rows(printer, columns, selection.fieldPerLine);
    selection.ForEachRow([&](const standin::Row& row) {
        rows.Print(OnlyColumns(WithValueNames(WholeRow(row), selection.table), columns));
    });
    rows.Finish();
}

void ShowAsJson(Printer& printer, const RowSelection& selection)
{
    RowPrinter rows(printer, selection.columns, false);
    selection.ForEachRow([&](const standin::Row& row) {
        rows.Print(selection.columns.empty() ? WholeRow(row)
                                             : OnlyColumns(WholeRow(row), selection.columns));
    });
    rows.Finish();
}

Status Show(Shell& shell, Words& words)
{
    const standin::Table& table = KnownTable(words.Take("TABLE"));
    const RowSelection selection = TakeSelection(table, words);
    if (shell.Out().IsJson()) {
        ShowAsJson(shell.Out(), selection);
    } else {
        shell.Out().Page([&] { ShowForPeople(shell.Out(), selection); });
    }
    return Status::Success;
}

struct Walk {
    std::string_view table;
    std::string_view value;
    std::string_view name;  // field that holds the name; empty: use the interface name
    uint32_t (*first)(uint32_t*);
    uint32_t (*next)(uint32_t*);
    uint32_t (*finish)();
};

constexpr Walk WALKS[] = {
    {"if_base", "if_index", "if_name", QRB_GetFirstIfIndex, QRB_GetNextIfIndex,
     QRB_ScanIfIndexFinish},
    {"port", "port_index", "", QRB_GetFirstPort, QRB_GetNextPort, QRB_ScanPortFinish},
    {"vlan", "vlan_id", "name", QRB_GetFirstVlan, QRB_GetNextVlan, QRB_ScanVlanFinish},
};

const Walk& WalkOver(const std::string& table)
{
    const auto found = std::ranges::find(WALKS, table, &Walk::table);
    if (found == std::end(WALKS)) {
        throw UsageError(table + " can't be walked, only if_base, port and vlan");
    }
    return *found;
}

// The names of the rows that the walk returns, by the walk's value.
std::map<uint32_t, std::string> NamesFor(const Walk& walk)
{
    std::map<uint32_t, std::string> names;
    standin::ForEachRow(*standin::FindTable(walk.table), [&](const standin::Row& row) {
        const auto value = static_cast<uint32_t>(row.Number(walk.value));
        names.emplace(value, walk.name.empty()
                                 ? InterfaceName(static_cast<uint32_t>(row.Number("if_index")))
                                 : std::string(row.Text(walk.name)));
    });
    return names;
}

Status WalkTable(Shell& shell, Words& words)
{
    const Walk& walk = WalkOver(words.Take("table"));
    words.ExpectEnd();
    const auto names = NamesFor(walk);
    LogCapture log;
    Json rows = Json::array();
    uint32_t found = 0;
    uint32_t ret = walk.first(&found);
    const bool opened = ret == 0;
    for (; ret == 0; ret = walk.next(&found)) {
        const auto name = names.find(found);
        rows.push_back({{walk.value, found}, {"name", name != names.end() ? name->second : ""}});
    }
    const uint32_t finished = opened ? walk.finish() : 0;
    shell.Out().PrintRows(rows);
    shell.Out().PrintLog(log.Take());
    return finished == 0 ? Status::Success : Status::Failed;
}

}  // namespace

// clang-format off
std::vector<Command> TableCommands()
{
    return {
        {"tables", "", "Lists the tables with their numbers of rows and their fields.", ListTables, true},
        {"show", "TABLE [FIELD=VALUE...] [columns FIELD,...] [sort [-]FIELD] [limit N] [lines]", "Shows the rows of a table that match all conditions. Texts may be patterns with * and ?; for sets, += selects rows that contain ids, -= rows that do not. lines: one field per line.", Show, true},
        {"walk", "if_base|port|vlan", "Walks a table from the first to the last row with the functions of the library.", WalkTable, true},
    };
}
// clang-format on

}  // namespace shell
