// The index of a profile's name: a scan of the whole "qos_integration", and its step.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/qos.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr char TABLE[] = "qos_integration";
constexpr uint32_t FIELD_INDEX = 0;
constexpr uint32_t FIELD_NAME = 1;
constexpr uint32_t NAME_SIZE = 64;

// Visits every row, also after a match.
uint32_t VisitRows(const char* function, ORM_SESSION session, ORM_SCAN scan, const char* name,
                   uint32_t* index)
{
    for (;;) {
        uint8_t end = 0;
        uint32_t ret = OrmScanNext(session, scan, &end);
        if (ret != OK) {
            QRB_ERROR_AT(function, "sacn next failed. ret: %d", ret);
            return ret;
        }
        if (end != 0) {
            return OK;
        }
        ret = QOS_GetIdByName(session, name, index);
        if (ret != OK) {
            QRB_ERROR_AT(function, "get id by name failed. ret: %d", ret);
            return ret;
        }
    }
}

uint32_t ScanProfiles(const char* function, ORM_SESSION session, const char* name, uint32_t* index)
{
    uint32_t ret = OrmPrepare(session, TABLE, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR_AT(function, "prepare failed. ret: %d", ret);
        return ret;
    }
    ORM_SCAN scan = 0;
    ret = OrmScanStart(session, &scan);
    if (ret != OK) {
        QRB_ERROR_AT(function, "scan start failed. ret: %d", ret);
        return ret;
    }
    ret = VisitRows(function, session, scan, name, index);
    OrmScanEnd(session, scan);
    return ret;
}

}  // namespace

uint32_t QOS_GetProfileIdByName(uint32_t /*unused*/, const char* name, uint32_t* index)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR("open session failed. ret: %d", ret);
        return ret;
    }
    ret = ScanProfiles(__func__, session, name, index);
    OrmCloseSession(session);
    return ret;
}

uint32_t QOS_GetIdByName(ORM_SESSION session, const char* name, uint32_t* index)
{
    // A byte more than the field: a name that fills it still ends, and is refused by its length.
    char field[NAME_SIZE + 1] = {};
    uint32_t ret = OrmGetFieldById(session, FIELD_NAME, field, NAME_SIZE);
    if (ret != OK) {
        QRB_ERROR("orm get ProfileName failed. ret = %u", ret);
        return ret;
    }
    char rowName[NAME_SIZE];
    char wanted[NAME_SIZE];
    if (strcpy_s(rowName, sizeof(rowName), field) != 0 ||
        strcpy_s(wanted, sizeof(wanted), name) != 0) {
        return QOS_FAIL;
    }
    if (strcmp(rowName, wanted) != 0) {
        return OK;
    }
    uint32_t rowIndex = 0;
    ret = ReadField(session, FIELD_INDEX, &rowIndex);
    if (ret != OK) {
        QRB_ERROR("orm get ProfileIndex failed. ret = %u", ret);
        return ret;
    }
    *index = rowIndex;
    return OK;
}
