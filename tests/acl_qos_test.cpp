// Access control lists: what each family takes for existence, rule counts, names and numbers.
// Quality of service: profile names, slots, missing lists.
#include <tarnd_qrb/acl.h>

#include "calls/records.h"

namespace {

using namespace calls;

using Acl = DeviceTest;
using Qos = support::PlatformTest;

constexpr uint16_t ONE = 1;
constexpr uint16_t TWO = 2;
constexpr uint16_t MAX = UINT16_MAX;

// The device has IPv4 ACL 3000 "web", group 1, and IPv6 ACL 3000 "web", group 2, in system (1, 2).
TEST_F(Acl, OnlyTheIpv4CheckByNumberTellsAbsence)
{
    Expect({
        {CALL(ACL_IsExist, ONE, TWO, 9U, "web", Out32()), "1 1"},  // a name goes before the number
        {CALL(ACL_IsExist, ONE, TWO, 3000U, "mail", Out32()), "1 -"},
        {CALL(ACL_IsExist, TWO, TWO, 3000U, nullptr, Out32()), "1 -"},
        {CALL(ACLIPv6_IsExist, ONE, TWO, 3000U, nullptr, Out32()), "1 2"},
        {CALL(ACLIPv6_IsExist, ONE, ONE, 3000U, nullptr, Out32()), "1 -"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, ONE, TWO, 3001U, Out32()), "1 -"},
        {CALL(ACL_IsACLNodeExistByNumber, ONE, TWO, 3001U, Out32()),
         R"(0 - | QRB_DB_Scan failed, ret = 0\n)"},
    });
}

TEST_F(Acl, AConditionThatDoesNotFitIsRefusedSilently)
{
    Expect({
        {CALL(ACL_IsExist, ONE, TWO, 0U, "tencharact", Out32()), "0 -"},
        {CALL(ACLIPv6_IsExist, ONE, TWO, 0U, "tencharact", Out32()), "0 -"},
        {CALL(ACL_IsExist, MAX, MAX, UINT32_MAX, nullptr, Out32()), "0 -"},
        {CALL(ACLIPv6_IsExist, MAX, MAX, UINT32_MAX, nullptr, Out32()), "0 -"},
        {CALL(ACL_IsACLNodeExistByNumber, MAX, MAX, UINT32_MAX, Out32()), "0 -"},
        {CALL(ACL_IsExist, ONE, TWO, 0U, "ninechars", Out32()), "1 -"},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, MAX, MAX, UINT32_MAX, Out32()), "1 -"},
    });
}

TEST_F(Acl, RulesAreAddedToTheCount)
{
    Load(R"({"acl_rule_id": [{"groupId": 0, "rule_id": 1}]})");
    Expect({
        {CALL(ACL_GetRuleCount, ONE, TWO, 3000U, Out32{5}), "0 7"},
        {CALL(ACLIPv6_GetRuleCount, ONE, TWO, 3000U, Out32{5}), "0 7"},
        {CALL(ACLIPv6_GetRuleCount, ONE, TWO, 3001U, Out32{5}), "0 6"},  // as group 0
        {CALL(ACL_GetRuleCount, ONE, TWO, 3001U, Out32()),
         R"(1 - | ACL_IsACLNodeExistByNumber: QRB_DB_Scan failed, ret = 0\n)"},
    });
}

TEST_F(Acl, NamesAndNumbersThatAreNotThere)
{
    Expect({
        {CALL(ACL_GetNameByGroupId, 9U, OutText()), R"(1 - | QRB_DB_Scan failed, ret = 0\n)"},
        {CALL(BDS_AclGetAclNumberByName, "web", uint8_t{3}, 0U, 0U, Out32()),
         "1 - | QRB_DB_SESSION_SetKey: Table: acl_group_id execute failed."},
    });
}

TEST_F(Qos, TheLastProfileWithANameWins)
{
    static const std::string tooLong(64, 'p');
    Load(R"({"qos_integration": [
        {"index": 1, "name": "gold"}, {"index": 3, "name": "gold"}, {"index": 4, "name": "golden"}]})");
    Expect({
        {CALL(QOS_GetProfileIdByName, 0U, "gol", Out32()), "0 -"},
        {CALL(QOS_GetProfileIdByName, 0U, "gold", Out32()), "0 3"},
        {CALL(QOS_GetProfileIdByName, 0U, tooLong.c_str(), Out32()),
         "200 - | get id by name failed. ret: 200"},
    });
}

// Items 0 and 2 go to the first slot, item 1 to the second; nothing else is touched.
TEST_F(Qos, SlotsTakeTheLastItemThatIsTheirs)
{
    Load(R"({"qos_integration": [
        {"index": 1, "name": "three",
            "car_list": [
                {"index": 0, "cir": 10, "cbs": 20, "pir": 30, "pbs": 40},
                {"index": 1, "cir": 11, "cbs": 21, "pir": 31, "pbs": 41},
                {"index": 2, "cir": 12, "cbs": 22, "pir": 32, "pbs": 42}],
            "remark_dscp_list": [{"index": 0, "dscp": 288}, {"index": 1, "dscp": 289}, {"index": 2, "dscp": 290}],
            "remark_8021p_list": [{"index": 0, "priority": 256}, {"index": 1, "priority": 257}, {"index": 2, "priority": 258}]},
        {"index": 2, "name": "none"},
        {"index": 3, "name": "empty", "car_list": [], "remark_dscp_list": []}]})");
    Expect({
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

}  // namespace
