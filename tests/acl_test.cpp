// Access control lists: what each family takes for existence, rule counts, names and numbers.
#include <tarnd_qrb/acl.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::PlatformCalls;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;
using Calls    = std::vector<std::string>;

constexpr uint32_t UNTOUCHED = 77;

class Acl : public support::PlatformTest {
protected:
    // IPv4 ACL 3000 "web" is group 1, IPv6 ACL 3000 "web" is group 2, both in system (1, 2).
    void SetUp() override
    {
        PlatformTest::SetUp();
        standin::Transaction fill;
        for (const uint32_t isIpv6 : {0U, 1U}) {
            fill.Insert(standin::Row("acl_group")
                            .Set("acl_group_id", 1 + isIpv6)
                            .Set("vsid", 1)
                            .Set("vsysid", 2)
                            .Set("acl_number", 3000)
                            .Set("acl_name", "web")
                            .Set("isipv6", isIpv6));
        }
        fill.Commit();
    }

    static void Rules(const char* table, const char* groupField, uint32_t group, uint32_t count)
    {
        standin::Transaction fill;
        for (uint32_t i = 1; i <= count; i++) {
            fill.Insert(standin::Row(table).Set(groupField, group).Set("rule_id", i));
        }
        fill.Commit();
    }
};

TEST_F(Acl, OnlyTheIpv4CheckByNumberTellsAbsence)
{
    uint32_t group = UNTOUCHED;
    EXPECT_EQ(ACL_IsACLNodeExistByNumber(1, 2, 3000, &group), 1U);
    EXPECT_EQ(group, 1U);
    EXPECT_EQ(ACLIPv6_IsACLNodeExistByNumber(1, 2, 3000, &group), 1U);
    EXPECT_EQ(group, 2U);
    EXPECT_EQ(ACL_IsExist(1, 2, 3000, nullptr, &group), 1U);
    EXPECT_EQ(group, 1U);
    EXPECT_EQ(ACLIPv6_IsExist(1, 2, 3000, nullptr, &group), 1U);
    EXPECT_EQ(group, 2U);

    group = UNTOUCHED;
    EXPECT_EQ(ACLIPv6_IsACLNodeExistByNumber(1, 2, 3001, &group), 1U);
    EXPECT_EQ(ACL_IsExist(1, 3, 3000, nullptr, &group), 1U);
    EXPECT_EQ(ACLIPv6_IsExist(2, 2, 3000, nullptr, &group), 1U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(ACL_IsACLNodeExistByNumber(1, 2, 3001, &group), 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"ACL_IsACLNodeExistByNumber: QRB_DB_Scan failed, ret = 0\n"});
    EXPECT_EQ(group, UNTOUCHED);
}

TEST_F(Acl, ANameGoesBeforeTheNumber)
{
    uint32_t group = UNTOUCHED;
    EXPECT_EQ(ACL_IsExist(1, 2, 9, "web", &group), 1U);
    EXPECT_EQ(group, 1U);
    EXPECT_EQ(ACLIPv6_IsExist(1, 2, 9, "web", &group), 1U);
    EXPECT_EQ(group, 2U);
    group = UNTOUCHED;
    EXPECT_EQ(ACL_IsExist(1, 2, 3000, "mail", &group), 1U);
    EXPECT_EQ(group, UNTOUCHED);
}

TEST_F(Acl, AConditionThatDoesNotFitIsRefusedSilently)
{
    constexpr uint32_t longest = 4294967295;
    uint32_t           group   = UNTOUCHED;
    support::ResetPlatform();
    EXPECT_EQ(ACL_IsExist(1, 2, 0, "tencharact", &group), 0U);
    EXPECT_EQ(ACLIPv6_IsExist(1, 2, 0, "tencharact", &group), 0U);
    EXPECT_EQ(ACL_IsExist(65535, 65535, longest, nullptr, &group), 0U);
    EXPECT_EQ(ACLIPv6_IsExist(65535, 65535, longest, nullptr, &group), 0U);
    EXPECT_EQ(ACL_IsACLNodeExistByNumber(65535, 65535, longest, &group), 0U);
    EXPECT_EQ(ACLIPv6_IsACLNodeExistByNumber(1, 2, 3000, nullptr), 0U);
    EXPECT_TRUE(PlatformCalls().empty());
    EXPECT_EQ(ACL_IsExist(1, 2, 0, "ninechars", &group), 1U);
    EXPECT_EQ(ACLIPv6_IsACLNodeExistByNumber(65535, 65535, longest, &group), 1U);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Acl, AScanThatFailsIsNotExistence)
{
    uint32_t group = UNTOUCHED;
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(ACL_IsACLNodeExistByNumber(1, 2, 3000, &group), 0U);
    EXPECT_EQ(TakeMessages().back(), "ACL_IsACLNodeExistByNumber: QRB_DB_Scan failed, ret = 1\n");
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(ACLIPv6_IsACLNodeExistByNumber(1, 2, 3000, &group), 0U);
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(ACL_IsExist(1, 2, 3000, nullptr, &group), 0U);
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(ACLIPv6_IsExist(1, 2, 3000, nullptr, &group), 0U);
    EXPECT_EQ(group, UNTOUCHED);
}

