// Ports: what a change of "port" means for the modules.
#include <algorithm>
#include <cstring>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>

#include "event/row_change.h"

using namespace qrb;

namespace {

constexpr uint32_t BITMAP_UNCHANGED = 1;
constexpr uint32_t BITMAP_CHANGED = 0;

void PublishPort(const char* function, uint32_t eventId, QRB_PORT_S* row)
{
    if (L2IF_SH_EvtPublishEvent(eventId, row, 0, row->vlan_bitmap_2) != OK) {
        QRB_ERROR_AT(function, "Failed to publish event=%u, ifIndex=%u", eventId, row->if_index);
    }
}

// At most one event: the second bitmap decides, and the first only where that one is the same.
void PublishVlanChange(const QRB_PORT_S* oldRow, const QRB_PORT_S* newRow)
{
    constexpr int32_t length = QRB_VLAN_SET_SIZE;
    if (QRB_EVENT_PortCheckIsVlanBitMapChange(newRow, oldRow, length, QRB_VLAN_BITMAP_2) ==
        BITMAP_UNCHANGED) {
        QRB_EVENT_PortCheckIsVlanBitMapChange(newRow, oldRow, length, QRB_VLAN_BITMAP_1);
    }
}

}  // namespace

void QRB_EVENT_PortTableCallback(ORM_MESSAGE message, uint32_t eventType)
{
    const char* const here = __func__;
    QRB_PORT_S oldRow = {};
    QRB_PORT_S newRow = {};
    const auto handled = {ORM_EVENT_INSERT, ORM_EVENT_DELETE, ORM_EVENT_UPDATE, ORM_EVENT_REPLACE};
    ForEachMessage(here, message, eventType, handled, [&] {
        if (IsInsertion(message, eventType)) {
            QRB_EVENT_PortInsert(message, &newRow);
            return NEXT_MESSAGE;
        }
        if (eventType == ORM_EVENT_DELETE) {
            QRB_EVENT_PortDelete(message, &oldRow);
            return NEXT_MESSAGE;
        }
        if (!ExtractBoth(here, message, "port", QRB_EVENT_PortOrmGetOldData, &oldRow,
                         QRB_EVENT_PortOrmGetNewData, &newRow)) {
            return END_DELIVERY;
        }
        QRB_EVENT_PortUpdateSwitchPortUse(&oldRow, &newRow);
        PublishVlanChange(&oldRow, &newRow);
        return NEXT_MESSAGE;
    });
}

uint32_t QRB_EVENT_PortOrmGetOldData(ORM_MESSAGE message, QRB_PORT_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_OLD, OrmgPortGetAllFieldsInner, row);
}

uint32_t QRB_EVENT_PortOrmGetNewData(ORM_MESSAGE message, QRB_PORT_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_NEW, OrmgPortGetAllFieldsInner, row);
}

void QRB_EVENT_PortInsert(ORM_MESSAGE message, QRB_PORT_S* row)
{
    if (QRB_EVENT_PortOrmGetNewData(message, row) != OK) {
        QRB_ERROR("Failed to get new orm port data.\n");
        return;
    }
    PublishPort(__func__, L2IF_EVT_PORT_ADD, row);
}

void QRB_EVENT_PortDelete(ORM_MESSAGE message, QRB_PORT_S* row)
{
    if (QRB_EVENT_PortOrmGetOldData(message, row) != OK) {
        QRB_ERROR("Failed to get old orm port data.\n");
        return;
    }
    PublishPort(__func__, L2IF_EVT_PORT_DEL, row);
}

void QRB_EVENT_PortUpdateSwitchPortUse(const QRB_PORT_S* oldRow, const QRB_PORT_S* newRow)
{
    const TRANSITION transition = TransitionOf(oldRow->switch_port, newRow->switch_port);
    if (transition == STAYED) {
        return;
    }
    const uint32_t ifIndex = oldRow->if_index;
    uint8_t use = newRow->switch_port;
    const uint32_t eventId =
        transition == ROSE ? L2IF_EVT_SWITCH_PORT_ON : L2IF_EVT_SWITCH_PORT_OFF;
    if (L2IF_SH_EvtPublishEvent(eventId, &ifIndex, 0, &use) != OK) {
        QRB_ERROR("Failed to publish event, ifIndex=%u", ifIndex);
    }
}

uint32_t QRB_EVENT_PortCheckIsVlanBitMapChange(const QRB_PORT_S* newRow, const QRB_PORT_S* oldRow,
                                               int32_t length, uint8_t which)
{
    if (newRow == nullptr || oldRow == nullptr) {
        QRB_ERROR("Input parameter is NULL.\n");
        return BITMAP_UNCHANGED;
    }
    const auto bitmap =
        which == QRB_VLAN_BITMAP_1 ? &QRB_PORT_S::vlan_bitmap_1 : &QRB_PORT_S::vlan_bitmap_2;
    // Its sign is that of the first difference, which is what decides.
    const int order = std::memcmp(newRow->*bitmap, oldRow->*bitmap,
                                  static_cast<size_t>(std::clamp(length, 0, QRB_VLAN_SET_SIZE)));
    if (order == 0) {
        return BITMAP_UNCHANGED;
    }
    QRB_VLAN_CHANGE_S change = {};
    change.bitmap = which == QRB_VLAN_BITMAP_1 ? QRB_VLAN_BITMAP_1 : QRB_VLAN_BITMAP_2;
    change.portCount = 1;
    change.ifIndex = oldRow->if_index;
    if (order > 0 && L2IF_SH_EvtPublishEvent(L2IF_EVT_VLAN_ADD_PORT, newRow, 0, &change) != OK) {
        QRB_ERROR("Failed to publish event \"vlan add port\", ifIndex=%u, portIndex=%u.\n",
                  oldRow->if_index, oldRow->port_index);
    }
    if (order < 0 && L2IF_SH_EvtPublishEvent(L2IF_EVT_VLAN_DEL_PORT, oldRow, 0, &change) != OK) {
        QRB_ERROR("Failed to publish event \"vlan del port\", ifIndex=%u, portIndex=%u.\n",
                  oldRow->if_index, oldRow->port_index);
    }
    return BITMAP_CHANGED;
}

// A hook that once printed a row. Nothing calls it, and modules may.
void QRB_EVENT_PrintPort(const QRB_PORT_S* /*row*/) {}
