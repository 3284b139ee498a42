// Change detection of table port.
#include <algorithm>
#include <cstring>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>

#include "db/probes.h"
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

}  // namespace

void QRB_EVENT_PortTableCallback(ORM_MESSAGE message, uint32_t eventType)
{
    if (eventType != ORM_EVENT_INSERT && eventType != ORM_EVENT_DELETE &&
        eventType != ORM_EVENT_UPDATE && eventType != ORM_EVENT_REPLACE) {
        QRB_ERROR("Incorrect type of event type, type=%u\n", eventType);
        return;
    }
    QRB_PORT_S oldRow = {};
    QRB_PORT_S newRow = {};
    QRB_PROBE(delivery_begin, "port", eventType);
    while (FetchNext(__func__, message)) {
        if (IsInsertion(message, eventType)) {
            QRB_EVENT_PortInsert(message, &newRow);
            continue;
        }
        if (eventType == ORM_EVENT_DELETE) {
            QRB_EVENT_PortDelete(message, &oldRow);
            continue;
        }
        if (QRB_EVENT_PortOrmGetOldData(message, &oldRow) != OK) {
            QRB_ERROR("Failed to get old orm port data.\n");
            break;
        }
        if (QRB_EVENT_PortOrmGetNewData(message, &newRow) != OK) {
            QRB_ERROR("Failed to get new orm port data.\n");
            break;
        }
        QRB_EVENT_PortUpdateSwitchPortUse(&oldRow, &newRow);
        // At most one VLAN event: the first bitmap is compared only if the second is unchanged.
        if (QRB_EVENT_PortCheckIsVlanBitMapChange(&newRow, &oldRow, QRB_VLAN_SET_SIZE,
                                                  QRB_VLAN_BITMAP_2) == BITMAP_UNCHANGED) {
            QRB_EVENT_PortCheckIsVlanBitMapChange(&newRow, &oldRow, QRB_VLAN_SET_SIZE,
                                                  QRB_VLAN_BITMAP_1);
        }
    }
    QRB_PROBE(delivery_end, "port", eventType);
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
    if (transition == UNCHANGED) {
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
    const uint8_t* newBitmap = newRow->vlan_bitmap_2;
    const uint8_t* oldBitmap = oldRow->vlan_bitmap_2;
    if (which == QRB_VLAN_BITMAP_1) {
        newBitmap = newRow->vlan_bitmap_1;
        oldBitmap = oldRow->vlan_bitmap_1;
    }
    // The sign of memcmp is that of the first differing byte, which decides.
    const int order =
        memcmp(newBitmap, oldBitmap, static_cast<size_t>(std::clamp(length, 0, QRB_VLAN_SET_SIZE)));
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

// A print hook. The library does not call it.
void QRB_EVENT_PrintPort(const QRB_PORT_S* /*row*/) {}
