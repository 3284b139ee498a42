// QoS profiles in "qos_integration": the index of a name, and the remark and CAR (committed access
// rate) lists of an index.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/qos.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr char TABLE[] = "qos_integration";
constexpr uint32_t FIELD_INDEX = 0;
constexpr uint32_t FIELD_NAME = 1;
constexpr uint32_t NAME_SIZE = 64;

// Item of a list that goes to the second slot of QOS_PROFILE_INFO_S; every other item goes to the
// first.
constexpr uint32_t SECOND_SLOT_ITEM = 1;

// Field numbers of list items.
constexpr uint32_t FIELD_REMARK = 1;
constexpr uint32_t FIELD_CAR_1 = 1;
constexpr uint32_t FIELD_CAR_2 = 2;
constexpr uint32_t FIELD_CAR_3 = 3;
constexpr uint32_t FIELD_CAR_4 = 4;

// Reads every row, also after a match: the last profile with the name is returned.
uint32_t ScanRows(const char* function, ORM_SESSION session, ORM_SCAN scan, const char* name,
                  uint32_t* index)
{
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret)) {
        ret = QOS_GetIdByName(session, name, index);
        if (ret != OK) {
            QRB_ERROR_AT(function, "get id by name failed. ret: %d", ret);
            return ret;
        }
    }
    if (ret != OK) {
        QRB_ERROR_AT(function, "sacn next failed. ret: %d", ret);
    }
    return ret;
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
    ret = ScanRows(function, session, scan, name, index);
    OrmScanEnd(session, scan);
    return ret;
}

// Makes the profile's row the current record.
uint32_t ReadProfile(const char* function, ORM_SESSION session, uint32_t index)
{
    uint32_t ret = OrmPrepare(session, TABLE, QRB_ORM_OP_READ);
    if (ret != OK) {
        QRB_ERROR_AT(function, "[qrb qos]error : prepare failed. ret: %d", ret);
        return ret;
    }
    ret = OrmgQosIntegrationSetKeyPrimaryKeyInner(session, &index, sizeof(index));
    if (ret != OK) {
        QRB_ERROR_AT(function, "[qrb qos]error : set key failed. ret: %d", ret);
        return ret;
    }
    ret = OrmExecute(session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "[qrb qos]error : execute failed. ret: %d", ret);
    }
    return ret;
}

// Returns 0 if the size query fails.
uint32_t ItemCount(ORM_NODE list)
{
    uint32_t count = 0;
    OrmNodeGetSize(list, &count);
    return count;
}

// Members of QOS_PROFILE_INFO_S that one kind of remark sets.
struct REMARK_SLOTS_S {
    uint8_t* valid;
    uint8_t* first;
    uint8_t* second;
};

// Stores the remarks of a list. Returns the code of the first item that cannot be read; the items
// before it stay stored.
inline uint32_t ReadRemarks(ORM_NODE list, QOS_PROFILE_INFO_S* info, const REMARK_SLOTS_S& slots)
{
    const uint32_t count = ItemCount(list);
    for (uint32_t index = 0; index < count; index++) {
        ORM_NODE item = 0;
        uint32_t remark = 0;
        OrmNodeGetItemByIdx(list, index, &item);  // after a failure item is 0 and the read fails
        QRB_TRY(ReadItemField(item, FIELD_REMARK, &remark));
        info->valid = 1;
        *slots.valid = 1;
        if (index == SECOND_SLOT_ITEM) {
            *slots.second = static_cast<uint8_t>(remark);
        } else {
            *slots.first = static_cast<uint8_t>(remark);
        }
    }
    return OK;
}

// The readers of a list log a missing list; other failures are logged after the close.
bool IsUnreported(uint32_t ret)
{
    return ret != OK && ret != ORM_NO_LIST;
}

uint32_t ReadDscpList(const char* function, ORM_SESSION session, QOS_PROFILE_INFO_S* info)
{
    ORM_NODE list = 0;
    const uint32_t ret = OrmNodeGetChild(session, 0, "remark_dscp_list", &list);
    if (ret == ORM_NO_LIST) {
        QRB_ERROR_AT(function, "remark dscp list is not exist.");
    }
    return ret == OK ? QOS_GetDscp(list, info) : ret;
}

uint32_t Read8021List(const char* function, ORM_SESSION session, QOS_PROFILE_INFO_S* info)
{
    ORM_NODE list = 0;
    const uint32_t ret = OrmNodeGetChild(session, 0, "remark_8021p_list", &list);
    if (ret == ORM_NO_LIST) {
        QRB_ERROR_AT(function, "remark 8021p list is not exist. ret = %u", ret);
    }
    if (ret == OK) {
        QOS_Get8021(list, info);
    }
    return ret;
}

