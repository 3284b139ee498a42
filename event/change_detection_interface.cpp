// Change detection of the interface tables: if_base, if_phy and if_route.
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>

#include "db/probes.h"
#include "event/event_publish_interface.h"
#include "event/row_change.h"

using namespace qrb;

namespace {

void Notify(const char* function, uint32_t ifIndex, uint32_t command)
{
    if (IF_NotifyAll(ifIndex, command, 0, 0) != OK) {
        QRB_ERROR_AT(function, "Failed to notify event, ifindex=%u, notifyEventId=%u.\n", ifIndex,
                     command);
    }
}

}  // namespace

// if_base: creation and deletion of an interface.

void QRB_EVENT_IfBaseTableCallback(ORM_MESSAGE message, uint32_t eventType)
{
    if (eventType != ORM_EVENT_INSERT && eventType != ORM_EVENT_DELETE) {
        QRB_ERROR("Incorrect type of event type, type=%u\n", eventType);
        return;
    }
    const bool isCreated = eventType == ORM_EVENT_INSERT;
    const uint32_t object = isCreated ? ORM_OBJECT_NEW : ORM_OBJECT_OLD;
    const uint32_t command = isCreated ? IF_NOTIFY_CREATED : IF_NOTIFY_DELETED;
    QRB_IF_BASE_S row = {};
    QRB_PROBE(delivery_begin, "if_base", eventType);
    while (FetchNext(__func__, message)) {
        if (QRB_EVENT_GetIfBaseFromSession(message, object, &row) != OK) {
            QRB_ERROR("get if base data from db sub session fail.\n");
            break;
        }
        Notify(__func__, row.if_index, command);
    }
    QRB_PROBE(delivery_end, "if_base", eventType);
}

uint32_t QRB_EVENT_GetIfBaseFromSession(ORM_MESSAGE message, uint32_t object, QRB_IF_BASE_S* row)
{
    constexpr uint32_t FIELD_IF_INDEX = 0;
    constexpr uint32_t FIELD_IF_NAME = 2;
    uint32_t ifIndex = 0;

    uint32_t ret = OrmSubExtractData(message, object, 0);
    if (ret != OK) {
        QRB_ERROR("OrmSubExtractData fail, ret=%d.\n", ret);
        return FAIL;
    }
    ret = ReadField(message, FIELD_IF_INDEX, &ifIndex);
    if (ret != OK) {
        QRB_ERROR("get ifindex from db sub session fail, ret=%d.\n", ret);
        return FAIL;
    }
    row->if_index = ifIndex;
    ret = ReadField(message, FIELD_IF_NAME, &row->if_name);
    if (ret != OK) {
        QRB_ERROR("get ifname from db sub session fail, ret=%d.\n", ret);
        return FAIL;
    }
    return OK;
}

// if_phy: physical state of an interface.

void QRB_EVENT_IfPhyTableCallback(ORM_MESSAGE message, uint32_t eventType)
{
    if (eventType != ORM_EVENT_INSERT && eventType != ORM_EVENT_UPDATE &&
        eventType != ORM_EVENT_REPLACE) {
        QRB_ERROR("Incorrect type of event type, type=%u\n", eventType);
        return;
    }
    QRB_IF_PHY_S oldRow = {};
    QRB_IF_PHY_S newRow = {};
    QRB_IF_PHY_NOTICE_S notice = {};
    QRB_PROBE(delivery_begin, "if_phy", eventType);
    while (FetchNext(__func__, message)) {
        if (IsInsertion(message, eventType)) {
            QRB_EVENT_IfPhyInsert(message, &newRow, &notice);
            continue;
        }
        if (QRB_EVENT_IfPhyOrmGetOldData(message, &oldRow) != OK) {
            QRB_ERROR("Failed to get old orm phy data.\n");
            break;
        }
        if (QRB_EVENT_IfPhyOrmGetNewData(message, &newRow) != OK) {
            QRB_ERROR("Failed to get new orm phy data.\n");
            break;
        }
        QRB_EVENT_IfPhyUpdate(&oldRow, &newRow, &notice);
    }
    QRB_PROBE(delivery_end, "if_phy", eventType);
}

uint32_t QRB_EVENT_IfPhyOrmGetOldData(ORM_MESSAGE message, QRB_IF_PHY_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_OLD, OrmgIfPhyGetAllFieldsInner, row);
}

uint32_t QRB_EVENT_IfPhyOrmGetNewData(ORM_MESSAGE message, QRB_IF_PHY_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_NEW, OrmgIfPhyGetAllFieldsInner, row);
}

