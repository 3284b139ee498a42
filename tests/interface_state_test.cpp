// States of interfaces, index classes.
#include <tarnd_qrb/interface_state.h>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

class InterfaceState : public support::PlatformTest {};

TEST_F(InterfaceState, LineAsksForNotZeroAndLinkForOne)
{
    const struct {
        uint32_t link;
        uint32_t route;
        uint32_t linkAnswer;
        uint32_t lineAnswer;
    } cases[] = {
        {1, 1, QRB_IF_STATE_UP, QRB_IF_STATE_UP},     {1, 0, QRB_IF_STATE_UP, QRB_IF_STATE_DOWN},
        {0, 1, QRB_IF_STATE_DOWN, QRB_IF_STATE_DOWN}, {0, 0, QRB_IF_STATE_DOWN, QRB_IF_STATE_DOWN},
        {2, 3, QRB_IF_STATE_DOWN, QRB_IF_STATE_UP},
    };
    uint32_t ifIndex = 0;
    for (const auto& c : cases) {
        ifIndex++;
        Insert({Row("if_link").Set("if_index", ifIndex).Set("link_state", c.link),
                Row("if_route").Set("if_index", ifIndex).Set("route_state", c.route)});
        uint32_t state = 0;
        EXPECT_EQ(IF_INTF_GetIfLinkState(ifIndex, &state), 0U);
        EXPECT_EQ(state, c.linkAnswer) << c.link;
        EXPECT_EQ(IF_INTF_GetIfLineState(ifIndex, &state), 0U);
        EXPECT_EQ(state, c.lineAnswer) << c.link << c.route;
    }
}

TEST_F(InterfaceState, OfPortsIsAsStored)
{
    for (const uint32_t value : {0U, 200U}) {
        Insert({Row("if_phy").Set("if_index", value).Set("phy_state", value),
                Row("port").Set("if_index", value).Set("switch_port", value)});
    }
    Expect({
        {CALL(BDS_IfnetGetIfPhyState, 0U, Out8()), "0 0"},
        {CALL(BDS_IfnetGetIfPhyState, 200U, Out8()), "0 200"},
        {CALL(BDS_IfnetIsSwitchPort, 0U), "0"},
        {CALL(BDS_IfnetIsSwitchPort, 200U), "1"},
    });
}

TEST_F(InterfaceState, ClassesOfIndexes)
{
    const struct {
        uint32_t ifIndex;
        uint32_t apTunnel;
        uint32_t vap;
    } cases[] = {
        {0, 0, 0},          {0x5FFFFFFF, 0, 0}, {0x60000000, 1, 0}, {0x60FFFFFF, 1, 0},
        {0x61000000, 0, 1}, {0x61FFFFFF, 0, 1}, {0x62000000, 0, 0}, {UINT32_MAX, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IF_INIF_IsAPtunnleByIfIndex(c.ifIndex), c.apTunnel) << c.ifIndex;
        EXPECT_EQ(IF_INIF_IsVapByIfIndex(c.ifIndex), c.vap) << c.ifIndex;
    }
}

}  // namespace
