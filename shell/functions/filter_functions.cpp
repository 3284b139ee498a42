// Access control lists and quality-of-service profiles.
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/qos.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

// Calls the row callback for each row that the condition matches. The last group remains.
uint32_t ScanGroupIds(const char* rows, uint32_t* group)
{
    return QRB_DB_Scan("acl_group", group, UINT32_MAX, ACL_DB_ScanAclGroupId, nullptr, rows,
                       nullptr);
}

// Calls the row callback for each profile.
uint32_t ScanProfiles(const char* name, uint32_t* found)
{
    std::pair context(name, found);
    const auto onRow = [](ORM_SESSION session, void* search, uint32_t) -> uint32_t {
        const auto& [wanted, output] = *static_cast<decltype(context)*>(search);
        return QOS_GetIdByName(session, wanted, output);
    };
    return QRB_DB_Scan("qos_integration", &context, UINT32_MAX, onRow, nullptr, nullptr, nullptr);
}

// The session stays open during the call.
uint32_t OpenProfile(uint32_t wanted)
{
    ORM_SESSION session = 0;
    const uint32_t ret = QOS_SetQosIntePk(&session, wanted);
    OrmCloseSession(session);
    return ret;
}

using ReadRemarks = uint32_t (*)(ORM_NODE, QOS_PROFILE_INFO_S*);

uint32_t OfList(const char* name, ReadRemarks read, uint32_t wanted, QOS_PROFILE_INFO_S* found)
{
    ORM_SESSION session = 0;
    ORM_NODE list = 0;
    uint32_t ret = QOS_SetQosIntePk(&session, wanted);
    if (ret != 0) {
        return ret;
    }
    ret = OrmNodeGetChild(session, 0, name, &list);
    if (ret == 0) {
        ret = read(list, found);
    }
    OrmCloseSession(session);
    return ret;
}

uint32_t DscpOf(uint32_t wanted, QOS_PROFILE_INFO_S* found)
{
    return OfList("remark_dscp_list", QOS_GetDscp, wanted, found);
}

uint32_t PriorityOf(uint32_t wanted, QOS_PROFILE_INFO_S* found)
{
    return OfList("remark_8021p_list", QOS_Get8021, wanted, found);
}

constexpr Argument VSID{.name = "vsid", .table = "acl_group", .field = "vsid"};
constexpr Argument VSYSID{.name = "vsysid", .table = "acl_group", .field = "vsysid"};
constexpr Argument ACL_NUMBER{.name = "aclNumber", .table = "acl_group", .field = "acl_number"};
constexpr Argument ACL_NAME{
    .name = "name", .table = "acl_group_id", .field = "name", .fallback = NULL_WORD};
constexpr Argument ACL_GROUP_ID{.name = "groupId", .table = "acl_group", .field = "acl_group_id"};
constexpr Argument GROUP_NAME{.name = "name", .size = ACL_GROUP_NAME_SIZE};
constexpr Argument RULE_COUNT{.name = "count", .fallback = "0"};
constexpr Argument KIND{.name = "kind", .table = "acl_group_id", .field = "kind", .fallback = "0"};
constexpr Argument UNUSED{.name = "unused", .ignored = true};
constexpr Argument PROFILE{.name = "name", .table = "qos_integration", .field = "name"};
constexpr Argument INDEX{.name = "index", .table = "qos_integration", .field = "index"};
constexpr Argument INFO{.name = "info", .zeroed = true};

}  // namespace

// clang-format off
std::vector<Function> FilterFunctions()
{
    using namespace arguments;
    constexpr auto QOS = "qos_integration";
    return {
        FUNCTION(ACL_IsACLNodeExistByNumber, ONE_IS_YES, "acl_group", "Whether an IPv4 ACL with a number exists, and its group.", VSID, VSYSID, ACL_NUMBER, ACL_GROUP_ID),
        FUNCTION(ACLIPv6_IsACLNodeExistByNumber, ONE_IS_YES, "acl_group", "Whether the lookup of an IPv6 ACL by number ran, and the group if it exists.", VSID, VSYSID, ACL_NUMBER, ACL_GROUP_ID),
        FUNCTION(ACL_IsExist, ONE_IS_YES, "acl_group", "Whether the lookup of an IPv4 ACL ran, by name or, without one, by number; the group if it exists.", VSID, VSYSID, ACL_NUMBER, ACL_NAME, ACL_GROUP_ID),
        FUNCTION(ACLIPv6_IsExist, ONE_IS_YES, "acl_group", "Whether the lookup of an IPv6 ACL ran, by name or, without one, by number; the group if it exists.", VSID, VSYSID, ACL_NUMBER, ACL_NAME, ACL_GROUP_ID),
        Define("ACL_DB_ScanAclGroupId", ScanGroupIds, OK_OR1, "acl_group", "The row callback of a scan of ACL groups: the group of the last row that matches.", CONDITION, ACL_GROUP_ID),
        FUNCTION(ACL_GetRuleCount, OK_OR1, "acl_group, acl_adv", "The number of rules of an IPv4 ACL.", VSID, VSYSID, ACL_NUMBER, RULE_COUNT),
        FUNCTION(ACLIPv6_GetRuleCount, OK_OR1, "acl_group, acl_rule_id", "The number of rules of an IPv6 ACL.", VSID, VSYSID, ACL_NUMBER, RULE_COUNT),
        FUNCTION(ACL_GetNameByGroupId, OK_OR1, "acl_group_id", "The name of an ACL group.", ACL_GROUP_ID, GROUP_NAME),
        FUNCTION(ACLIPv6_GetNameByGroupId, OK_OR1, "acl_group_id", "The name of an ACL group.", ACL_GROUP_ID, GROUP_NAME),
        FUNCTION(BDS_AclGetAclNumberByName, OK_OR1, "acl_group_id", "The number of the ACL with a name.", Required(ACL_NAME), KIND, UNUSED, UNUSED, ACL_NUMBER),

        FUNCTION(QOS_GetProfileIdByName, OK_OR_QOS, QOS, "The index of the last profile with a name.", UNUSED, PROFILE, INDEX),
        Define("QOS_GetIdByName", ScanProfiles, OK_OR1, QOS, "The row callback of that scan, called for each profile.", PROFILE, INDEX),
        Define("QOS_SetQosIntePk", OpenProfile, OK_OR_DATABASE, QOS, "Opens a session on a profile; the shell closes it again.", INDEX),
        FUNCTION(QOS_GetRemarkInfo, OK_OR1, QOS, "The remarks of a profile.", UNUSED, INDEX, INFO),
        Define("QOS_GetDscp", DscpOf, OK_OR_QOS, QOS, "The DSCP remarks of a profile.", INDEX, INFO),
        Define("QOS_Get8021", PriorityOf, OK_OR_QOS, QOS, "The 802.1p remarks of a profile.", INDEX, INFO),
        FUNCTION(QOS_GetCarInfo, OK_OR1, QOS, "The committed access rates of a profile.", UNUSED, INDEX, INFO),
        FUNCTION(QOS_AssignCars, VALUE, "", "Stores one CAR entry in an empty record.", INFO, Number("item"), Number("cir"), Number("cbs"), Number("pir"), Number("pbs")),
    };
}
// clang-format on

}  // namespace shell
