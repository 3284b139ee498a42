// Lookups between interface index, full name and short name in "if_base", and operations on names.
#include <syslog.h>

#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr char TABLE[] = "if_base";
constexpr uint32_t FIELD_IF_INDEX = 0;
constexpr uint32_t FIELD_IF_NAME = 2;

int BuildLocalKey(const char* name, QRB_IF_BASE_LOCAL_KEY_S* key)
{
    *key = {};
    return strcpy_s(key->name, sizeof(key->name), name);
}

// Makes the record with this key the current one of the session.
uint32_t ExecuteLocalKey(ORM_SESSION session, const QRB_IF_BASE_LOCAL_KEY_S& key)
{
    QRB_TRY(OrmgIfBaseSetKeyLocalKeyInner(session, &key, sizeof(key)));
    return OrmExecute(session);
}

// Returns the interface index of the first record that matches, or NONE.
uint32_t FindByKey(const char* function, ORM_SESSION session, ORM_SCAN scan,
                   const IF_NAME_KEY_S& key)
{
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret)) {
        QRB_IF_BASE_S base;
        if (IF_CmpIfBaseRecord(session, &key, &base, sizeof(base)) != 0) {
            return base.if_index;
        }
    }
    if (ret != OK) {
        QRB_ERROR_AT(function, "scan %s next fail %u\n", TABLE, ret);
    }
    return NONE;
}

// Writes *ifIndex only if a record has this full name.
uint32_t FindByFullName(ORM_SESSION session, ORM_SCAN scan, const char* name, uint32_t* ifIndex,
                        bool* found)
{
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret)) {
        char rowName[QRB_IF_NAME_SIZE] = {};
        uint32_t rowIndex = 0;
        QRB_TRY(ReadField(session, FIELD_IF_NAME, &rowName));
        QRB_TRY(ReadField(session, FIELD_IF_INDEX, &rowIndex));
        if (strncmp(name, rowName, sizeof(rowName)) == 0) {
            *ifIndex = rowIndex;
            *found = true;
            break;
        }
    }
    return ret;
}

// Copies the short name of the record with this key. A failed copy is logged and leaves *copied
// false; the result is the code of the read.
uint32_t CopySimpleName(const char* function, ORM_SESSION session,
                        const QRB_IF_BASE_LOCAL_KEY_S& key, char* output, bool* copied)
{
    QRB_IF_BASE_S base;
    QRB_TRY(OrmPrepare(session, TABLE, QRB_ORM_OP_READ));
    QRB_TRY(ExecuteLocalKey(session, key));
    QRB_TRY(ReadCurrent(OrmgIfBaseGetAllFieldsInner, session, &base));
    *copied = strcpy_s(output, QRB_IF_NAME_SIZE, base.simple_name) == 0;
    if (!*copied) {
        QRB_ERROR_AT(function, "strcpy_s failed\n");
    }
    return OK;
}

// '.', '/', the digits and ':' are consecutive characters.
bool IsNumberCharacter(char c)
{
    return c >= '.' && c <= ':';
}

}  // namespace

uint32_t IF_INTF_GetIfNameByIfIndex(char* output, uint32_t ifIndex)
{
    QRB_IF_BASE_S base;
    const uint32_t ret = ReadRecord(OrmgIfBaseReadInner, ifIndex, &base);
    if (ret != OK) {
        QRB_INFO("orm read key[%d] failed, ret = %d.\n", ifIndex, ret);
        return NONE;
    }
    const int copied = strcpy_s(output, QRB_IF_NAME_SIZE, base.if_name);
    if (copied != 0) {
        QRB_ERROR("orm cpy failed, index=%d ret = %d.\n", ifIndex, copied);
        return NONE;
    }
    return OK;
}

uint32_t IF_GetIfNameByIndex(uint32_t ifIndex, char* output)
{
    QRB_IF_BASE_S base;
    const uint32_t ret = ReadRecord(OrmgIfBaseReadInner, ifIndex, &base);
    if (ret != OK) {
        QRB_ERROR("orm read key[%d] failed, ret = %d.\n", ifIndex, ret);
        return FAIL;
    }
    const int copied = strcpy_s(output, QRB_IF_NAME_SIZE, base.if_name);
    if (copied != 0) {
        QRB_ERROR("orm cpy failed, index=%d ret = %d.\n", ifIndex, copied);
        return FAIL;
    }
    return OK;
}

uint32_t BDS_IfnetGetIfNameByIfIndex(uint32_t ifIndex, char* output)
{
    if (AnyNull(__func__, output)) {
        return FAIL;
    }
    QRB_IF_BASE_S base;
    const uint32_t ret = ReadRecord(OrmgIfBaseReadInner, ifIndex, &base);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch if_base, ret=%d\n", ret);
        return FAIL;
    }
    // For a name without a terminating NUL the size is 65, and the copy fails.
    const size_t size = strnlen(base.if_name, sizeof(base.if_name)) + 1;
    if (memcpy_s(output, QRB_IF_NAME_SIZE, base.if_name, size) != 0) {
        QRB_ERROR("Failed to copy ifName from db struct to output\n");
        return FAIL;
    }
    return OK;
}

uint32_t BDS_IfnetIsIfExist(uint32_t ifIndex)
{
    constexpr uint32_t EXISTS = 1;
    constexpr uint32_t ABSENT = 0;

    QRB_IF_BASE_S base;
    const uint32_t ret = ReadRecord(OrmgIfBaseReadInner, ifIndex, &base);
    if (ret == ORM_NO_RECORD) {
        return ABSENT;
    }
    if (ret != OK) {
        QRB_ERROR("Error to fetch database, ret=%d\n", ret);
    }
    return EXISTS;
}

