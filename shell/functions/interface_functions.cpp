// Interfaces: names and indexes, types, states, hardware, and properties encoded in the index.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

// Compares the record of each interface until one matches.
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

constexpr Argument INPUT_NAME{
    .name = "input", .table = "if_base", .field = "if_name", .highest = 1023, .neverNull = true};
constexpr Argument INPUT_COPY{.name = "output", .size = 1024};
constexpr Argument TYPE_CODE{.name = "type", .table = "if_base", .field = "if_type"};
constexpr Argument NUMBER_TEXT{.name = "output", .size = 64};
constexpr Argument TYPE_TABLE{.name = "table", .size = QRB_IF_TYPE_COUNT};

}  // namespace

// clang-format off
std::vector<Function> InterfaceFunctions()
{
    using namespace arguments;
    return {
        FUNCTION(IF_INTF_GetIfNameByIfIndex, OK_OR_ALL_ONES, "if_base", "The full name of an interface.", IF_NAME, IF_INDEX),
        FUNCTION(IF_GetIfNameByIndex, OK_OR1, "if_base", "The full name of an interface.", IF_INDEX, IF_NAME),
        FUNCTION(BDS_IfnetGetIfNameByIfIndex, OK_OR1, "if_base", "The full name of an interface.", IF_INDEX, IF_NAME),
        FUNCTION(BDS_IfnetIsIfExist, ONE_IS_YES, "if_base", "Whether an interface has a record.", IF_INDEX),
        FUNCTION(IF_INTF_GetIfByFullName, IF_INDEX_OR_ALL_ONES, "if_base", "The index of a full name, by a scan.", NeverNull(FULL_NAME)),
        Define("IF_CmpIfBaseRecord", CompareRecords, ONE_IS_YES, "if_base", "Whether a record has a name: its full one, or with selector 0 its short one. The shell calls it for each record until one matches.", NeverNull(FULL_NAME), Optional("selector", "1"), Number("record")),
        FUNCTION(IF_INTF_GetIfIndexByFullName, IF_INDEX_OR_ALL_ONES, "if_base", "The index of a full name, by the local key.", FULL_NAME),
        FUNCTION(BDS_Ifname2IfGetIndexByname, OK_OR1, "if_base", "The index of a full name, by a scan with field reads.", FULL_NAME, IF_INDEX),
        FUNCTION(IF_INTF_GetSimpleName, OK_OR1, "if_base", "The short name of a full name.", FULL_NAME, IF_NAME),
        FUNCTION(IF_INTF_GetFullNameByInput, OK_OR_ALL_ONES, "", "Copies a name that is already full.", INPUT_NAME, INPUT_COPY),
        FUNCTION(IF_INTF_GetNameByIfName, OK_OR1, "", "Copies a name of at most 63 characters.", Named("output", IF_NAME), FULL_NAME),
        FUNCTION(BDS_IfnetGetNumStrFromName, VALUE, "", "The numeric tail of a name, and its length.", FULL_NAME, NUMBER_TEXT, TEXT_SIZE),

        Define("g_pstBDSIfTypeInfo", TypeTable, VALUE, "", "The type table, once it is built.", Number("entries")),
        Define("g_qrbIfTrans", TranslationTable, VALUE, "", "The translation table from type codes to physical types.", Number("entries")),
        FUNCTION(BDS_InitIfTypeInfo, OK_OR1, "", "Builds the type table."),
        FUNCTION(BDS_InitNewIfTypeInfo, OK_OR1, "", "Writes entries 10 to 16 of a type table.", TYPE_TABLE, Optional("count", "17")),
        FUNCTION(BDS_IfPortTypeSwitch, OK_OR1, "", "The port type of a type code.", TYPE_CODE, Number("portType")),
        FUNCTION(BDS_IfnetGetPortType, OK_OR1, "if_base", "The port type of an interface.", IF_INDEX, Number("portType")),
        FUNCTION(IFPDT_GetPortType, VALUE_OR_ALL_ONES, "if_base", "The port type of an interface.", IF_INDEX),
        FUNCTION(IF_INTF_GetPhyTypeByIndex, VALUE, "if_base", "The physical type of an interface; 101 if there is none.", IF_INDEX),

        FUNCTION(IF_INTF_GetIfLineState, OK_OR1, "if_link, if_route", "The line state: 1 up, 2 down.", IF_INDEX, LINE_STATE),
        FUNCTION(BDS_IfnetGetLineState, OK_OR1, "if_link, if_route", "The line state: 1 up, 2 down.", IF_INDEX, LINE_STATE),
        FUNCTION(IF_INTF_GetIfLinkState, OK_OR1, "if_link", "The link state: 1 up, 2 down.", IF_INDEX, LINE_STATE),
        FUNCTION(BDS_IfnetGetLinkState, OK_OR1, "if_link", "The link state: 1 up, 2 down.", IF_INDEX, LINE_STATE),
        FUNCTION(BDS_IfnetGetIfPhyState, OK_OR1, "if_phy", "The physical state as stored: 1 up, 0 down.", IF_INDEX, PHY_STATE),
        FUNCTION(BDS_IfnetIsSwitchPort, ONE_IS_YES, "port", "Whether a port is used in layer 2.", IF_INDEX),
        FUNCTION(IF_INTF_GetSlotByIndex, VALUE_OR_ALL_ONES, "if_phy", "The slot that holds an interface.", IF_INDEX),
        FUNCTION(IF_INTF_GetPortByIndex, VALUE_OR_ALL_ONES, "if_phy", "The position of an interface below its slot.", IF_INDEX),
        FUNCTION(BDS_IfnetGetCardByIfIndex, OK_OR1, "if_phy", "The card of an interface.", IF_INDEX, Number("card")),
        FUNCTION(BDS_IfnetGetIfMacByIfIndex, OK_OR1, "if_phy", "The MAC address of an interface.", IF_INDEX, MAC),
        FUNCTION(IF_GetMacAddrByIfIndex, OK_OR1, "if_phy", "The MAC address of an interface.", IF_INDEX, MAC),
        FUNCTION(IF_GetSlotStrBySlotId, OK_OR1, "", "A slot number as a text.", Number("slotId"), NUMBER_TEXT),
        FUNCTION(BDS_IfnetGetSlotIdBySlotStr, VALUE, "", "The slot number that a text begins with; 1 for null or a text of more than 63 characters.", Number("text")),
        FUNCTION(IF_INIF_IsVapByIfIndex, ONE_IS_YES, "", "Whether an index is that of a VAP interface.", IF_INDEX),
        FUNCTION(IF_INIF_IsAPtunnleByIfIndex, ONE_IS_YES, "", "Whether an index is that of an AP tunnel interface.", IF_INDEX),
        FUNCTION(IF_INTF_GetSlotByIfName, VALUE, "", "The slot of an interface: always 0.", FULL_NAME),
        FUNCTION(IF_INTF_IsTempIf, ONE_IS_YES, "", "Whether an interface is temporary: always no.", IF_INDEX),
        FUNCTION(BDS_TrunkIsPortInTrunk, ONE_IS_YES, "", "Whether a port is in a trunk: always no.", IF_INDEX),
        FUNCTION(BDS_TrunkGetTrunkIndex, OK_OR1, "", "The trunk of a port: always a failure.", IF_INDEX, Number("trunkIndex")),
        FUNCTION(BDS_IfnetIsL3IF, ONE_IS_YES, "", "Whether an interface is a layer-3 interface: always no.", IF_INDEX),
        FUNCTION(BDS_QINQ_INTF_GetEthType, OK_OR1, "", "The Ethernet type of an interface: always a failure.", IF_INDEX, Number("etherType")),
    };
}
// clang-format on

}  // namespace shell
