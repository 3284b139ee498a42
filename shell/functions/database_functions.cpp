// Start-up, the log, and the generic keyed read and scan of any table.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"
#include "shell/functions/row_callbacks.h"

namespace shell {
namespace {

// The session stays open during the call.
uint32_t CreateSession(const char* name, uint32_t access)
{
    ORM_SESSION session = 0;
    const uint32_t ret = QRB_CreatDbSession(name, access, &session);
    if (session != 0) {
        OrmCloseSession(session);
    }
    return ret;
}

// Runs the action in a new session.
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

constexpr Argument TABLE{.name = "table", .table = "tables"};
constexpr Argument SOME_TABLE = arguments::NeverNull(TABLE);
constexpr Argument KEY_VALUES{.name = "key", .rest = true};
constexpr Argument RECORD{.name = "record"};
constexpr Argument RECORDS{.name = "records"};
constexpr Argument OPERATION{.name = "operation", .fallback = "7"};
constexpr Argument HEX_SIZE{.name = "size", .highest = 256};
constexpr Argument HEX_TEXT{.name = "output", .size = 2 * 256 + 3};
constexpr Argument MESSAGE{.name = "text", .rest = true};

}  // namespace

// clang-format off
std::vector<Function> DatabaseFunctions()
{
    using namespace arguments;
    return {
        Define("Tarn_QRB_Log_Printf", Log, VALUE, "", "Writes a line to the system log; priorities above 3 are dropped.", Number("priority"), Number("function"), Number("line"), MESSAGE),
        FUNCTION(QRB_DB_InitOrm, OK_OR1, "", "Initialises the access layer. Done at start-up."),
        Define("QRB_CreatDbSession", CreateSession, ONE_IS_OK, "", "Opens a session and prepares it for a table: operation 4 a read, 7 a scan. The shell closes it again.", TABLE, OPERATION),
        Define("QRB_DB_SESSION_SetKey", SetKey, OK_OR_DATABASE, "", "Sets the primary key on an open session and reads the row.", SOME_TABLE, KEY_VALUES),
        Define("QRB_DB_SESSION_Get", SessionGet, OK_OR_DATABASE, "", "The row with a primary key, on an open session.", SOME_TABLE, KEY_VALUES, RECORD),
        Define("QRB_DB_Get", Get, OK_OR_DATABASE, "", "The row with a primary key.", SOME_TABLE, KEY_VALUES, RECORD),
        Define("QRB_DB_SESSION_Scan", SessionScan, OK_OR1, "", "The rows that a condition matches, on an open session.", SOME_TABLE, CONDITION, COUNT, RECORDS),
        Define("QRB_DB_Scan", Scan, OK_OR1, "", "The rows that a condition matches, such as: pvid = 10 and switch_port = 1", SOME_TABLE, CONDITION, COUNT, RECORDS),
        FUNCTION(QRB_DB_TransStringToHexNumString, OK_OR1, "", "A text, cut or padded to a size, as a literal for conditions.", NeverNull(Number("text")), HEX_TEXT, HEX_SIZE),
    };
}
// clang-format on

}  // namespace shell
