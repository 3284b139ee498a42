// Interfaces: names and indexes, types, states, hardware, and what an index alone tells.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

// Offers the record of each interface until one matches.
uint32_t CompareRecords(const char* name, uint8_t selector, Json* record)
{
    struct SEARCH_S {
        IF_NAME_KEY_S key;
        QRB_IF_BASE_S found;
        uint32_t matches;
    } search{{name, selector}, {}, 0};
    const auto offer = [](ORM_SESSION session, void* context, uint32_t) -> uint32_t {
        auto& [key, found, matches] = *static_cast<SEARCH_S*>(context);
        matches += matches > 0 ? 0 : IF_CmpIfBaseRecord(session, &key, &found, sizeof(found));
        return 0;
    };
    QRB_DB_Scan("if_base", &search, UINT32_MAX, offer, nullptr, nullptr, nullptr);
    if (search.matches > 0) {
        *record = {{"if_index", uint32_t{search.found.if_index}},
                   {"if_name", search.found.if_name},
                   {"simple_name", search.found.simple_name},
                   {"if_type", uint16_t{search.found.if_type}}};
    }
    return search.matches;
}

void TypeTable(Json* entries)
{
    for (uint32_t i = 0; g_pstBDSIfTypeInfo != nullptr && i < QRB_IF_TYPE_COUNT; ++i) {
        entries->push_back(RecordToJson(g_pstBDSIfTypeInfo[i]));
    }
}

void TranslationTable(Json* entries)
{
    for (const auto& [ifType, phyType] : g_qrbIfTrans) {
        entries->push_back({{"if_type", ifType}, {"phy_type", phyType}});
    }
}

