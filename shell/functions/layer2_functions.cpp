// VLANs, VLAN interfaces and table walks.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

// Calls the row callback for each row that the condition matches. The last id remains.
uint32_t ScanVlanIds(const char* condition, uint16_t* id)
{
    return QRB_DB_Scan("vlan", id, UINT32_MAX, L2IF_DB_ScanVlanId, nullptr, condition, nullptr);
}

template <const auto* handle>
void Handle(uintptr_t* shown)
{
    *shown = *handle;
}

constexpr Argument PORT_INDEX{.name = "portIndex", .table = "port", .field = "port_index"};
constexpr Argument PVID{.name = "pvid"};
constexpr Argument DESCRIPTION{.name = "description", .size = 81};
constexpr Argument VLAN_NAME{.name = "name", .table = "vlan", .field = "name", .neverNull = true};
constexpr Argument DIGITS{.name = "output", .size = 64};
constexpr Argument CURSOR{.name = "handle", .form = Form::Hex};

}  // namespace

// clang-format off
std::vector<Function> Layer2Functions()
{
    using namespace arguments;
    return {
        FUNCTION(VLAN_IsVlanActive, ZERO_IS_YES, "vlan", "Whether a VLAN is active in any scope.", VLAN_ID),
        FUNCTION(BDS_L2IF_VLAN_IsActive, ONE_IS_YES, "vlan", "Whether a VLAN is active in any scope.", VLAN_ID),
        FUNCTION(VLAN_IsVlanUsed, ZERO_IS_YES, "vlan", "Whether a VLAN has a record.", VLAN_ID),
        FUNCTION(BDS_L2IF_VLAN_IsUsed, ONE_IS_YES, "vlan", "Whether a VLAN has a record.", VLAN_ID),
        FUNCTION(VLAN_PortIndex2PortIdx, VALUE, "", "The position of a port in member sets, from its port index.", PORT_INDEX),
        FUNCTION(VLAN_IsPortInVlan, ZERO_IS_YES, "port, vlan", "Whether a port is a member of a VLAN.", IF_INDEX, VLAN_ID),
        FUNCTION(BDS_L2IF_VP_PortIsInVlan, ONE_IS_YES, "port, vlan", "Whether a port is a member of a VLAN.", IF_INDEX, VLAN_ID),
        FUNCTION(BDS_L2IF_VP_PortIsInVlanWithTag, ONE_IS_YES, "", "Whether a port is a tagged member of a VLAN: a stub, always no.", IF_INDEX, VLAN_ID),
        FUNCTION(L2IF_GetPVIDByIfIndex, OK_OR_DATABASE, "port", "The default VLAN of a port.", IF_INDEX, PVID),
        FUNCTION(L2IF_VLAN_GetDescript, OK_OR1, "vlan", "The description of a VLAN.", VLAN_ID, DESCRIPTION),
        FUNCTION(L2IF_SH_VLAN_GetVlanidByName, OK_OR1, "vlan", "The VLAN that has a name.", VLAN_NAME, VLAN_ID),
        Define("L2IF_DB_ScanVlanId", ScanVlanIds, OK_OR1, "vlan", "The row step of a scan of VLANs: the id of the last row that a condition matches.", CONDITION, VLAN_ID),

        FUNCTION(BDS_L2IF_VLAN_GetIfIndexByVlanId, OK_OR1, "", "The index of a VLAN's interface, by the fixed numbering.", VLAN_ID, IF_INDEX),
        FUNCTION(BDS_L2_VlanGetIfIndex, OK_OR1, "if_base", "The index of the interface with a VLAN's name.", VLAN_ID, IF_INDEX),
        FUNCTION(BDS_L2IF_VLAN_GetVlanIfIndex, IF_INDEX_OR_ALL_ONES, "if_base", "The index of the interface with a VLAN's name; 1 if the name can't be formatted.", VLAN_ID),
        FUNCTION(BDS_IfnetGetVlanIdByIfName, OK_OR1, "", "The digits that end an interface's name.", FULL_NAME, DIGITS, TEXT_SIZE),
        FUNCTION(BDS_IfnetGetVlanIdByIfIndex, OK_OR1, "if_base", "The VLAN of a VLAN interface.", IF_INDEX, VLAN_ID),

        FUNCTION(QRB_GetFirstIfIndex, OK_OR1, "if_base", "Opens a walk over interfaces: the first index.", IF_INDEX),
        FUNCTION(QRB_GetNextIfIndex, OK_OR1, "if_base", "The next index of the walk.", IF_INDEX),
        FUNCTION(QRB_ScanIfIndexFinish, OK_OR1, "if_base", "Closes the walk over interfaces."),
        FUNCTION(QRB_GetFirstPort, OK_OR1, "port", "Opens a walk over ports: the first port index.", PORT_INDEX),
        FUNCTION(QRB_GetNextPort, OK_OR1, "port", "The next port index of the walk.", PORT_INDEX),
        FUNCTION(QRB_ScanPortFinish, OK_OR1, "port", "Closes the walk over ports."),
        FUNCTION(QRB_GetFirstVlan, OK_OR1, "vlan", "Opens a walk over VLANs: the first id.", VLAN_ID),
        FUNCTION(QRB_GetNextVlan, OK_OR1, "vlan", "The next id of the walk.", VLAN_ID),
        FUNCTION(QRB_ScanVlanFinish, OK_OR1, "vlan", "Closes the walk over VLANs."),
        FUNCTION(IF_INTF_GetFirstIfIndex, OK_OR1, "if_base", "Opens a walk over interfaces: the first index, or 0.", IF_INDEX),
        FUNCTION(IF_INTF_GetNextIfIndex, OK_OR1, "if_base", "The next index of the walk, or 0; current is not looked at.", Optional("current", "0"), IF_INDEX),
        FUNCTION(IF_INTF_ScanFinish, OK_OR1, "if_base", "Closes the walk over interfaces."),
        FUNCTION(L2IF_GetFirstPort, OK_OR1, "port", "Opens a walk over ports: the first port index, or 0.", PORT_INDEX),
        FUNCTION(L2IF_GetNextPort, OK_OR1, "port", "The next port index of the walk, or 0.", PORT_INDEX),
        FUNCTION(L2IF_ScanFinish, OK_OR1, "port", "Closes the walk over ports."),
        FUNCTION(L2IF_GetFirstVlan, OK_OR1, "vlan", "Opens a walk over VLANs: the first id, or 0.", VLAN_ID),
        FUNCTION(L2IF_GetNextVlan, OK_OR1, "vlan", "The next id of the walk, or 0.", VLAN_ID),
        FUNCTION(L2IF_ScanVlanFinish, OK_OR1, "vlan", "Closes the walk over VLANs."),

        Define("g_ScanIndexSession", Handle<&g_ScanIndexSession>, VALUE, "", "The session of the walk over interfaces; 0x0: not open.", CURSOR),
        Define("g_IndexScanHandle", Handle<&g_IndexScanHandle>, VALUE, "", "The scan of the walk over interfaces.", CURSOR),
        Define("g_ScanPortSession", Handle<&g_ScanPortSession>, VALUE, "", "The session of the walk over ports.", CURSOR),
        Define("g_PortScanHandle", Handle<&g_PortScanHandle>, VALUE, "", "The scan of the walk over ports.", CURSOR),
        Define("g_ScanVlanSession", Handle<&g_ScanVlanSession>, VALUE, "", "The session of the walk over VLANs.", CURSOR),
        Define("g_VlanScanHandle", Handle<&g_VlanScanHandle>, VALUE, "", "The scan of the walk over VLANs.", CURSOR),
    };
}
// clang-format on

}  // namespace shell
