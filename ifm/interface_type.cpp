// Port and physical types of interfaces: the type code in "if_base", mapped by two tables.
//
// The port type table is built on first use, under buildLock. Readers take no lock: a table is
// filled before its pointer is published with release semantics, so they see null or a filled
// table.
#include <pthread.h>

#include <cstdlib>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

const BDS_IF_TYPE_INFO_S* g_pstBDSIfTypeInfo = nullptr;

const QRB_IF_TRANS_S g_qrbIfTrans[QRB_IF_TRANS_COUNT] = {
    {0, 38},  {1, 6},   {2, 53},   {3, QRB_PHY_TYPE_OTHER},
    {4, 97},  {5, 98},  {6, 58},   {7, QRB_PHY_TYPE_OTHER},
    {9, 55},  {10, 58}, {11, 45},  {12, 82},
    {13, 60}, {14, 39}, {15, 100}, {16, 1},
};

namespace {

constexpr uint32_t BASE_COUNT = 10;  // entries that BDS_InitIfTypeInfo fills itself

// clang-format off
constexpr BDS_IF_TYPE_INFO_S TYPE_INFO[QRB_IF_TYPE_COUNT] = {
    // first, port, third
    { 38,  25, 22},  //  0
    {  6,  11, 14},
    { 53,  37, 41},
    {  0,   0,  0},
    { 97, 100, 27},
    { 98, 101, 82},  //  5
    {  0,   0,  0},
    { 86,  90, 70},
    { 58,  41, 43},
    { 55,  11, 54},
    { 58,  41, 43},  // 10
    { 45, 104, 29},
    { 82, 105, 66},
    { 60,  43, 45},
    { 39,  26, 23},
    {100, 103, 72},  // 15
    {  1,   1, 12},
};
// clang-format on

pthread_mutex_t buildLock = PTHREAD_MUTEX_INITIALIZER;

void CopyEntries(BDS_IF_TYPE_INFO_S* table, uint32_t first, uint32_t end)
{
    for (uint32_t type = first; type < end; type++) {
        table[type] = TYPE_INFO[type];
    }
}

// Requires buildLock. After a failure the published table is null or lacks the new entries.
uint32_t BuildTable()
{
    const char* const function = "BDS_InitIfTypeInfo";
    uint32_t ret = OK;
    auto* const table =
        static_cast<BDS_IF_TYPE_INFO_S*>(calloc(QRB_IF_TYPE_COUNT, sizeof(BDS_IF_TYPE_INFO_S)));
    if (table == nullptr) {
        QRB_ERROR_AT(function, "g_pstBDSIfTypeInfo malloc fail\n");
        ret = FAIL;
    } else {
        CopyEntries(table, 0, BASE_COUNT);
        if (BDS_InitNewIfTypeInfo(table, QRB_IF_TYPE_COUNT) != OK) {
            QRB_ERROR_AT(function, "g_pstBDSIfTypeInfo InitWlanIfTypeInfo fail\n");
            ret = FAIL;
        }
    }
    __atomic_store_n(&g_pstBDSIfTypeInfo, table, __ATOMIC_RELEASE);
    return ret;
}

const BDS_IF_TYPE_INFO_S* PublishedTable()
{
    return __atomic_load_n(&g_pstBDSIfTypeInfo, __ATOMIC_ACQUIRE);
}

// Returns the table, and builds it on first use. Null if that fails.
const BDS_IF_TYPE_INFO_S* TypeTable()
{
    const BDS_IF_TYPE_INFO_S* table = PublishedTable();
    if (table != nullptr) {
        return table;
    }
    pthread_mutex_lock(&buildLock);
    table = PublishedTable();
    if (table == nullptr && BuildTable() == OK) {
        table = PublishedTable();
    }
    pthread_mutex_unlock(&buildLock);
    return table;
}

}  // namespace

uint32_t BDS_InitIfTypeInfo(void)
{
    pthread_mutex_lock(&buildLock);
    const uint32_t ret = BuildTable();
    pthread_mutex_unlock(&buildLock);
    return ret;
}

uint32_t BDS_InitNewIfTypeInfo(BDS_IF_TYPE_INFO_S* table, uint32_t count)
{
    if (count < QRB_IF_TYPE_COUNT) {
        return FAIL;
    }
    CopyEntries(table, BASE_COUNT, QRB_IF_TYPE_COUNT);
    return OK;
}

uint32_t BDS_IfPortTypeSwitch(uint32_t type, uint32_t* portType)
{
    if (type >= QRB_IF_TYPE_COUNT) {
        return FAIL;
    }
    const BDS_IF_TYPE_INFO_S* const table = TypeTable();
    if (table == nullptr) {
        return FAIL;
    }
    *portType = table[type].port_type;
    return OK;
}

uint32_t BDS_IfnetGetPortType(uint32_t ifIndex, uint32_t* portType)
{
    if (AnyNull(__func__, portType)) {
        return FAIL;
    }
    uint16_t type = 0;
    if (ReadFieldByIfIndex(__func__, "if_base", ifIndex, "if_type", &type) != OK) {
        return FAIL;
    }
    const uint32_t ret = BDS_IfPortTypeSwitch(type, portType);
    if (ret != OK) {
        QRB_INFO("Get port type failed, ret:%u, ifindex:%u, ifType:%hu\n", ret, ifIndex, type);
        return FAIL;
    }
    return OK;
}

uint32_t IFPDT_GetPortType(uint32_t ifIndex)
{
    uint32_t portType = 0;
    const uint32_t ret = BDS_IfnetGetPortType(ifIndex, &portType);
    if (ret != OK) {
        QRB_INFO("Fail to get portType. ret:%u, ifindex:%u\n", ret, ifIndex);
        return NONE;
    }
    return portType;
}

uint32_t IF_INTF_GetPhyTypeByIndex(uint32_t ifIndex)
{
    QRB_IF_BASE_S base;
    const uint32_t ret = ReadRecord(OrmgIfBaseReadInner, ifIndex, &base);
    if (ret != OK) {
        QRB_ERROR("get phy tyep orm read ifIndex[%d] failed, ret = %d.\n", ifIndex, ret);
        return QRB_PHY_TYPE_OTHER;
    }
    for (const QRB_IF_TRANS_S& pair : g_qrbIfTrans) {
        if (pair.if_type == base.if_type) {
            return pair.phy_type;
        }
    }
    return QRB_PHY_TYPE_OTHER;
}