// Returns the sum of the codes of all steps, which is 0 if none failed.
uint32_t ReadCar(ORM_NODE list, uint32_t number, QOS_CAR_S* car)
{
    ORM_NODE item = 0;
    uint32_t sum = OrmNodeGetItemByIdx(list, number, &item);
    sum += ReadItemField(item, FIELD_CAR_1, &car->field1);
    sum += ReadItemField(item, FIELD_CAR_2, &car->field2);
    sum += ReadItemField(item, FIELD_CAR_3, &car->field3);
    sum += ReadItemField(item, FIELD_CAR_4, &car->field4);
    return sum;
}

// Stops at the first item that cannot be read, and returns the result of ReadCar.
uint32_t ReadCars(ORM_NODE list, QOS_PROFILE_INFO_S* info)
{
    const uint32_t count = ItemCount(list);
    for (uint32_t item = 0; item < count; item++) {
        QOS_CAR_S car = {};
        QRB_TRY(ReadCar(list, item, &car));
        info->valid = 1;
        QOS_AssignCars(info, item, car.field1, car.field2, car.field3, car.field4);
    }
    return OK;
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
    // One byte more than the field: a name without a terminating NUL is 64 characters long, and the
    // copy below fails.
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

uint32_t QOS_SetQosIntePk(ORM_SESSION* session, uint32_t index)
{
    *session = 0;
    uint32_t ret = OrmOpenSessionByDefault(session);
    if (ret != OK) {
        QRB_ERROR("[qrb qos]error : open session failed. ret: %d", ret);
        return ret;
    }
    ret = ReadProfile(__func__, *session, index);
    if (ret != OK) {
        OrmCloseSession(*session);
        *session = 0;
    }
    return ret;
}

uint32_t QOS_GetRemarkInfo(uint32_t /*unused*/, uint32_t index, QOS_PROFILE_INFO_S* info)
{
    ORM_SESSION session = 0;
    if (QOS_SetQosIntePk(&session, index) != OK) {
        return OK;
    }
    const uint32_t dscp = ReadDscpList(__func__, session, info);
    const uint32_t pri8021p = dscp == OK ? Read8021List(__func__, session, info) : OK;
    OrmCloseSession(session);
    if (IsUnreported(dscp)) {
        QRB_ERROR("orm prepare for scan failed.ret = %u", dscp);
    }
    if (IsUnreported(pri8021p)) {
        QRB_ERROR("orm prepare for scan failed. ret = %u", pri8021p);
    }
    return OK;
}

uint32_t QOS_GetDscp(ORM_NODE list, QOS_PROFILE_INFO_S* info)
{
    const REMARK_SLOTS_S slots = {&info->dscpValid, &info->dscp0, &info->dscp1};
    const uint32_t ret = ReadRemarks(list, info, slots);
    if (ret != OK) {
        QRB_ERROR("get remark desp list failed. ret: %u", ret);
        return QOS_FAIL;
    }
    return OK;
}

uint32_t QOS_Get8021(ORM_NODE list, QOS_PROFILE_INFO_S* info)
{
    const REMARK_SLOTS_S slots = {&info->pri8021pValid, &info->pri8021p0, &info->pri8021p1};
    const uint32_t ret = ReadRemarks(list, info, slots);
    if (ret != OK) {
        QRB_ERROR("get remark 8021p list value failed. ret: %u", ret);
        return QOS_FAIL;
    }
    return OK;
}

uint32_t QOS_GetCarInfo(uint32_t /*unused*/, uint32_t index, QOS_PROFILE_INFO_S* info)
{
    ORM_SESSION session = 0;
    if (QOS_SetQosIntePk(&session, index) != OK) {
        QRB_ERROR("qos read db in car info failed.");
        return OK;
    }
    ORM_NODE list = 0;
    const uint32_t found = OrmNodeGetChild(session, 0, "car_list", &list);
    if (found == ORM_NO_LIST) {
        QRB_ERROR("car list is not exist. ret = %u", found);
    }
    const uint32_t read = found == OK ? ReadCars(list, info) : found;
    const uint32_t closed = OrmCloseSession(session);
    if (IsUnreported(found)) {
        QRB_ERROR("orm prepare for scan failed.ret = %u", found);
    } else if (found == OK && read != OK) {
        QRB_ERROR("orm prepare for scan failed. ret = %u", read);
    } else if (read == OK && closed != OK) {
        QRB_ERROR("orm close session failed");
    }
    return OK;
}

void QOS_AssignCars(QOS_PROFILE_INFO_S* info, uint32_t item, uint32_t field1, uint32_t field2,
                    uint32_t field3, uint32_t field4)
{
    const QOS_CAR_S car = {1, field1, field3, field2, field4};
    if (item == SECOND_SLOT_ITEM) {
        info->car1 = car;
    } else {
        info->car0 = car;
    }
}
