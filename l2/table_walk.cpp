// The walks over interfaces, ports and VLANs: one walk, told three times what differs.
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/table_walk.h>

#include "db/access.h"

using namespace qrb;

ORM_SESSION g_ScanIndexSession = 0;
ORM_SCAN g_IndexScanHandle = 0;
ORM_SESSION g_ScanPortSession = 0;
ORM_SCAN g_PortScanHandle = 0;
ORM_SESSION g_ScanVlanSession = 0;
ORM_SCAN g_VlanScanHandle = 0;

namespace {

struct WALK_S {
    const char* table;
    ORM_SESSION* session;
    ORM_SCAN* scan;
    uint32_t (*readValue)(ORM_SESSION session, uint32_t* value);
    uint32_t (*finish)();
    // As messages name the walk, its session and the reader of its rows.
    const char* name;
    const char* sessionName;
    const char* readerName;
};

uint32_t ReadIfIndex(ORM_SESSION session, uint32_t* value)
{
    QRB_IF_BASE_S base;
    QRB_TRY(ReadCurrent(OrmgIfBaseGetAllFieldsInner, session, &base));
    *value = base.if_index;
    return OK;
}

uint32_t ReadPortIndex(ORM_SESSION session, uint32_t* value)
{
    QRB_PORT_S port;
    QRB_TRY(ReadCurrent(OrmgPortGetAllFieldsInner, session, &port));
    *value = port.port_index;
    return OK;
}

uint32_t ReadVlanId(ORM_SESSION session, uint32_t* value)
{
    QRB_VLAN_S vlan;
    QRB_TRY(ReadCurrent(OrmgVlanGetAllFieldsInner, session, &vlan));
    *value = vlan.vlan_id;
    return OK;
}

// clang-format off
constexpr WALK_S IF_INDEX_WALK = {"if_base", &g_ScanIndexSession, &g_IndexScanHandle,
                                  ReadIfIndex, QRB_ScanIfIndexFinish,
                                  "index", "g_ScanIndexSession", "OrmgIfBaseGetAllFields"};
constexpr WALK_S PORT_WALK     = {"port", &g_ScanPortSession, &g_PortScanHandle,
                                  ReadPortIndex, QRB_ScanPortFinish,
                                  "port", "g_ScanPortSession", "OrmgportGetAllFields"};
constexpr WALK_S VLAN_WALK     = {"vlan", &g_ScanVlanSession, &g_VlanScanHandle,
                                  ReadVlanId, QRB_ScanVlanFinish,
                                  "vlan", "g_ScanVlanSession", "OrmgVlanGetAllFields"};
// clang-format on

uint32_t PrepareAndStart(const char* function, const WALK_S& walk)
{
    uint32_t ret = OrmPrepare(*walk.session, walk.table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, OrmPrepare %s fail", ret, walk.name);
        return FAIL;
    }
    ret = OrmScanStart(*walk.session, walk.scan);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, OrmScanStart %s fail", ret, walk.name);
        return FAIL;
    }
    return OK;
}

uint32_t Open(const char* function, const WALK_S& walk)
{
    const uint32_t ret = OrmOpenSessionByDefault(walk.session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, open %s %s fail", ret, walk.name,
                     walk.sessionName);
        return FAIL;
    }
    if (PrepareAndStart(function, walk) != OK) {
        OrmCloseSession(*walk.session);
        *walk.session = 0;
        return FAIL;
    }
    return OK;
}

// The value of the next row. FAIL at the end of the table, silently, and after a failure.
uint32_t Advance(const char* function, const WALK_S& walk, uint32_t* value)
{
    uint8_t end = 0;
    uint32_t ret = OrmScanNext(*walk.session, *walk.scan, &end);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmScanNext ret:%u, isEof:%u", ret, end);
        return FAIL;
    }
    if (end != 0) {
        return FAIL;
    }
    ret = walk.readValue(*walk.session, value);
    if (ret != OK) {
        QRB_ERROR_AT(function, "%s fail ret:%u", walk.readerName, ret);
        return FAIL;
    }
    return OK;
}