// clang-format off
constexpr Argument inputName  {.name = "input", .table = "if_base", .field = "if_name", .highest = 1023, .neverNull = true};
constexpr Argument inputCopy  {.name = "output", .size = 1024};
constexpr Argument typeCode   {.name = "type", .table = "if_base", .field = "if_type"};
constexpr Argument numberText {.name = "output", .size = 64};
constexpr Argument textSize   {.name = "size", .highest = 64, .fallback = "64"};
constexpr Argument typeTable  {.name = "table", .size = QRB_IF_TYPE_COUNT};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> InterfaceFunctions()
{
    using namespace arguments;
    return {
        FUNCTION(IF_INTF_GetIfNameByIfIndex, okOrAllOnes, "if_base", "The full name of an interface.", ifName, ifIndex),
        FUNCTION(IF_GetIfNameByIndex, okOr1, "if_base", "The full name of an interface.", ifIndex, ifName),
        FUNCTION(BDS_IfnetGetIfNameByIfIndex, okOr1, "if_base", "The full name of an interface.", ifIndex, ifName),
        FUNCTION(BDS_IfnetIsIfExist, oneIsYes, "if_base", "Whether an interface has a record.", ifIndex),
        FUNCTION(IF_INTF_GetIfByFullName, valueOrAllOnes, "if_base", "The index of a full name, by a scan.", NeverNull(fullName)),
        Define("IF_CmpIfBaseRecord", CompareRecords, oneIsYes, "if_base", "Whether a record has a name: its full one, or with selector 0 its short one. Asked of each record until one has.", NeverNull(fullName), Optional("selector", "1"), Number("record")),
        FUNCTION(IF_INTF_GetIfIndexByFullName, valueOrAllOnes, "if_base", "The index of a full name, by the local key.", fullName),
        FUNCTION(BDS_Ifname2IfGetIndexByname, okOr1, "if_base", "The index of a full name, by a scan with field reads.", fullName, ifIndex),
        FUNCTION(IF_INTF_GetSimpleName, okOr1, "if_base", "The short name of a full name.", fullName, ifName),
        FUNCTION(IF_INTF_GetFullNameByInput, okOrAllOnes, "", "Copies a name that is already full.", inputName, inputCopy),
        FUNCTION(IF_INTF_GetNameByIfName, okOr1, "", "Copies a name of at most 63 characters.", Named("output", ifName), fullName),
        FUNCTION(BDS_IfnetGetNumStrFromName, value, "", "The numeric tail of a name, and its length.", fullName, numberText, textSize),

        Define("g_pstBDSIfTypeInfo", TypeTable, value, "", "The type table, once it is built.", Number("entries")),
        Define("g_qrbIfTrans", TranslationTable, value, "", "The translation table from type codes to physical types.", Number("entries")),
        FUNCTION(BDS_InitIfTypeInfo, okOr1, "", "Builds the type table."),
        FUNCTION(BDS_InitNewIfTypeInfo, okOr1, "", "Writes entries 10 to 16 of a type table.", typeTable, Optional("count", "17")),
        FUNCTION(BDS_IfPortTypeSwitch, okOr1, "", "The port type of a type code.", typeCode, Number("portType")),
        FUNCTION(BDS_IfnetGetPortType, okOr1, "if_base", "The port type of an interface.", ifIndex, Number("portType")),
        FUNCTION(IFPDT_GetPortType, valueOrAllOnes, "if_base", "The port type of an interface.", ifIndex),
        FUNCTION(IF_INTF_GetPhyTypeByIndex, value, "if_base", "The physical type of an interface; 101 where there is none.", ifIndex),

        FUNCTION(IF_INTF_GetIfLineState, okOr1, "if_link, if_route", "Whether the line is up (1) or down (2).", ifIndex, state),
        FUNCTION(BDS_IfnetGetLineState, okOr1, "if_link, if_route", "Whether the line is up (1) or down (2).", ifIndex, state),
        FUNCTION(IF_INTF_GetIfLinkState, okOr1, "if_link", "Whether the link is up (1) or down (2).", ifIndex, state),
        FUNCTION(BDS_IfnetGetLinkState, okOr1, "if_link", "Whether the link is up (1) or down (2).", ifIndex, state),
        FUNCTION(BDS_IfnetGetIfPhyState, okOr1, "if_phy", "The physical state as stored: 1 up, 0 down.", ifIndex, state),
        FUNCTION(BDS_IfnetIsSwitchPort, oneIsYes, "port", "Whether a port is used in layer 2.", ifIndex),
        FUNCTION(IF_INTF_GetSlotByIndex, valueOrAllOnes, "if_phy", "The slot that holds an interface.", ifIndex),
        FUNCTION(IF_INTF_GetPortByIndex, valueOrAllOnes, "if_phy", "The position of an interface below its slot.", ifIndex),
        FUNCTION(BDS_IfnetGetCardByIfIndex, okOr1, "if_phy", "The card of an interface.", ifIndex, Number("card")),
        FUNCTION(BDS_IfnetGetIfMacByIfIndex, okOr1, "if_phy", "The MAC address of an interface.", ifIndex, mac),
        FUNCTION(IF_GetMacAddrByIfIndex, okOr1, "if_phy", "The MAC address of an interface.", ifIndex, mac),
        FUNCTION(IF_GetSlotStrBySlotId, okOr1, "", "A slot number as a text.", Number("slotId"), numberText),
        FUNCTION(BDS_IfnetGetSlotIdBySlotStr, value, "", "The slot number that a text begins with; 1 for null or a text of more than 63 characters.", Number("text")),
        FUNCTION(IF_INIF_IsVapByIfIndex, oneIsYes, "", "Whether an index is that of a VAP interface.", ifIndex),
        FUNCTION(IF_INIF_IsAPtunnleByIfIndex, oneIsYes, "", "Whether an index is that of an AP tunnel interface.", ifIndex),
        FUNCTION(IF_INTF_GetSlotByIfName, value, "", "The slot of an interface: always 0.", fullName),
        FUNCTION(IF_INTF_IsTempIf, oneIsYes, "", "Whether an interface is temporary: always no.", ifIndex),
        FUNCTION(BDS_TrunkIsPortInTrunk, oneIsYes, "", "Whether a port is in a trunk: always no.", ifIndex),
        FUNCTION(BDS_TrunkGetTrunkIndex, okOr1, "", "The trunk of a port: always a failure.", ifIndex, Number("trunkIndex")),
        FUNCTION(BDS_IfnetIsL3IF, oneIsYes, "", "Whether an interface is one of layer 3: always no.", ifIndex),
        FUNCTION(BDS_QINQ_INTF_GetEthType, okOr1, "", "The Ethernet type of an interface: always a failure.", ifIndex, Number("etherType")),
    };
}
// clang-format on

}  // namespace shell
