// From an interface index to its names: one read of "if_base" by its primary key.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

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
    // A name without its terminator counts one byte too many, and the copy refuses it.
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