void QRB_EVENT_IfPhyInsert(ORM_MESSAGE message, QRB_IF_PHY_S* row, QRB_IF_PHY_NOTICE_S* notice)
{
    if (QRB_EVENT_IfPhyOrmGetNewData(message, row) != OK) {
        QRB_ERROR("Failed to get new orm phy data.\n");
        return;
    }
    *notice = {row->if_index, row->phy_state};
    if (row->phy_state == 1) {
        PublishInterfaceEvent(__func__, IF_EVT_STATE, IF_SUB_EVT_PHY_UP, IF_EVT_FLAG_UP,
                              row->if_index);
        Notify(__func__, row->if_index, IF_NOTIFY_UP);
    } else if (row->phy_state == 0) {
        Notify(__func__, row->if_index, IF_NOTIFY_DOWN);
    }
}

void QRB_EVENT_IfPhyUpdate(const QRB_IF_PHY_S* oldRow, const QRB_IF_PHY_S* newRow,
                           QRB_IF_PHY_NOTICE_S* notice)
{
    const TRANSITION transition = TransitionOf(oldRow->phy_state, newRow->phy_state);
    if (transition == UNCHANGED) {
        return;
    }
    *notice = {newRow->if_index, newRow->phy_state};
    if (transition == ROSE) {
        PublishInterfaceEvent(__func__, IF_EVT_STATE, IF_SUB_EVT_PHY_STATE, IF_EVT_FLAG_UP,
                              oldRow->if_index);
        PublishInterfaceEvent(__func__, IF_EVT_STATE, IF_SUB_EVT_PHY_UP, IF_EVT_FLAG_UP,
                              oldRow->if_index);
        Notify(__func__, newRow->if_index, IF_NOTIFY_UP);
    } else {
        PublishInterfaceEvent(__func__, IF_EVT_STATE, IF_SUB_EVT_PHY_STATE, IF_EVT_FLAG_DOWN,
                              oldRow->if_index);
        Notify(__func__, newRow->if_index, IF_NOTIFY_DOWN);
    }
}

// if_route: layer-3 state of an interface.

void QRB_EVENT_IfRouteTableCallback(ORM_MESSAGE message, uint32_t eventType)
{
    if (eventType != ORM_EVENT_UPDATE && eventType != ORM_EVENT_REPLACE) {
        QRB_ERROR("Incorrect type of event type, type=%u\n", eventType);
        return;
    }
    QRB_IF_ROUTE_S oldRow = {};
    QRB_IF_ROUTE_S newRow = {};
    QRB_PROBE(delivery_begin, "if_route", eventType);
    while (FetchNext(__func__, message)) {
        if (QRB_EVENT_IfRouteOrmGetOldData(message, &oldRow) != OK) {
            QRB_ERROR("Failed to get old orm if_route data.\n");
            break;
        }
        if (QRB_EVENT_IfRouteOrmGetNewData(message, &newRow) != OK) {
            QRB_ERROR("Failed to get new orm if_route data.\n");
            break;
        }
        QRB_EVENT_IfRouteUpdate(&oldRow, &newRow);
    }
    QRB_PROBE(delivery_end, "if_route", eventType);
}

uint32_t QRB_EVENT_IfRouteOrmGetOldData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_OLD, OrmgIfRouteGetAllFieldsInner, row);
}

uint32_t QRB_EVENT_IfRouteOrmGetNewData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row)
{
    return ExtractRow(__func__, message, ORM_OBJECT_NEW, OrmgIfRouteGetAllFieldsInner, row);
}

void QRB_EVENT_IfRouteUpdate(const QRB_IF_ROUTE_S* oldRow, const QRB_IF_ROUTE_S* newRow)
{
    const TRANSITION transition = TransitionOf(oldRow->route_state, newRow->route_state);
    if (transition == UNCHANGED) {
        return;
    }
    uint32_t first = 1;
    uint32_t second = 0;
    PublishInterfaceEvent(__func__, IF_EVT_STATE, IF_SUB_EVT_ROUTE_STATE,
                          transition == ROSE ? IF_EVT_FLAG_UP : IF_EVT_FLAG_DOWN, oldRow->if_index,
                          &first, &second);
}

// Print hooks. The library does not call them.

void QRB_EVENT_PrintIfLink(const QRB_IF_LINK_S* /*row*/) {}
void QRB_EVENT_PrintIfPhy(const QRB_IF_PHY_S* /*row*/) {}
void QRB_EVENT_PrintIfRoute(const QRB_IF_ROUTE_S* /*row*/) {}