TEST_F(Acl, RulesAreAddedToTheCount)
{
    Rules("acl_adv", "acl_group_id", 1, 3);
    Rules("acl_adv", "acl_group_id", 2, 7);
    Rules("acl_rule_id", "groupId", 2, 4);
    Rules("acl_rule_id", "groupId", 0, 5);
    uint32_t  count       = 0;
    const int scansBefore = support::OpenScans();
    EXPECT_EQ(ACL_GetRuleCount(1, 2, 3000, &count), 0U);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(support::OpenScans(), scansBefore);
    EXPECT_EQ(ACL_GetRuleCount(1, 2, 3000, &count), 0U);
    EXPECT_EQ(count, 6U);
    EXPECT_EQ(ACLIPv6_GetRuleCount(1, 2, 3000, &count), 0U);
    EXPECT_EQ(count, 10U);
    // An IPv6 list that is not there counts as group 0.
    EXPECT_EQ(ACLIPv6_GetRuleCount(1, 2, 3001, &count), 0U);
    EXPECT_EQ(count, 15U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(ACL_GetRuleCount(1, 2, 3001, &count), 1U);
    EXPECT_EQ(count, 15U);
}

TEST_F(Acl, RuleCountsFailOnlyBeforeCounting)
{
    Rules("acl_adv", "acl_group_id", 1, 3);
    uint32_t count = 0;
    FailCall("OrmScanStart", 2, 9);  // the first is the group's
    EXPECT_EQ(ACL_GetRuleCount(1, 2, 3000, &count), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"ACL_GetRuleCount: OrmScanStart failed, ret = 9\n"});
    EXPECT_EQ(count, 0U);
    FailCall("OrmScanNext", 4, 9);  // one for the group, two rules, then
    EXPECT_EQ(ACL_GetRuleCount(1, 2, 3000, &count), 0U);
    EXPECT_EQ(count, 2U);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Acl, NamesAndNumbersOfGroups)
{
    const std::string    longest(64, 'g');
    standin::Transaction fill;
    fill.Insert(standin::Row("acl_group_id")
                    .Set("id", 1)
                    .Set("name", longest)
                    .Set("kind", 3)
                    .Set("acl_number", 3000));
    fill.Insert(standin::Row("acl_group_id")
                    .Set("id", 2)
                    .Set("name", "web")
                    .Set("kind", 4)
                    .Set("acl_number", 3002));
    fill.Commit();

    for (const auto getName : {ACL_GetNameByGroupId, ACLIPv6_GetNameByGroupId}) {
        char name[ACL_GROUP_NAME_SIZE] = "";
        EXPECT_EQ(getName(1, name), 0U);
        EXPECT_EQ(name, longest);
        EXPECT_EQ(getName(2, name), 0U);
        EXPECT_STREQ(name, "web");
        EXPECT_TRUE(TakeLog().empty());
        EXPECT_EQ(getName(9, name), 1U);
        EXPECT_EQ(TakeMessages(), Messages{"ACL_GetNameByGroupId: QRB_DB_Scan failed, ret = 0\n"});
        FailCall("sprintf_s", 1, 9);
        EXPECT_EQ(getName(2, name), 1U);
        EXPECT_TRUE(TakeLog().empty());
        EXPECT_STREQ(name, "web");
    }

    uint32_t number = UNTOUCHED;
    EXPECT_EQ(BDS_AclGetAclNumberByName("web", 4, 0, 0, &number), 0U);
    EXPECT_EQ(number, 3002U);
    EXPECT_EQ(BDS_AclGetAclNumberByName(longest.c_str(), 3, 0, 0, &number), 0U);
    EXPECT_EQ(number, 3000U);
    EXPECT_EQ(BDS_AclGetAclNumberByName("web", 3, 0, 0, &number), 1U);
    EXPECT_EQ(number, 3000U);
    EXPECT_EQ(TakeMessages(),
              Messages{"QRB_DB_SESSION_SetKey: Table: acl_group_id execute failed."});
}

}  // namespace
