// The frame: start-up, the log, and the generic keyed read and scan over any table.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"
#include "shell/functions/row.h"

namespace shell {
namespace {

// The session is open as long as the call lasts.
uint32_t CreateSession(const char* name, uint32_t access)
{
    ORM_SESSION session = 0;
    const uint32_t ret = QRB_CreatDbSession(name, access, &session);
    if (session != 0) {
        OrmCloseSession(session);
    }
    return ret;
}

// Does the action in a session of its own.
template <typename Action>
uint32_t InSession(const Action& action)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != 0) {
        return ret;
    }
    ret = action(session);
    OrmCloseSession(session);
    return ret;
}

uint32_t SetKey(const char* name, Rest words)
{
    const RowKey rowKey(name, words);
    return InSession([&](ORM_SESSION session) {
        return QRB_DB_SESSION_SetKey(session, QRB_ORM_OP_READ, name, &rowKey, SetRowKey);
    });
}

uint32_t SessionGet(const char* name, Rest words, Json* row)
{
    const RowKey rowKey(name, words);
    RowOutput output(name, *row);
    return InSession([&](ORM_SESSION session) {
        return QRB_DB_SESSION_Get(session, name, &rowKey, &output, SetRowKey, GetRow);
    });
}

uint32_t Get(const char* name, Rest words, Json* row)
{
    const RowKey rowKey(name, words);
    RowOutput output(name, *row);
    return QRB_DB_Get(name, &rowKey, &output, SetRowKey, GetRow);
}

uint32_t SessionScan(const char* name, const char* rows, uint32_t* delivered, Json* found)
{
    RowOutput output(name, *found);
    return InSession([&](ORM_SESSION session) {
        return QRB_DB_SESSION_Scan(session, name, &output, UINT32_MAX, AddRow, delivered, rows,
                                   nullptr);
    });
}

uint32_t Scan(const char* name, const char* rows, uint32_t* delivered, Json* found)
{
    RowOutput output(name, *found);
    return QRB_DB_Scan(name, &output, UINT32_MAX, AddRow, delivered, rows, nullptr);
}

void Log(uint32_t priority, const char* function, uint32_t line, const char* text)
{
    Tarn_QRB_Log_Printf(priority, function, line, "%s", text);
}

// clang-format off
constexpr Argument table     {.name = "table", .table = "tables"};
constexpr Argument someTable = arguments::NeverNull(table);
constexpr Argument key       {.name = "key", .rest = true};
constexpr Argument record    {.name = "record"};
constexpr Argument records   {.name = "records"};
constexpr Argument operation {.name = "operation", .fallback = "7"};
constexpr Argument hexSize   {.name = "size", .highest = 256};
constexpr Argument hexText   {.name = "output", .size = 2 * 256 + 3};
constexpr Argument message   {.name = "text", .rest = true};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> FrameFunctions()
{
    using namespace arguments;
    return {
        Define("Tarn_QRB_Log_Printf", Log, value, "", "Writes a line to the system log; priorities above 3 are dropped.", Number("priority"), Number("function"), Number("line"), message),
        FUNCTION(QRB_DB_InitOrm, okOr1, "", "Initialises the access layer. Done at start-up."),
        Define("QRB_CreatDbSession", CreateSession, oneIsOk, "", "Opens a session and prepares it for a table: operation 4 a read, 7 a scan. Here, closes it too.", table, operation),
        Define("QRB_DB_SESSION_SetKey", SetKey, okOrDatabase, "", "Sets the primary key on an open session and reads the row.", someTable, key),
        Define("QRB_DB_SESSION_Get", SessionGet, okOrDatabase, "", "The row with a primary key, on an open session.", someTable, key, record),
        Define("QRB_DB_Get", Get, okOrDatabase, "", "The row with a primary key.", someTable, key, record),
        Define("QRB_DB_SESSION_Scan", SessionScan, okOr1, "", "The rows that a condition matches, on an open session.", someTable, condition, count, records),
        Define("QRB_DB_Scan", Scan, okOr1, "", "The rows that a condition matches, such as: pvid = 10 and switch_port = 1", someTable, condition, count, records),
        FUNCTION(QRB_DB_TransStringToHexNumString, okOr1, "", "A text, cut or padded to a size, as a literal for conditions.", NeverNull(Number("text")), hexText, hexSize),
    };
}
// clang-format on

}  // namespace shell
