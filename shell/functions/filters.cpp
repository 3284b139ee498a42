// Access control lists and quality-of-service profiles.
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/qos.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

// The row step, on each row that the condition matches: the last one's group stays.
uint32_t ScanGroupIds(const char* rows, uint32_t* group)
{
    return QRB_DB_Scan("acl_group", group, UINT32_MAX, ACL_DB_ScanAclGroupId, nullptr, rows,
                       nullptr);
}

// The row step, on each profile.
uint32_t ScanProfiles(const char* name, uint32_t* found)
{
    std::pair context(name, found);
    const auto onRow = [](ORM_SESSION session, void* search, uint32_t) -> uint32_t {
        const auto& [wanted, output] = *static_cast<decltype(context)*>(search);
        return QOS_GetIdByName(session, wanted, output);
    };
    return QRB_DB_Scan("qos_integration", &context, UINT32_MAX, onRow, nullptr, nullptr, nullptr);
}

// The session is open as long as the call lasts.
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

// clang-format off
constexpr Argument vsid      {.name = "vsid", .table = "acl_group", .field = "vsid"};
constexpr Argument vsysid    {.name = "vsysid", .table = "acl_group", .field = "vsysid"};
constexpr Argument aclNumber {.name = "aclNumber", .table = "acl_group", .field = "acl_number"};
constexpr Argument aclName   {.name = "name", .table = "acl_group_id", .field = "name", .fallback = nullWord};
constexpr Argument groupId   {.name = "groupId", .table = "acl_group", .field = "acl_group_id"};
constexpr Argument groupName {.name = "name", .size = ACL_GROUP_NAME_SIZE};
constexpr Argument ruleCount {.name = "count", .fallback = "0"};
constexpr Argument kind      {.name = "kind", .table = "acl_group_id", .field = "kind", .fallback = "0"};
constexpr Argument unused    {.name = "unused", .ignored = true};
constexpr Argument profile   {.name = "name", .table = "qos_integration", .field = "name"};
constexpr Argument index     {.name = "index", .table = "qos_integration", .field = "index"};
constexpr Argument info      {.name = "info", .zeroed = true};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> FilterFunctions()
{
    using namespace arguments;
    constexpr auto qos = "qos_integration";
    return {
        FUNCTION(ACL_IsACLNodeExistByNumber, oneIsYes, "acl_group", "Whether an IPv4 ACL with a number exists, and its group.", vsid, vsysid, aclNumber, groupId),
        FUNCTION(ACLIPv6_IsACLNodeExistByNumber, oneIsYes, "acl_group", "Whether an IPv6 ACL could be looked for, and its group.", vsid, vsysid, aclNumber, groupId),
        FUNCTION(ACL_IsExist, oneIsYes, "acl_group", "Whether an IPv4 ACL could be looked for, by name or, without one, by number.", vsid, vsysid, aclNumber, aclName, groupId),
        FUNCTION(ACLIPv6_IsExist, oneIsYes, "acl_group", "Whether an IPv6 ACL could be looked for, by name or, without one, by number.", vsid, vsysid, aclNumber, aclName, groupId),
        Define("ACL_DB_ScanAclGroupId", ScanGroupIds, okOr1, "acl_group", "The row step of a scan of ACL groups: the group of the last row that a condition matches.", condition, groupId),
        FUNCTION(ACL_GetRuleCount, okOr1, "acl_group, acl_adv", "How many rules an IPv4 ACL has.", vsid, vsysid, aclNumber, ruleCount),
        FUNCTION(ACLIPv6_GetRuleCount, okOr1, "acl_group, acl_rule_id", "How many rules an IPv6 ACL has.", vsid, vsysid, aclNumber, ruleCount),
        FUNCTION(ACL_GetNameByGroupId, okOr1, "acl_group_id", "The name of an ACL group.", groupId, groupName),
        FUNCTION(ACLIPv6_GetNameByGroupId, okOr1, "acl_group_id", "The name of an ACL group.", groupId, groupName),
        FUNCTION(BDS_AclGetAclNumberByName, okOr1, "acl_group_id", "The number of the ACL with a name.", Required(aclName), kind, unused, unused, aclNumber),

        FUNCTION(QOS_GetProfileIdByName, okOrQos, qos, "The index of the last profile with a name.", unused, profile, index),
        Define("QOS_GetIdByName", ScanProfiles, okOr1, qos, "The row step of that search, on each profile.", profile, index),
        Define("QOS_SetQosIntePk", OpenProfile, okOrDatabase, qos, "Opens a session on a profile; here, closes it too.", index),
        FUNCTION(QOS_GetRemarkInfo, okOr1, qos, "The remarks of a profile.", unused, index, info),
        Define("QOS_GetDscp", DscpOf, okOrQos, qos, "The DSCP remarks of a profile.", index, info),
        Define("QOS_Get8021", PriorityOf, okOrQos, qos, "The 802.1p remarks of a profile.", index, info),
        FUNCTION(QOS_GetCarInfo, okOr1, qos, "The committed access rates of a profile.", unused, index, info),
        FUNCTION(QOS_AssignCars, value, "", "Stores one CAR entry in an empty record.", info, Number("item"), Number("field1"), Number("field2"), Number("field3"), Number("field4")),
    };
}
// clang-format on

}  // namespace shell
