// Looking at tables: tables, show, walk.
#include <algorithm>

#include <tarnd_qrb/table_walk.h>

#include "shell/commands/assignment.h"
#include "shell/commands/command.h"
#include "shell/output/log_capture.h"
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

// Every field; RowToJson leaves out what is zero or empty.
Json WholeRow(const standin::Row& row)
{
    Json whole = Json::object();
    for (const standin::Field& field : row.Description().fields) {
        whole.emplace(field.name, sources::ValueToJson(field.kind, row.Bytes(field)));
    }
    const Json sparse = sources::RowToJson(row);
    for (const standin::List& list : row.Description().lists) {
        if (const auto items = sparse.find(list.name); items != sparse.end()) {
            whole.emplace(list.name, Json(*items));
        }
    }
    return whole;
}

// The fields that one of the rows has something in.
std::vector<std::string> UsedFields(const std::vector<standin::Row>& rows)
{
    std::vector<std::string> used;
    for (const standin::Row& row : rows) {
        const Json sparse = sources::RowToJson(row);
        for (const auto& member : sparse.items()) {
            if (std::ranges::find(used, member.key()) == used.end()) {
                used.push_back(member.key());
            }
        }
    }
    return used;
}

std::vector<standin::Row> RowsThatHave(const standin::Table& table,
                                       const std::vector<Assignment>& wanted)
{
    std::vector<standin::Row> rows;
    standin::ForEachRow(table, [&](const standin::Row& row) {
        if (Has(row, wanted)) {
            rows.push_back(row);
        }
    });
    return rows;
}

// People are spared the fields that are zero or empty in every row.
Status Show(Shell& shell, Words& words)
{
    const standin::Table& table = KnownTable(words.Take("table"));
    const auto rows = RowsThatHave(table, TakeAssignments(table, words));
    const auto used = UsedFields(rows);
    Json shown = Json::array();
    for (const standin::Row& row : rows) {
        Json whole = WholeRow(row);
        for (const standin::Field& field : table.fields) {
            if (!shell.Out().IsJson() &&
                std::ranges::find(used, std::string(field.name)) == used.end()) {
                whole.erase(std::string(field.name));
            }
        }
        shown.push_back(std::move(whole));
    }
    shell.Out().PrintRows(shown);
    return Status::Success;
}

struct Walk {
    std::string_view table;
    std::string_view value;
    uint32_t (*first)(uint32_t*);
    uint32_t (*next)(uint32_t*);
    uint32_t (*finish)();
};

constexpr Walk WALKS[] = {
    {"if_base", "if_index", QRB_GetFirstIfIndex, QRB_GetNextIfIndex, QRB_ScanIfIndexFinish},
    {"port", "port_index", QRB_GetFirstPort, QRB_GetNextPort, QRB_ScanPortFinish},
    {"vlan", "vlan_id", QRB_GetFirstVlan, QRB_GetNextVlan, QRB_ScanVlanFinish},
};

const Walk& WalkOver(const std::string& table)
{
    const auto found = std::ranges::find(WALKS, table, &Walk::table);
    if (found == std::end(WALKS)) {
        throw UsageError("there is no walk over " + table + ", only over if_base, port and vlan");
    }
    return *found;
}

Status WalkTable(Shell& shell, Words& words)
{
    const Walk& walk = WalkOver(words.Take("table"));
    words.ExpectEnd();
    LogCapture log;
    Json rows = Json::array();
    uint32_t found = 0;
    uint32_t ret = walk.first(&found);
    const bool opened = ret == 0;
    for (; ret == 0; ret = walk.next(&found)) {
        rows.push_back({{walk.value, found}});
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
        {"tables", "", "Lists the tables, with their numbers of rows and their fields.", ListTables},
        {"show", "TABLE [FIELD=VALUE...]", "Shows the rows of a table, or those with these values.", Show},
        {"walk", "if_base|port|vlan", "Walks a table from first to last, and closes the walk.", WalkTable},
    };
}
// clang-format on

}  // namespace shell