// It is not asked whether the walk is open: the database refuses the null handles.
uint32_t WalkFinish(const char* function, const WALK_S& walk)
{
    const uint32_t ended = OrmScanEnd(*walk.session, *walk.scan);
    *walk.scan = 0;
    if (ended != OK) {
        QRB_ERROR_AT(function, "OrmScanEnd fail ret:%u", ended);
    }
    const uint32_t closed = OrmCloseSession(*walk.session);
    *walk.session = 0;
    if (ended == OK && closed != OK) {
        QRB_ERROR_AT(function, "OrmCloseSession fail ret:%u", closed);
    }
    return ended == OK && closed == OK ? OK : FAIL;
}

uint32_t WalkFirst(const char* function, const WALK_S& walk, uint32_t* value)
{
    if (*walk.session != 0 || *walk.scan != 0) {
        return FAIL;
    }
    if (Open(function, walk) != OK) {
        return FAIL;
    }
    if (Advance(function, walk, value) != OK) {
        walk.finish();
        return FAIL;
    }
    return OK;
}

uint32_t WalkNext(const char* function, const WALK_S& walk, uint32_t* value)
{
    if (*walk.session == 0 || *walk.scan == 0) {
        return FAIL;
    }
    return Advance(function, walk, value);
}

// A step of a walk under an older name: the output is written whatever happens.
template <typename Value>
uint32_t Yield(uint32_t (*step)(uint32_t*), Value* output)
{
    uint32_t value = 0;
    const uint32_t ret = step(&value);
    *output = static_cast<Value>(value);
    return ret;
}

}  // namespace

uint32_t QRB_GetFirstIfIndex(uint32_t* ifIndex)
{
    return WalkFirst(__func__, IF_INDEX_WALK, ifIndex);
}

uint32_t QRB_GetNextIfIndex(uint32_t* ifIndex)
{
    return WalkNext(__func__, IF_INDEX_WALK, ifIndex);
}

uint32_t QRB_ScanIfIndexFinish()
{
    return WalkFinish(__func__, IF_INDEX_WALK);
}

uint32_t QRB_GetFirstPort(uint32_t* portIndex)
{
    return WalkFirst(__func__, PORT_WALK, portIndex);
}

uint32_t QRB_GetNextPort(uint32_t* portIndex)
{
    return WalkNext(__func__, PORT_WALK, portIndex);
}

uint32_t QRB_ScanPortFinish()
{
    return WalkFinish(__func__, PORT_WALK);
}

uint32_t QRB_GetFirstVlan(uint32_t* vlanId)
{
    return WalkFirst(__func__, VLAN_WALK, vlanId);
}

uint32_t QRB_GetNextVlan(uint32_t* vlanId)
{
    return WalkNext(__func__, VLAN_WALK, vlanId);
}

uint32_t QRB_ScanVlanFinish()
{
    return WalkFinish(__func__, VLAN_WALK);
}

uint32_t IF_INTF_GetFirstIfIndex(uint32_t* ifIndex)
{
    return Yield(QRB_GetFirstIfIndex, ifIndex);
}

uint32_t IF_INTF_GetNextIfIndex(uint32_t /*current*/, uint32_t* ifIndex)
{
    return Yield(QRB_GetNextIfIndex, ifIndex);
}

uint32_t IF_INTF_ScanFinish()
{
    return QRB_ScanIfIndexFinish();
}

uint32_t L2IF_GetFirstPort(uint32_t* portIndex)
{
    return Yield(QRB_GetFirstPort, portIndex);
}

uint32_t L2IF_GetNextPort(uint32_t* portIndex)
{
    return Yield(QRB_GetNextPort, portIndex);
}

uint32_t L2IF_ScanFinish()
{
    return QRB_ScanPortFinish();
}

uint32_t L2IF_GetFirstVlan(uint16_t* vlanId)
{
    return Yield(QRB_GetFirstVlan, vlanId);
}

uint32_t L2IF_GetNextVlan(uint16_t* vlanId)
{
    return Yield(QRB_GetNextVlan, vlanId);
}

uint32_t L2IF_ScanVlanFinish()
{
    return QRB_ScanVlanFinish();
}
