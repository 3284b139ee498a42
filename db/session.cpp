// Start-up of the access layer, and a session that its caller keeps.
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t INIT_MODE = 1;
constexpr uint32_t INIT_OPTION = 0;

// QRB_CreatDbSession alone answers the other way round.
constexpr uint32_t CREATED = 1;
constexpr uint32_t NOT_CREATED = 0;

}  // namespace

uint32_t QRB_DB_InitOrm()
{
    const uint32_t ret = OrmInit(INIT_MODE, INIT_OPTION);
    if (ret != OK) {
        QRB_ERROR("[Error]: Orm init failed, ret=%d\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t QRB_CreatDbSession(const char* table, uint32_t operation, ORM_SESSION* session)
{
    if (table == nullptr || session == nullptr) {
        return NOT_CREATED;
    }
    *session = 0;
    if (OrmOpenSessionByDefault(session) != OK) {
        QRB_ERROR("Database error, info: open session failed\n");
        return NOT_CREATED;
    }
    if (OrmPrepare(*session, table, operation) != OK) {
        QRB_ERROR("Database error, info: prepare session failed\n");
        OrmCloseSession(*session);
        *session = 0;
        return NOT_CREATED;
    }
    return CREATED;
}
