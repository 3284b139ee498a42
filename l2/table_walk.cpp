// Table iterators over interfaces, ports and VLANs. The three share one implementation,
// parameterised by a descriptor.
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

struct TABLE_ITERATOR_S {
    const char* table;
    ORM_SESSION* session;
    ORM_SCAN* scan;
    uint32_t (*readValue)(ORM_SESSION session, uint32_t* value);
    // Names in messages: the iterator, its session variable, the row accessor, the finish function.
    const char* name;
    const char* sessionName;
    const char* accessorName;
    const char* finishName;
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

constexpr TABLE_ITERATOR_S INTERFACES = {
    .table = "if_base",
    .session = &g_ScanIndexSession,
    .scan = &g_IndexScanHandle,
    .readValue = ReadIfIndex,
    .name = "index",
    .sessionName = "g_ScanIndexSession",
    .accessorName = "OrmgIfBaseGetAllFields",
    .finishName = "QRB_ScanIfIndexFinish",
};

constexpr TABLE_ITERATOR_S PORTS = {
    .table = "port",
    .session = &g_ScanPortSession,
    .scan = &g_PortScanHandle,
    .readValue = ReadPortIndex,
    .name = "port",
    .sessionName = "g_ScanPortSession",
    .accessorName = "OrmgportGetAllFields",
    .finishName = "QRB_ScanPortFinish",
};

constexpr TABLE_ITERATOR_S VLANS = {
    .table = "vlan",
    .session = &g_ScanVlanSession,
    .scan = &g_VlanScanHandle,
    .readValue = ReadVlanId,
    .name = "vlan",
    .sessionName = "g_ScanVlanSession",
    .accessorName = "OrmgVlanGetAllFields",
    .finishName = "QRB_ScanVlanFinish",
};

uint32_t PrepareAndStart(const char* function, const TABLE_ITERATOR_S& iterator)
{
    uint32_t ret = OrmPrepare(*iterator.session, iterator.table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, OrmPrepare %s fail", ret, iterator.name);
        return FAIL;
    }
    ret = OrmScanStart(*iterator.session, iterator.scan);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, OrmScanStart %s fail", ret, iterator.name);
        return FAIL;
    }
    return OK;
}

uint32_t Open(const char* function, const TABLE_ITERATOR_S& iterator)
{
    const uint32_t ret = OrmOpenSessionByDefault(iterator.session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: %d, open %s %s fail", ret, iterator.name,
                     iterator.sessionName);
        return FAIL;
    }
    if (PrepareAndStart(function, iterator) != OK) {
        OrmCloseSession(*iterator.session);
        *iterator.session = 0;
        return FAIL;
    }
    return OK;
}

// Reads the value of the next row. FAIL at the end of the table, without logging, and after a
// failure.
uint32_t Advance(const char* function, const TABLE_ITERATOR_S& iterator, uint32_t* value)
{
    uint8_t end = 0;
    uint32_t ret = OrmScanNext(*iterator.session, *iterator.scan, &end);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmScanNext ret:%u, isEof:%u", ret, end);
        return FAIL;
    }
    if (end != 0) {
        return FAIL;
    }
    ret = iterator.readValue(*iterator.session, value);
    if (ret != OK) {
        QRB_ERROR_AT(function, "%s fail ret:%u", iterator.accessorName, ret);
        return FAIL;
    }
    return OK;
}

// Does not check that the iterator is open: the database rejects null handles.
uint32_t Finish(const char* function, const TABLE_ITERATOR_S& iterator)
{
    const uint32_t ended = OrmScanEnd(*iterator.session, *iterator.scan);
    *iterator.scan = 0;
    if (ended != OK) {
        QRB_ERROR_AT(function, "OrmScanEnd fail ret:%u", ended);
    }
    const uint32_t closed = OrmCloseSession(*iterator.session);
    *iterator.session = 0;
    if (ended == OK && closed != OK) {
        QRB_ERROR_AT(function, "OrmCloseSession fail ret:%u", closed);
    }
    return ended == OK && closed == OK ? OK : FAIL;
}

uint32_t First(const char* function, const TABLE_ITERATOR_S& iterator, uint32_t* value)
{
    if (*iterator.session != 0 || *iterator.scan != 0) {
        return FAIL;
    }
    if (Open(function, iterator) != OK) {
        return FAIL;
    }
    if (Advance(function, iterator, value) != OK) {
        Finish(iterator.finishName, iterator);
        return FAIL;
    }
    return OK;
}

uint32_t Next(const char* function, const TABLE_ITERATOR_S& iterator, uint32_t* value)
{
    if (*iterator.session == 0 || *iterator.scan == 0) {
        return FAIL;
    }
    return Advance(function, iterator, value);
}

// Steps an iterator for the older names, whose output is 0 after a failure.
template <typename Value>
uint32_t StepAndStore(uint32_t (*step)(uint32_t*), Value* output)
{
    uint32_t value = 0;
    const uint32_t ret = step(&value);
    *output = static_cast<Value>(value);
    return ret;
}

}  // namespace

uint32_t QRB_GetFirstIfIndex(uint32_t* ifIndex)
{
    return First(__func__, INTERFACES, ifIndex);
}

uint32_t QRB_GetNextIfIndex(uint32_t* ifIndex)
{
    return Next(__func__, INTERFACES, ifIndex);
}

uint32_t QRB_ScanIfIndexFinish()
{
    return Finish(__func__, INTERFACES);
}

uint32_t QRB_GetFirstPort(uint32_t* portIndex)
{
    return First(__func__, PORTS, portIndex);
}

uint32_t QRB_GetNextPort(uint32_t* portIndex)
{
    return Next(__func__, PORTS, portIndex);
}

uint32_t QRB_ScanPortFinish()
{
    return Finish(__func__, PORTS);
}

uint32_t QRB_GetFirstVlan(uint32_t* vlanId)
{
    return First(__func__, VLANS, vlanId);
}

uint32_t QRB_GetNextVlan(uint32_t* vlanId)
{
    return Next(__func__, VLANS, vlanId);
}

uint32_t QRB_ScanVlanFinish()
{
    return Finish(__func__, VLANS);
}

uint32_t IF_INTF_GetFirstIfIndex(uint32_t* ifIndex)
{
    return StepAndStore(QRB_GetFirstIfIndex, ifIndex);
}

uint32_t IF_INTF_GetNextIfIndex(uint32_t /*current*/, uint32_t* ifIndex)
{
    return StepAndStore(QRB_GetNextIfIndex, ifIndex);
}

uint32_t IF_INTF_ScanFinish()
{
    return QRB_ScanIfIndexFinish();
}

uint32_t L2IF_GetFirstPort(uint32_t* portIndex)
{
    return StepAndStore(QRB_GetFirstPort, portIndex);
}

uint32_t L2IF_GetNextPort(uint32_t* portIndex)
{
    return StepAndStore(QRB_GetNextPort, portIndex);
}

uint32_t L2IF_ScanFinish()
{
    return QRB_ScanPortFinish();
}

uint32_t L2IF_GetFirstVlan(uint16_t* vlanId)
{
    return StepAndStore(QRB_GetFirstVlan, vlanId);
}

uint32_t L2IF_GetNextVlan(uint16_t* vlanId)
{
    return StepAndStore(QRB_GetNextVlan, vlanId);
}

uint32_t L2IF_ScanVlanFinish()
{
    return QRB_ScanVlanFinish();
}
