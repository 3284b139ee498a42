// Access control lists and quality of service.
#include <tarnd_qrb/acl.h>

#include "calls/records.h"

namespace calls {

namespace {

// The profile "gold", and one of its lists.
void OnList(const char* list)
{
    EXPECT_EQ(QOS_SetQosIntePk(&session, 1), 0U);
    EXPECT_EQ(OrmNodeGetChild(session, 0, list, &node), 0U);
}
void OnDscp()
{
    OnList("remark_dscp_list");
}
void On8021()
{
    OnList("remark_8021p_list");
}
void OnProfile()
{
    Positioned("qos_integration");
}
void OnGroup()
{
    Positioned("acl_group");
}

constexpr uint16_t VSID   = 1;
constexpr uint16_t VSYSID = 2;

// clang-format off
// Counting once the group is known, in a second session that answers what it got.
constexpr char COUNTING[] = R"(0 2
    format@1  1 0 | sprintf_s failed\n
    format    1 0
    open@2    1 0 | Failed to fetch DB, ret=%\n
    prepare@2 1 0 | DB error: %\n
    condition@2  1 0 | OrmSetScanCond failed, ret = %\n
    start@2   1 0 | OrmScanStart failed, ret = %\n
    next#1@2  0 0
    next#2@2  0 1
    any@2     =
    behind    $behind
    scan      1 0; 1 0)";

constexpr char REMARKS[] = R"(
    size      0 - - - - - - -
    item#1    200 - - - - - - - | get remark $list failed. ret: 2002
    item#2    200 $1st          | get remark $list failed. ret: 2002
    value#1   200 - - - - - - - | get remark $list failed. ret: %
    value#2   200 $1st          | get remark $list failed. ret: %)";

constexpr char NAME[] = R"(0 web
    format    1 -
    behind    ACL_GetNameByGroupId: QRB_DB_Scan failed, ret = 1\n
    scan      1 -; 1 web)";

}  // namespace

Calls AclCalls()
{
    return {
        {CALL(ACL_IsACLNodeExistByNumber, VSID, VSYSID, 3000U, Out32()), R"(1 1
            format    0 -
            behind    QRB_DB_Scan failed, ret = 1\n
            scan      0 -; 0 1)"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, VSID, VSYSID, 3000U, Out32()), R"(1 2
            format    0 -
            scan      0 -; 0 2)"},
        {CALL(ACL_IsExist, VSID, VSYSID, 3000U, nullptr, Out32()), R"(1 1
            format    0 -
            scan      0 -; 0 1)"},
        {CALL(ACLIPv6_IsExist, VSID, VSYSID, 3000U, "web", Out32()), R"(1 2
            format    0 -
            scan      0 -; 0 2)"},
        {CALL(ACL_DB_ScanAclGroupId, session, Out32(), 0U), R"(0 1
            field     % -)", OnGroup, Closed},
        {CALL(ACL_GetRuleCount, VSID, VSYSID, 3000U, Out32{0}),
            Fill(COUNTING, {{"$behind", "ACL_IsACLNodeExistByNumber: QRB_DB_Scan failed, ret = 1\\n"}})},
        {CALL(ACLIPv6_GetRuleCount, VSID, VSYSID, 3000U, Out32{0}), Fill(COUNTING, {{"$behind", "-"}})},
        {CALL(ACL_GetNameByGroupId, 1U, OutText()), NAME},
        {CALL(ACLIPv6_GetNameByGroupId, 1U, OutText()), NAME},
        {CALL(BDS_AclGetAclNumberByName, "web", uint8_t{4}, 0U, 0U, Out32()), R"(0 3000
            open      1 - | QRB_DB_Get: Table: acl_group_id open session failed.
            prepare   1 - | QRB_DB_SESSION_SetKey: Table: acl_group_id prepare failed.
            key       1 - | QRB_DB_SESSION_SetKey: Table: acl_group_id set key failed.
            execute   1 - | QRB_DB_SESSION_SetKey: Table: acl_group_id execute failed.
            field     1 - | QRB_DB_SESSION_Get: Table: acl_group_id get fields failed.
            close     1 3000)"},
    };
}

