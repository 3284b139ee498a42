// Access control lists: existence checks, rule counts, names and numbers. Quality of service:
// profile names, slots, missing lists.
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/qos.h>

#include "support/example_calls.h"

namespace calls {

namespace {

// A profile: its remarks, or its CAR entries.
using Profile = QOS_PROFILE_INFO_S;
using OutRemarks =
    Out<Profile, 1, &Profile::valid, &Profile::dscpValid, &Profile::dscp0, &Profile::dscp1,
        &Profile::pri8021pValid, &Profile::pri8021p0, &Profile::pri8021p1>;
struct OutCars : Out<Profile> {
    std::string Output() const
    {
        std::string text = Text(values[0].valid);
        for (const auto& [present, field1, field3, field2, field4] :
             {values[0].car0, values[0].car1}) {
            text += ' ' + Texts({present, field1, field3, field2, field4});
        }
        return text;
    }
};

// The profile "gold", and one of its lists.
void OnList(const char* list)
{
    EXPECT_EQ(QOS_SetQosIntePk(&session, 1), 0U);
    EXPECT_EQ(OrmNodeGetChild(session, 0, list, &node), 0U);
}

constexpr uint16_t VSID = 1;
constexpr uint16_t VSYSID = 2;

}  // namespace

// clang-format off
Calls AclCalls()
{
    return {
        {CALL(ACL_IsACLNodeExistByNumber, VSID, VSYSID, 3000U, Out32()), "1 1"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, VSID, VSYSID, 3000U, Out32()), "1 2"},
        {CALL(ACL_IsExist, VSID, VSYSID, 3000U, nullptr, Out32()), "1 1"},
        {CALL(ACLIPv6_IsExist, VSID, VSYSID, 3000U, "web", Out32()), "1 2"},
        {CALL(ACL_DB_ScanAclGroupId, session, Out32(), 0U), "0 1", [] { Positioned("acl_group"); }, Closed},
        {CALL(ACL_GetRuleCount, VSID, VSYSID, 3000U, Out32{0}), "0 2"},
        {CALL(ACLIPv6_GetRuleCount, VSID, VSYSID, 3000U, Out32{0}), "0 2"},
        {CALL(ACL_GetNameByGroupId, 1U, OutText()), "0 web"},
        {CALL(ACLIPv6_GetNameByGroupId, 1U, OutText()), "0 web"},
        {CALL(BDS_AclGetAclNumberByName, "web", uint8_t{4}, 0U, 0U, Out32()), "0 3000"},
    };
}

Calls QosCalls()
{
    return {
        {CALL(QOS_GetProfileIdByName, 0U, "silver", Out32()), "0 2"},
        {CALL(QOS_GetIdByName, session, "gold", Out32()), "0 1", [] { Positioned("qos_integration"); }, Closed},
        {CALL(QOS_SetQosIntePk, OutSession(), 1U), "0 open", {}, Closed},
        {CALL(QOS_GetDscp, node, OutRemarks()), "0 1 1 40 41 - - -", [] { OnList("remark_dscp_list"); }, Closed},
        {CALL(QOS_Get8021, node, OutRemarks()), "0 1 - - - 1 5 6", [] { OnList("remark_8021p_list"); }, Closed},
        {CALL(QOS_GetRemarkInfo, 0U, 1U, OutRemarks()), "0 1 1 40 41 1 5 6"},
        {CALL(QOS_GetCarInfo, 0U, 1U, OutCars()), "0 1 1 10 30 20 40 1 11 31 21 41"},
        {CALL(QOS_AssignCars, OutCars(), 0U, 10U, 20U, 30U, 40U), "done - 1 10 30 20 40 - - - - -"},
    };
}

