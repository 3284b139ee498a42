// The keyed read of any table: how the key is set and which fields are read, callbacks tell.
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

uint32_t QRB_DB_SESSION_SetKey(ORM_SESSION session, uint32_t operation, const char* table,
                               const void* keyArgument, QRB_SET_KEY_FUNC setKey)
{
    uint32_t ret = OrmPrepare(session, table, operation);
    if (ret != OK) {
        QRB_ERROR("Table: %s prepare failed.", table);
        return ret;
    }
    ret = setKey(session, keyArgument);
    if (ret != OK) {
        QRB_ERROR("Table: %s set key failed.", table);
        return ret;
    }
    ret = OrmExecute(session);
    if (ret != OK) {
        QRB_ERROR("Table: %s execute failed.", table);
    }
    return ret;
}

uint32_t QRB_DB_SESSION_Get(ORM_SESSION session, const char* table, const void* keyArgument,
                            void* output, QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields)
{
    QRB_TRY(QRB_DB_SESSION_SetKey(session, QRB_ORM_OP_READ, table, keyArgument, setKey));
    const uint32_t ret = getFields(session, output);
    if (ret != OK) {
        QRB_ERROR("Table: %s get fields failed.", table);
    }
    return ret;
}

uint32_t QRB_DB_Get(const char* table, const void* keyArgument, void* output,
                    QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR("Table: %s open session failed.", table);
        return ret;
    }
    ret = QRB_DB_SESSION_Get(session, table, keyArgument, output, setKey, getFields);
    const uint32_t closed = OrmCloseSession(session);
    return ret != OK ? ret : closed;
}