// An item that can't be had, which nobody looks at, has no field to read: the stand-in refuses that
// with 2002. Each item of "car_list" has four fields, and the codes of an item are added.
Calls QosCalls()
{
    return {
        {CALL(QOS_GetProfileIdByName, 0U, "silver", Out32()), R"(0 2
            open      % - | open session failed. ret: %
            prepare   % - | prepare failed. ret: %
            start     % - | scan start failed. ret: %
            next#3    % 2 | sacn next failed. ret: %
            next      % - | sacn next failed. ret: %
            field#3   % - | QOS_GetIdByName: orm get ProfileIndex failed. ret = % | get id by name failed. ret: %
            field     % - | QOS_GetIdByName: orm get ProfileName failed. ret = % | get id by name failed. ret: %
            copy      200 - | get id by name failed. ret: 200
            end       =
            close     =)"},
        {CALL(QOS_GetIdByName, session, "gold", Out32()), R"(0 1
            field#1   % - | orm get ProfileName failed. ret = %
            field#2   % - | orm get ProfileIndex failed. ret = %
            copy      200 -)", OnProfile, Closed},
        {CALL(QOS_SetQosIntePk, OutSession(), 1U), R"(0 open
            open      % closed | [qrb qos]error : open session failed. ret: %
            prepare   % closed | [qrb qos]error : prepare failed. ret: %
            key       % closed | [qrb qos]error : set key failed. ret: %
            execute   % closed | [qrb qos]error : execute failed. ret: %)", {}, Closed},
        {CALL(QOS_GetDscp, node, OutRemarks()), "0 1 1 40 41 - - -" + Fill(REMARKS, {
            {"$1st", "1 1 40 - - - -"}, {"$list", "desp list"}}), OnDscp, Closed},
        {CALL(QOS_Get8021, node, OutRemarks()), "0 1 - - - 1 5 6" + Fill(REMARKS, {
            {"$1st", "1 - - - 1 5 -"}, {"$list", "8021p list value"}}), On8021, Closed},
        {CALL(QOS_GetRemarkInfo, 0U, 1U, OutRemarks()), R"(0 1 1 40 41 1 5 6
            close     =
            list#1=10058  0 - - - - - - - | remark dscp list is not exist.
            list#1    0 - - - - - - -     | orm prepare for scan failed.ret = %
            list=10058   0 1 1 40 41 - - -   | remark 8021p list is not exist. ret = %
            list      0 1 1 40 41 - - -   | orm prepare for scan failed. ret = %
            size#1    0 1 - - - 1 5 6
            size#2    0 1 1 40 41 - - -
            reporter  QOS_Get8021
            item#3    0 1 1 40 41 - - -   | get remark 8021p list value failed. ret: 2002
            item#4    0 1 1 40 41 1 5 -   | get remark 8021p list value failed. ret: 2002
            value#3   0 1 1 40 41 - - -   | get remark 8021p list value failed. ret: %
            value#4   0 1 1 40 41 1 5 -   | get remark 8021p list value failed. ret: %
            within    QOS_SetQosIntePk 0 - - - - - - -
            reporter  QOS_GetDscp
            behind    orm prepare for scan failed.ret = 200
            item#1    0 - - - - - - -     | get remark desp list failed. ret: 2002
            item#2    0 1 1 40 - - - -    | get remark desp list failed. ret: 2002
            value#1   0 - - - - - - -     | get remark desp list failed. ret: %
            value#2   0 1 1 40 - - - -    | get remark desp list failed. ret: %)"},
        {CALL(QOS_GetCarInfo, 0U, 1U, OutCars()), R"(0 1 1 10 30 20 40 1 11 31 21 41
            close     = | orm close session failed
            list=10058   0 - - - - - - - - - - -  | car list is not exist. ret = %
            list      0 - - - - - - - - - - -  | orm prepare for scan failed.ret = %
            size!     0 - - - - - - - - - - -  | orm close session failed
            size      0 - - - - - - - - - - -
            item#1    0 - - - - - - - - - - -  | orm prepare for scan failed. ret = %+8008
            item#2    0 1 1 10 30 20 40 - - - - - | orm prepare for scan failed. ret = %+8008
            value#1-4 0 - - - - - - - - - - -  | orm prepare for scan failed. ret = %
            value     0 1 1 10 30 20 40 - - - - - | orm prepare for scan failed. ret = %
            behind    qos read db in car info failed.
            within    QOS_SetQosIntePk 0 - - - - - - - - - - -)"},
        {CALL(QOS_AssignCars, OutCars(), 0U, 10U, 20U, 30U, 40U), " - 1 10 30 20 40 - - - - -"},
    };
}
// clang-format on

}  // namespace calls