namespace {

using Acl = DeviceTest;
using Qos = support::PlatformTest;

constexpr uint16_t MAX = UINT16_MAX;

TEST_F(Acl, OnlyTheIpv4CheckByNumberReportsAbsence)
{
    static const std::string longest(64, 'a');
    Load(R"({"acl_group_id": [{"id": 4, "kind": 0, "name": ")" + longest + R"(", "acl_number": 3001}]})");
    Load(R"({"acl_rule_id": [{"groupId": 0, "rule_id": 1}]})");
    Expect({
        {CALL(ACL_IsExist, VSID, VSYSID, 9U, "web", Out32()), "1 1"},  // the name takes precedence
        {CALL(ACL_IsExist, VSID, VSYSID, 3000U, "mail", Out32()), "1 -"},
        {CALL(ACL_IsExist, VSYSID, VSYSID, 3000U, nullptr, Out32()), "1 -"},
        {CALL(ACLIPv6_IsExist, VSID, VSYSID, 3000U, nullptr, Out32()), "1 2"},
        {CALL(ACLIPv6_IsExist, VSID, VSID, 3000U, nullptr, Out32()), "1 -"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, VSID, VSYSID, 3001U, Out32()), "1 -"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, VSID, VSYSID, 3000U, nullptr), "0"},
        {CALL(ACL_IsACLNodeExistByNumber, VSID, VSYSID, 3001U, Out32()), R"(0 - | QRB_DB_Scan failed, ret = 0\n)"},
        // A condition that doesn't fit into its buffer is refused without a log line.
        {CALL(ACL_IsExist, MAX, MAX, UINT32_MAX, nullptr, Out32()), "0 -"},
        {CALL(ACLIPv6_IsExist, MAX, MAX, UINT32_MAX, nullptr, Out32()), "0 -"},
        {CALL(ACL_IsACLNodeExistByNumber, MAX, MAX, UINT32_MAX, Out32()), "0 -"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, MAX, MAX, UINT32_MAX, Out32()), "1 -"},
        // Rules are added to the count; without a group, those of group 0.
        {CALL(ACL_GetRuleCount, VSID, VSYSID, 3000U, Out32{5}), "0 7"},
        {CALL(ACLIPv6_GetRuleCount, VSID, VSYSID, 3000U, Out32{5}), "0 7"},
        {CALL(ACLIPv6_GetRuleCount, VSID, VSYSID, 3001U, Out32{5}), "0 6"},
        {CALL(ACL_GetRuleCount, VSID, VSYSID, 3001U, Out32()), R"(1 - | ACL_IsACLNodeExistByNumber: QRB_DB_Scan failed, ret = 0\n)"},
        {CALL(ACL_GetNameByGroupId, 9U, OutText()), R"(1 - | QRB_DB_Scan failed, ret = 0\n)"},
        {CALL(BDS_AclGetAclNumberByName, longest.c_str(), uint8_t{0}, 0U, 0U, Out32()), "0 3001"},
        {CALL(ACL_GetNameByGroupId, 4U, OutText()), "0 " + longest},
        // The condition buffer of 64 bytes holds a name of up to nine characters.
        {CALL(ACL_IsExist, VSID, VSYSID, 0U, "123456789", Out32()), "1 -"},
        {CALL(ACL_IsExist, VSID, VSYSID, 0U, "1234567890", Out32()), "0 -"},
        {CALL(BDS_AclGetAclNumberByName, "web", uint8_t{3}, 0U, 0U, Out32()), "1 - | QRB_DB_SESSION_SetKey: Table: acl_group_id execute failed."},
    });
}

// Items 0 and 2 are written to the first slot, item 1 to the second; nothing else is changed.
TEST_F(Qos, LastProfileOfANameAndLastItemOfASlotAreReturned)
{
    static const std::string longest(63, 'q');
    static const std::string tooLong(64, 'q');
    Load(R"({"qos_integration": [{"index": 9, "name": ")" + longest + R"("}]})");
    Load(R"({"qos_integration": [
        {"index": 1, "name": "three",
            "car_list": [
                {"index": 0, "cir": 10, "cbs": 20, "pir": 30, "pbs": 40},
                {"index": 1, "cir": 11, "cbs": 21, "pir": 31, "pbs": 41},
                {"index": 2, "cir": 12, "cbs": 22, "pir": 32, "pbs": 42}],
            "remark_dscp_list": [{"index": 0, "dscp": 288}, {"index": 1, "dscp": 289}, {"index": 2, "dscp": 290}],
            "remark_8021p_list": [{"index": 0, "priority": 256}, {"index": 1, "priority": 257}, {"index": 2, "priority": 258}]},
        {"index": 2, "name": "none"},
        {"index": 3, "name": "empty", "car_list": [], "remark_dscp_list": []},
        {"index": 4, "name": "gold"}, {"index": 5, "name": "gold"}, {"index": 6, "name": "golden"}]})");
    Expect({
        {CALL(QOS_GetProfileIdByName, 0U, longest.c_str(), Out32()), "0 9"},
        {CALL(QOS_GetProfileIdByName, 0U, tooLong.c_str(), Out32()), "200 - | get id by name failed. ret: 200"},
        {CALL(QOS_GetProfileIdByName, 0U, "gol", Out32()), "0 -"},
        {CALL(QOS_GetProfileIdByName, 0U, "gold", Out32()), "0 5"},
        {CALL(QOS_GetCarInfo, 0U, 1U, OutCars()), "0 1 1 12 32 22 42 1 11 31 21 41"},
        {CALL(QOS_GetCarInfo, 0U, 2U, OutCars()),
         "0 - - - - - - - - - - - | car list is not exist. ret = 10058"},
        {CALL(QOS_GetCarInfo, 0U, 3U, OutCars()), "0 - - - - - - - - - - -"},
        {CALL(QOS_GetRemarkInfo, 0U, 1U, OutRemarks()), "0 1 1 34 33 1 2 1"},
        {CALL(QOS_GetRemarkInfo, 0U, 2U, OutRemarks()),
         "0 - - - - - - - | remark dscp list is not exist."},
        {CALL(QOS_GetRemarkInfo, 0U, 3U, OutRemarks()),
         "0 - - - - - - - | remark 8021p list is not exist. ret = 10058"},
    });
}

// clang-format on

}  // namespace

}  // namespace calls
