// VLANs, VLAN interfaces and table walks.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

// The row step, on each row that the condition matches: the last one's id stays.
uint32_t ScanVlanIds(const char* condition, uint16_t* id)
{
    return QRB_DB_Scan("vlan", id, UINT32_MAX, L2IF_DB_ScanVlanId, nullptr, condition, nullptr);
}

template <const auto* handle>
void Handle(uintptr_t* shown)
{
    *shown = *handle;
}

// clang-format off
constexpr Argument portIndex   {.name = "portIndex", .table = "port", .field = "port_index"};
constexpr Argument pvid        {.name = "pvid"};
constexpr Argument description {.name = "description", .size = 81};
constexpr Argument vlanName    {.name = "name", .table = "vlan", .field = "name", .neverNull = true};
constexpr Argument digits      {.name = "output", .size = 64};
constexpr Argument textSize    {.name = "size", .highest = 64, .fallback = "64"};
constexpr Argument cursor      {.name = "handle", .form = Form::Hex};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> LayerTwoFunctions()
{
    using namespace arguments;
    return {
        FUNCTION(VLAN_IsVlanActive, zeroIsYes, "vlan", "Whether a VLAN is active in any scope.", vlanId),
        FUNCTION(BDS_L2IF_VLAN_IsActive, oneIsYes, "vlan", "Whether a VLAN is active in any scope.", vlanId),
        FUNCTION(VLAN_IsVlanUsed, zeroIsYes, "vlan", "Whether a VLAN has a record.", vlanId),
        FUNCTION(BDS_L2IF_VLAN_IsUsed, oneIsYes, "vlan", "Whether a VLAN has a record.", vlanId),
        FUNCTION(VLAN_PortIndex2PortIdx, value, "", "The position of a port in member sets, from its port index.", portIndex),
        FUNCTION(VLAN_IsPortInVlan, zeroIsYes, "port, vlan", "Whether a port is a member of a VLAN.", ifIndex, vlanId),
        FUNCTION(BDS_L2IF_VP_PortIsInVlan, oneIsYes, "port, vlan", "Whether a port is a member of a VLAN.", ifIndex, vlanId),
        FUNCTION(BDS_L2IF_VP_PortIsInVlanWithTag, oneIsYes, "", "Whether a port is a tagged member of a VLAN: a stub, always no.", ifIndex, vlanId),
        FUNCTION(L2IF_GetPVIDByIfIndex, okOrDatabase, "port", "The default VLAN of a port.", ifIndex, pvid),
        FUNCTION(L2IF_VLAN_GetDescript, okOr1, "vlan", "The description of a VLAN.", vlanId, description),
        FUNCTION(L2IF_SH_VLAN_GetVlanidByName, okOr1, "vlan", "The VLAN that has a name.", vlanName, vlanId),
        Define("L2IF_DB_ScanVlanId", ScanVlanIds, okOr1, "vlan", "The row step of a scan of VLANs: the id of the last row that a condition matches.", condition, vlanId),

        FUNCTION(BDS_L2IF_VLAN_GetIfIndexByVlanId, okOr1, "", "The index of a VLAN's interface, by the fixed numbering.", vlanId, ifIndex),
        FUNCTION(BDS_L2_VlanGetIfIndex, okOr1, "if_base", "The index of the interface with a VLAN's name.", vlanId, ifIndex),
        FUNCTION(BDS_L2IF_VLAN_GetVlanIfIndex, valueOrAllOnes, "if_base", "The index of the interface with a VLAN's name; 1 where no name can be made.", vlanId),
        FUNCTION(BDS_IfnetGetVlanIdByIfName, okOr1, "", "The digits that end an interface's name.", fullName, digits, textSize),
        FUNCTION(BDS_IfnetGetVlanIdByIfIndex, okOr1, "if_base", "The VLAN of a VLAN interface.", ifIndex, vlanId),

        FUNCTION(QRB_GetFirstIfIndex, okOr1, "if_base", "Opens a walk over interfaces: the first index.", ifIndex),
        FUNCTION(QRB_GetNextIfIndex, okOr1, "if_base", "The next index of the walk.", ifIndex),
        FUNCTION(QRB_ScanIfIndexFinish, okOr1, "if_base", "Closes the walk over interfaces."),
        FUNCTION(QRB_GetFirstPort, okOr1, "port", "Opens a walk over ports: the first port index.", portIndex),
        FUNCTION(QRB_GetNextPort, okOr1, "port", "The next port index of the walk.", portIndex),
        FUNCTION(QRB_ScanPortFinish, okOr1, "port", "Closes the walk over ports."),
        FUNCTION(QRB_GetFirstVlan, okOr1, "vlan", "Opens a walk over VLANs: the first id.", vlanId),
        FUNCTION(QRB_GetNextVlan, okOr1, "vlan", "The next id of the walk.", vlanId),
        FUNCTION(QRB_ScanVlanFinish, okOr1, "vlan", "Closes the walk over VLANs."),
        FUNCTION(IF_INTF_GetFirstIfIndex, okOr1, "if_base", "Opens a walk over interfaces: the first index, or 0.", ifIndex),
        FUNCTION(IF_INTF_GetNextIfIndex, okOr1, "if_base", "The next index of the walk, or 0; current is not looked at.", Optional("current", "0"), ifIndex),
        FUNCTION(IF_INTF_ScanFinish, okOr1, "if_base", "Closes the walk over interfaces."),
        FUNCTION(L2IF_GetFirstPort, okOr1, "port", "Opens a walk over ports: the first port index, or 0.", portIndex),
        FUNCTION(L2IF_GetNextPort, okOr1, "port", "The next port index of the walk, or 0.", portIndex),
        FUNCTION(L2IF_ScanFinish, okOr1, "port", "Closes the walk over ports."),
        FUNCTION(L2IF_GetFirstVlan, okOr1, "vlan", "Opens a walk over VLANs: the first id, or 0.", vlanId),
        FUNCTION(L2IF_GetNextVlan, okOr1, "vlan", "The next id of the walk, or 0.", vlanId),
        FUNCTION(L2IF_ScanVlanFinish, okOr1, "vlan", "Closes the walk over VLANs."),

        Define("g_ScanIndexSession", Handle<&g_ScanIndexSession>, value, "", "The session of the walk over interfaces; 0x0: not open.", cursor),
        Define("g_IndexScanHandle", Handle<&g_IndexScanHandle>, value, "", "The scan of the walk over interfaces.", cursor),
        Define("g_ScanPortSession", Handle<&g_ScanPortSession>, value, "", "The session of the walk over ports.", cursor),
        Define("g_PortScanHandle", Handle<&g_PortScanHandle>, value, "", "The scan of the walk over ports.", cursor),
        Define("g_ScanVlanSession", Handle<&g_ScanVlanSession>, value, "", "The session of the walk over VLANs.", cursor),
        Define("g_VlanScanHandle", Handle<&g_VlanScanHandle>, value, "", "The scan of the walk over VLANs.", cursor),
    };
}
// clang-format on

}  // namespace shell
