// Whether an interface is up, and whether it is a switch port.
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

uint32_t IF_INTF_GetIfLineState(uint32_t ifIndex, uint32_t* state)
{
    if (AnyNull(__func__, state)) {
        return FAIL;
    }
    QRB_IF_LINK_S link;
    uint32_t ret = ReadRecord(OrmgIfLinkReadInner, ifIndex, &link);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    QRB_IF_ROUTE_S route;
    ret = ReadRecord(OrmgIfRouteReadInner, ifIndex, &route);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    const bool up = route.route_state != 0 && link.link_state != 0;
    *state = up ? QRB_IF_STATE_UP : QRB_IF_STATE_DOWN;
    return OK;
}

uint32_t BDS_IfnetGetLineState(uint32_t ifIndex, uint32_t* state)
{
    return IF_INTF_GetIfLineState(ifIndex, state);
}

uint32_t IF_INTF_GetIfLinkState(uint32_t ifIndex, uint32_t* state)
{
    constexpr uint8_t LINK_UP = 1;

    if (AnyNull(__func__, state)) {
        return FAIL;
    }
    QRB_IF_LINK_S link;
    const uint32_t ret = ReadRecord(OrmgIfLinkReadInner, ifIndex, &link);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    *state = link.link_state == LINK_UP ? QRB_IF_STATE_UP : QRB_IF_STATE_DOWN;
    return OK;
}

uint32_t BDS_IfnetGetLinkState(uint32_t ifIndex, uint32_t* state)
{
    return IF_INTF_GetIfLinkState(ifIndex, state);
}

uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state)
{
    return ReadFieldByIfIndex(__func__, "if_phy", ifIndex, "phy_state", state) == OK ? OK : FAIL;
}

uint32_t BDS_IfnetIsSwitchPort(uint32_t ifIndex)
{
    QRB_PORT_S port;
    const uint32_t ret = ReadRecord(OrmgPortReadInner, ifIndex, &port);
    if (ret != OK && ret != ORM_NO_RECORD) {
        QRB_ERROR("Failed to fetch port status for ifIndex=%u, ret=%d", ifIndex, ret);
        return 0;
    }
    return port.switch_port != 0 ? 1 : 0;
}
