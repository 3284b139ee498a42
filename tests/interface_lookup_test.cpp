// Interface indexes and names, both ways.
#include <cstring>

#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE = 0xFFFFFFFF;

class InterfaceLookup : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        standin::Transaction fill;
        fill.Insert(Interface(2, "Ethernet0/0/1", "Eth0/0/1"));
        fill.Insert(Interface(3, "Vlanif100", "Vlanif100"));
        fill.Insert(Interface(4, std::string(63, 'n'), std::string(63, 's')));
        fill.Commit();
    }

    static standin::Row Interface(uint32_t index, const std::string& name,
                                  const std::string& simpleName)
    {
        standin::Row row("if_base");
        row.Set("if_index", index).Set("if_name", name).Set("simple_name", simpleName);
        return row;
    }
};

// Every way from an index to a name, with the answer of a failure.
const struct {
    const char* name;
    uint32_t (*get)(uint32_t ifIndex, char* output);
    uint32_t    failure;
    const char* absence;  // what is logged when there is no record
} TO_NAME[] = {
    {"IF_INTF_GetIfNameByIfIndex",
     [](uint32_t index, char* output) { return IF_INTF_GetIfNameByIfIndex(output, index); }, NONE,
     nullptr},
    {"IF_GetIfNameByIndex", IF_GetIfNameByIndex, 1,
     "IF_GetIfNameByIndex: orm read key[9] failed, ret = 1001000.\n"},
    {"BDS_IfnetGetIfNameByIfIndex", BDS_IfnetGetIfNameByIfIndex, 1,
     "BDS_IfnetGetIfNameByIfIndex: Failed to fetch if_base, ret=1001000\n"},
};

