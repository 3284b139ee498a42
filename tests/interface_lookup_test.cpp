// Interface indexes and names, both ways.
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

const std::string LONGEST(63, 'n');
const std::string TOO_LONG(64, 'n');
const std::string DIGITS = "if" + std::string(63, '7');

class InterfaceLookup : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        for (const auto& [index, name, simpleName] :
             {std::tuple{2U, "Ethernet0/0/1", "Eth0/0/1"}, {4U, LONGEST.c_str(), "s"}}) {
            Insert({Row("if_base")
                        .Set("if_index", index)
                        .Set("if_name", name)
                        .Set("simple_name", simpleName)});
        }
    }
};

TEST_F(InterfaceLookup, TheLongestNameFits)
{
    Expect({
        {CALL(IF_INTF_GetIfNameByIfIndex, OutText(), 4U), "0 " + LONGEST},
        {CALL(IF_GetIfNameByIndex, 4U, OutText()), "0 " + LONGEST},
        {CALL(BDS_IfnetGetIfNameByIfIndex, 4U, OutText()), "0 " + LONGEST},
        {CALL(IF_INTF_GetSimpleName, LONGEST.c_str(), OutText()), "0 s"},
        {CALL(IF_INTF_GetSimpleName, TOO_LONG.c_str(), OutText()), R"(1 - | strcpy_s failed\n)"},
        {CALL(IF_INTF_GetNameByIfName, OutText(), LONGEST.c_str()), "0 " + LONGEST},
        {CALL(IF_INTF_GetNameByIfName, OutText(), TOO_LONG.c_str()), R"(1 "")"},
        {CALL(IF_INTF_GetFullNameByInput, DIGITS.c_str(), OutText()), "0 " + DIGITS},
    });
}

uint32_t IndexByOutput(const char* name)
{
    uint32_t index = UNTOUCHED;
    if (BDS_Ifname2IfGetIndexByname(name, &index) == 0) {
        return index;
    }
    EXPECT_EQ(index, UNTOUCHED);
    return UINT32_MAX;
}

TEST_F(InterfaceLookup, NameToIndexMatchesExactly)
{
    for (const auto lookup :
         {IF_INTF_GetIfByFullName, IF_INTF_GetIfIndexByFullName, IndexByOutput}) {
        EXPECT_EQ(lookup("Ethernet0/0/1"), 2U);
        EXPECT_EQ(lookup(LONGEST.c_str()), 4U);
        for (const char* other :
             {"ethernet0/0/1", "Ethernet0/0/1 ", "Ethernet", "Eth0/0/1", "", TOO_LONG.c_str()}) {
            EXPECT_EQ(lookup(other), UINT32_MAX) << other;
        }
        EXPECT_TRUE(support::TakeLog().empty());
    }
}

TEST_F(InterfaceLookup, RecordComparisonSelectsTheName)
{
    static QRB_IF_BASE_S           record = {};
    static constexpr IF_NAME_KEY_S full   = {"Ethernet0/0/1", 1};
    static constexpr IF_NAME_KEY_S simple = {"Eth0/0/1", 0};
    static constexpr IF_NAME_KEY_S wrong  = {"Eth0/0/1", 2};
    Positioned("if_base");
    Expect({
        {CALL(IF_CmpIfBaseRecord, session, &wrong, &record, 387), "0"},
        {CALL(IF_CmpIfBaseRecord, session, &simple, &record, 387), "1"},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, 388), "1"},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, 386),
         R"(0 | copy all field if_base fail for cmp\n)"},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, -1),
         R"(0 | copy all field if_base fail for cmp\n)"},
    });
    Closed();
    EXPECT_EQ(uint32_t{record.if_index}, 2U);
}

}  // namespace