uint32_t IF_INTF_GetIfByFullName(const char* fullName)
{
    const char* const function = "IF_ScanTblByCond";  // the name in the messages
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        // This message has neither the identity nor a function name.
        syslog(static_cast<int>(PRIORITY_ERROR), "create db session fail %u\n", ret);
        return NONE;
    }
    ret = OrmPrepare(session, TABLE, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR_AT(function, "prepare db session fail %u\n", ret);
        OrmCloseSession(session);
        return NONE;
    }
    ORM_SCAN scan = 0;
    ret = OrmScanStart(session, &scan);
    if (ret != OK) {
        OrmCloseSession(session);
        QRB_ERROR_AT(function, "start scan %s fail %u\n", TABLE, ret);
        return NONE;
    }
    const uint32_t ifIndex = FindByKey(function, session, scan, {fullName, 1});
    OrmScanEnd(session, scan);
    OrmCloseSession(session);
    return ifIndex;
}

uint32_t IF_CmpIfBaseRecord(ORM_SESSION session, const IF_NAME_KEY_S* key, void* output,
                            int32_t size)
{
    constexpr uint32_t MATCH = 1;
    constexpr uint32_t NO_MATCH = 0;

    QRB_IF_BASE_S base;
    const uint32_t ret = ReadCurrent(OrmgIfBaseGetAllFieldsInner, session, &base);
    if (ret != OK) {
        QRB_ERROR("get all field if_base fail for cmp %u\n", ret);
        return NO_MATCH;
    }
    const char* const name = key->selector != 0 ? base.if_name : base.simple_name;
    if (strncmp(key->name, name, QRB_IF_NAME_SIZE) != 0) {
        return NO_MATCH;
    }
    const size_t capacity = size > 0 ? static_cast<size_t>(size) : 0;
    if (memcpy_s(output, capacity, &base, sizeof(base)) != 0) {
        QRB_ERROR("copy all field if_base fail for cmp\n");
        return NO_MATCH;
    }
    return MATCH;
}

uint32_t IF_INTF_GetIfIndexByFullName(const char* fullName)
{
    if (AnyNull(__func__, fullName)) {
        return NONE;
    }
    ORM_SESSION session = 0;
    if (QRB_CreatDbSession(TABLE, QRB_ORM_OP_READ, &session) != 1) {
        return NONE;
    }
    QRB_IF_BASE_LOCAL_KEY_S key;
    uint32_t ifIndex = NONE;
    if (BuildLocalKey(fullName, &key) != 0 || ExecuteLocalKey(session, key) != OK ||
        ReadField(session, FIELD_IF_INDEX, &ifIndex) != OK) {
        ifIndex = NONE;
    }
    OrmCloseSession(session);
    return ifIndex;
}

uint32_t BDS_Ifname2IfGetIndexByname(const char* name, uint32_t* ifIndex)
{
    if (AnyNull(__func__, name, ifIndex)) {
        return FAIL;
    }
    bool found = false;
    const auto find = [&](ORM_SESSION session, ORM_SCAN scan) {
        return FindByFullName(session, scan, name, ifIndex, &found);
    };
    if (ScanTable(__func__, CHECKED, TABLE, find) != OK) {
        return FAIL;
    }
    if (!found) {
        QRB_INFO("The interface name \"%s\" doesn't exist in DB.\n", name);
        return FAIL;
    }
    return OK;
}

uint32_t IF_INTF_GetSimpleName(const char* fullName, char* output)
{
    if (AnyNull(__func__, fullName, output)) {
        return FAIL;
    }
    QRB_IF_BASE_LOCAL_KEY_S key;
    if (BuildLocalKey(fullName, &key) != 0) {
        QRB_ERROR("strcpy_s failed\n");
        return FAIL;
    }
    const char* const function = __func__;
    bool copied = false;
    InSession(function, IGNORED, [&](ORM_SESSION session) {
        return CopySimpleName(function, session, key, output, &copied);
    });
    return copied ? OK : FAIL;
}

uint32_t IF_INTF_GetFullNameByInput(const char* input, char* output)
{
    const size_t length = strlen(input);
    const int copied = strncpy_s(output, length + 1, input, length);
    if (copied != 0) {
        QRB_ERROR("get full name failed, input=%s ret = %d.\n", input, copied);
        return NONE;
    }
    return OK;
}

uint32_t IF_INTF_GetNameByIfName(char* output, const char* name)
{
    return strcpy_s(output, QRB_IF_NAME_SIZE, name) == 0 ? OK : FAIL;
}

uint32_t BDS_IfnetGetNumStrFromName(const char* name, char* output, uint32_t size)
{
    if (name == nullptr || output == nullptr || size == 0) {
        QRB_ERROR("Null value provided\n");
        return 0;
    }
    const size_t length = strlen(name);
    size_t head = length;
    while (head > 0 && IsNumberCharacter(name[head - 1])) {
        head--;
    }
    const size_t tail = length - head;
    if (tail == 0 || tail + 1 >= size || head < 2) {
        return 0;
    }
    const int copied = memcpy_s(output, tail + 1, name + head, tail + 1);
    if (copied != 0) {
        QRB_ERROR("memcpy failed, ret=%d\n", copied);
    }
    return static_cast<uint32_t>(tail);
}