TEST_F(InterfaceLookup, IndexToName)
{
    for (const auto& function : TO_NAME) {
        char name[QRB_IF_NAME_SIZE] = "untouched";
        EXPECT_EQ(function.get(9, name), function.failure) << function.name;
        EXPECT_STREQ(name, "untouched");
        EXPECT_EQ(TakeMessages(), function.absence ? Messages{function.absence} : Messages{});
        EXPECT_EQ(function.get(2, name), 0U) << function.name;
        EXPECT_STREQ(name, "Ethernet0/0/1");
        EXPECT_EQ(function.get(4, name), 0U) << function.name;
        EXPECT_EQ(strlen(name), 63U);
        EXPECT_TRUE(TakeLog().empty());
    }
    EXPECT_EQ(BDS_IfnetGetIfNameByIfIndex(2, nullptr), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetIfNameByIfIndex: Null value provided\n"});
}

TEST_F(InterfaceLookup, ExistsUnlessTheDatabaseKnowsBetter)
{
    EXPECT_EQ(BDS_IfnetIsIfExist(2), 1U);
    EXPECT_EQ(BDS_IfnetIsIfExist(9), 0U);
    EXPECT_TRUE(TakeLog().empty());
    FailCall("OrmgIfBaseReadInner", 1, 12);
    EXPECT_EQ(BDS_IfnetIsIfExist(9), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetIsIfExist: Error to fetch database, ret=12\n"});
}

uint32_t IndexByOutput(const char* name)
{
    uint32_t index = 77;
    if (BDS_Ifname2IfGetIndexByname(name, &index) == 0) {
        return index;
    }
    EXPECT_EQ(index, 77U);
    return NONE;
}

TEST_F(InterfaceLookup, NameToIndexMatchesExactly)
{
    for (const auto lookup :
         {IF_INTF_GetIfByFullName, IF_INTF_GetIfIndexByFullName, IndexByOutput}) {
        EXPECT_EQ(lookup("Ethernet0/0/1"), 2U);
        EXPECT_EQ(lookup(std::string(63, 'n').c_str()), 4U);
        for (const std::string& other :
             {std::string("ethernet0/0/1"), std::string("Ethernet0/0/1 "), std::string("Ethernet"),
              std::string("Eth0/0/1"), std::string(), std::string(64, 'n')}) {
            EXPECT_EQ(lookup(other.c_str()), NONE) << other;
        }
        EXPECT_TRUE(TakeLog().empty());
    }
    EXPECT_EQ(IF_INTF_GetIfIndexByFullName(nullptr), NONE);
    EXPECT_EQ(TakeMessages(), Messages{"IF_INTF_GetIfIndexByFullName: Null value provided\n"});
    uint32_t index = 0;
    EXPECT_EQ(BDS_Ifname2IfGetIndexByname(nullptr, &index), 1U);
    EXPECT_EQ(BDS_Ifname2IfGetIndexByname("x", nullptr), 1U);
    EXPECT_EQ(TakeLog().size(), 2U);
}

TEST_F(InterfaceLookup, ScanByNameReportsUnderItsStepsName)
{
    const struct {
        const char* operation;
        const char* message;
    } steps[] = {
        {"OrmOpenSessionByDefault", "create db session fail 21\n"},
        {"OrmPrepare", "IF_ScanTblByCond: prepare db session fail 21\n"},
        {"OrmScanStart", "IF_ScanTblByCond: start scan if_base fail 21\n"},
        {"OrmScanNext", "IF_ScanTblByCond: scan if_base next fail 21\n"},
    };
    for (const auto& step : steps) {
        FailCall(step.operation, 1, 21);
        EXPECT_EQ(IF_INTF_GetIfByFullName("Vlanif100"), NONE);
        EXPECT_EQ(TakeMessages(), Messages{step.message});
    }
    // A record that can't be read is passed over.
    FailCall("OrmgIfBaseGetAllFieldsInner", 1, 21);
    EXPECT_EQ(IF_INTF_GetIfByFullName("Vlanif100"), 3U);
    EXPECT_EQ(TakeMessages(),
              Messages{"IF_CmpIfBaseRecord: get all field if_base fail for cmp 21\n"});
    // The results of ending and closing are nobody's concern.
    FailCall("OrmScanEnd", 1, 21);
    EXPECT_EQ(IF_INTF_GetIfByFullName("Vlanif100"), 3U);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(InterfaceLookup, RecordComparisonSelectsTheName)
{
    ORM_SESSION session = 0;
    ORM_SCAN    scan    = 0;
    uint8_t     end     = 0;
    ASSERT_EQ(OrmOpenSessionByDefault(&session), 0U);
    ASSERT_EQ(OrmPrepare(session, "if_base", QRB_ORM_OP_SCAN), 0U);
    ASSERT_EQ(OrmScanStart(session, &scan), 0U);
    ASSERT_EQ(OrmScanNext(session, scan, &end), 0U);

    QRB_IF_BASE_S       record = {};
    const IF_NAME_KEY_S full   = {"Ethernet0/0/1", 1};
    const IF_NAME_KEY_S simple = {"Eth0/0/1", 0};
    const IF_NAME_KEY_S wrong  = {"Eth0/0/1", 2};
    EXPECT_EQ(IF_CmpIfBaseRecord(session, &wrong, &record, sizeof(record)), 0U);
    EXPECT_EQ(uint32_t{record.if_index}, 0U);
    EXPECT_EQ(IF_CmpIfBaseRecord(session, &simple, &record, sizeof(record)), 1U);
    EXPECT_EQ(uint32_t{record.if_index}, 2U);
    EXPECT_EQ(IF_CmpIfBaseRecord(session, &full, &record, sizeof(record) - 1), 0U);
    EXPECT_EQ(IF_CmpIfBaseRecord(session, &full, &record, -1), 0U);
    EXPECT_EQ(TakeMessages(),
              Messages(2, "IF_CmpIfBaseRecord: copy all field if_base fail for cmp\n"));
    OrmScanEnd(session, scan);
    OrmCloseSession(session);
}

TEST_F(InterfaceLookup, ScanWithFieldReadsCountsItsCleanUp)
{
    uint32_t index = 0;
    FailCall("OrmScanEnd", 1, 31);
    EXPECT_EQ(BDS_Ifname2IfGetIndexByname("Vlanif100", &index), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_Ifname2IfGetIndexByname: DB error: 31\n"});
    FailCall("OrmCloseSession", 1, 32);
    EXPECT_EQ(BDS_Ifname2IfGetIndexByname("Vlanif100", &index), 1U);
    EXPECT_EQ(TakeMessages(),
              Messages{"BDS_Ifname2IfGetIndexByname: Failed to fetch DB, ret=32\n"});
}

TEST_F(InterfaceLookup, FullNameToShortName)
{
    char name[QRB_IF_NAME_SIZE] = "untouched";
    EXPECT_EQ(IF_INTF_GetSimpleName("Eth0/0/1", name), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"IF_INTF_GetSimpleName: DB error: 1001000\n"});
    EXPECT_EQ(IF_INTF_GetSimpleName(std::string(64, 'n').c_str(), name), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"IF_INTF_GetSimpleName: strcpy_s failed\n"});
    EXPECT_EQ(IF_INTF_GetSimpleName("x", nullptr), 1U);
    EXPECT_EQ(IF_INTF_GetSimpleName(nullptr, name), 1U);
    EXPECT_EQ(TakeMessages(), Messages(2, "IF_INTF_GetSimpleName: Null value provided\n"));
    EXPECT_STREQ(name, "untouched");
    EXPECT_EQ(IF_INTF_GetSimpleName("Ethernet0/0/1", name), 0U);
    EXPECT_STREQ(name, "Eth0/0/1");
}

TEST_F(InterfaceLookup, NameTexts)
{
    char buffer[80] = {};
    EXPECT_EQ(IF_INTF_GetFullNameByInput(std::string(70, 'f').c_str(), buffer), 0U);
    EXPECT_EQ(strlen(buffer), 70U);
    EXPECT_EQ(IF_INTF_GetNameByIfName(buffer, std::string(63, 'f').c_str()), 0U);
    EXPECT_EQ(strlen(buffer), 63U);
    EXPECT_EQ(IF_INTF_GetNameByIfName(buffer, std::string(64, 'f').c_str()), 1U);
    FailCall("strncpy_s", 1, 22);
    EXPECT_EQ(IF_INTF_GetFullNameByInput("eth0", buffer), NONE);
    EXPECT_EQ(TakeMessages(),
              Messages{"IF_INTF_GetFullNameByInput: get full name failed, input=eth0 ret = 22.\n"});
}

TEST_F(InterfaceLookup, NumericTail)
{
    const std::string digits(63, '7');
    const struct {
        std::string name;
        uint32_t    size;
        std::string tail;  // empty: none
    } cases[] = {
        {"Ethernet0/0/1", 64, "0/0/1"},
        {"Trunk10", 64, "10"},
        {"Vlanif100", 64, "100"},
        {"Port0/0/1:2.10", 64, "0/0/1:2.10"},
        {"X1", 64, ""},
        {"XY1", 64, "1"},
        {"100", 64, ""},
        {"", 64, ""},
        {"Ethernet", 64, ""},
        {"Trunk10", 4, "10"},
        {"Trunk10", 3, ""},
        {"Trunk10", 1, ""},
        {"if" + digits, 64, ""},
        {"if" + digits, 65, digits},
    };
    for (const auto& c : cases) {
        char output[80] = "untouched";
        EXPECT_EQ(BDS_IfnetGetNumStrFromName(c.name.c_str(), output, c.size), c.tail.size())
            << c.name << " " << c.size;
        EXPECT_EQ(output, c.tail.empty() ? "untouched" : c.tail);
    }
    EXPECT_TRUE(TakeLog().empty());
    char output[4];
    EXPECT_EQ(BDS_IfnetGetNumStrFromName(nullptr, output, 4), 0U);
    EXPECT_EQ(BDS_IfnetGetNumStrFromName("Trunk1", nullptr, 4), 0U);
    EXPECT_EQ(BDS_IfnetGetNumStrFromName("Trunk1", output, 0), 0U);
    EXPECT_EQ(TakeMessages(), Messages(3, "BDS_IfnetGetNumStrFromName: Null value provided\n"));
}

}  // namespace
