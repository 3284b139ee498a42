// Quality of service: profile names, the slots of remarks and CAR entries, missing lists.
#include <tarnd_qrb/qos.h>

#include <array>
#include <cstring>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;
using Item     = std::array<uint64_t, 2>;  // a number and the remark
using CarItem  = std::array<uint64_t, 5>;  // a number and the fields 1 to 4

constexpr uint32_t UNTOUCHED = 77;

class Qos : public support::PlatformTest {
protected:
    static standin::Row Profile(uint32_t index, const std::string& name)
    {
        return standin::Row("qos_integration").Set("index", index).Set("name", name);
    }

    static void Insert(const standin::Row& row)
    {
        standin::Transaction write;
        write.Insert(row);
        write.Commit();
    }

    // A record full of 7s, and the same after an inquiry.
    static QOS_PROFILE_INFO_S Sevens()
    {
        QOS_PROFILE_INFO_S info;
        memset(&info, 7, sizeof(info));
        return info;
    }
    static QOS_PROFILE_INFO_S Remarks(uint32_t index)
    {
        QOS_PROFILE_INFO_S info = Sevens();
        EXPECT_EQ(QOS_GetRemarkInfo(0, index, &info), 0U);
        return info;
    }
    static QOS_PROFILE_INFO_S Cars(uint32_t index)
    {
        QOS_PROFILE_INFO_S info = Sevens();
        EXPECT_EQ(QOS_GetCarInfo(0, index, &info), 0U);
        return info;
    }
    static bool Same(const void* one, const void* other, size_t size)
    {
        return memcmp(one, other, size) == 0;
    }
    static bool IsUntouched(const QOS_PROFILE_INFO_S& info)
    {
        const QOS_PROFILE_INFO_S sevens = Sevens();
        return Same(&info, &sevens, sizeof(info));
    }
};

constexpr uint32_t SEVENS = 0x07070707;

bool operator==(const QOS_CAR_S& car, const std::array<uint32_t, 5>& values)
{
    return memcmp(&car, values.data(), sizeof(car)) == 0;
}

constexpr std::array<uint32_t, 5> NO_CAR = {SEVENS, SEVENS, SEVENS, SEVENS, SEVENS};

TEST_F(Qos, TheLastProfileWithANameWins)
{
    Insert(Profile(1, "gold"));
    Insert(Profile(2, std::string(63, 'p')));
    Insert(Profile(3, "gold"));
    Insert(Profile(4, "golden"));
    uint32_t index = UNTOUCHED;
    EXPECT_EQ(QOS_GetProfileIdByName(0, "gol", &index), 0U);
    EXPECT_EQ(index, UNTOUCHED);
    EXPECT_EQ(QOS_GetProfileIdByName(0, "gold", &index), 0U);
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(QOS_GetProfileIdByName(0, std::string(63, 'p').c_str(), &index), 0U);
    EXPECT_EQ(index, 2U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(QOS_GetProfileIdByName(0, std::string(64, 'p').c_str(), &index), 200U);
    EXPECT_EQ(TakeMessages(), Messages{"QOS_GetProfileIdByName: get id by name failed. ret: 200"});
}

TEST_F(Qos, PositionsASessionOrLeavesNone)
{
    Insert(Profile(1, "gold"));
    ORM_SESSION session = 0;
    ASSERT_EQ(QOS_SetQosIntePk(&session, 1), 0U);
    uint32_t index = UNTOUCHED;
    EXPECT_EQ(QOS_GetIdByName(session, "gold", &index), 0U);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(OrmCloseSession(session), 0U);

    EXPECT_EQ(QOS_SetQosIntePk(&session, 2), ORM_NO_RECORD);
    EXPECT_EQ(session, 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"QOS_SetQosIntePk: [qrb qos]error : execute failed. ret: 1001000"});
}

TEST_F(Qos, CarEntriesGoToTwoSlotsWithFieldThreeBeforeTwo)
{
    constexpr CarItem first  = {0, 10, 20, 30, 40};
    constexpr CarItem second = {1, 11, 21, 31, 41};
    constexpr CarItem third  = {2, 12, 22, 32, 42};
    Insert(Profile(1, "one").AddItem("car_list", first));
    Insert(Profile(2, "two").AddItem("car_list", first).AddItem("car_list", second));
    Insert(Profile(3, "three")
               .AddItem("car_list", first)
               .AddItem("car_list", second)
               .AddItem("car_list", third));
    Insert(Profile(4, "empty").MakeList("car_list"));
    Insert(Profile(5, "none"));

    const QOS_PROFILE_INFO_S one = Cars(1);
    EXPECT_EQ(one.valid, 1U);
    EXPECT_TRUE((one.car0 == std::array<uint32_t, 5>{1, 10, 30, 20, 40}));
    EXPECT_TRUE(one.car1 == NO_CAR);
    EXPECT_EQ(one.dscpValid, 7U);
    const QOS_PROFILE_INFO_S two = Cars(2);
    EXPECT_TRUE((two.car0 == std::array<uint32_t, 5>{1, 10, 30, 20, 40}));
    EXPECT_TRUE((two.car1 == std::array<uint32_t, 5>{1, 11, 31, 21, 41}));
    const QOS_PROFILE_INFO_S three = Cars(3);
    EXPECT_TRUE((three.car0 == std::array<uint32_t, 5>{1, 12, 32, 22, 42}));
    EXPECT_TRUE((three.car1 == std::array<uint32_t, 5>{1, 11, 31, 21, 41}));
    EXPECT_TRUE(IsUntouched(Cars(4)));
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_TRUE(IsUntouched(Cars(5)));
    EXPECT_TRUE(IsUntouched(Cars(6)));
    EXPECT_EQ(TakeMessages(),
              (Messages{"QOS_GetCarInfo: car list is not exist. ret = 10058",
                        "QOS_SetQosIntePk: [qrb qos]error : execute failed. ret: 1001000",
                        "QOS_GetCarInfo: qos read db in car info failed."}));
}

TEST_F(Qos, ACarItemThatFailsKeepsTheEntriesBeforeIt)
{
    Insert(Profile(1, "two")
               .AddItem("car_list", CarItem{0, 10, 20, 30, 40})
               .AddItem("car_list", CarItem{1, 11, 21, 31, 41}));
    FailCall("OrmNodeGetFieldById", 6, 9);
    const QOS_PROFILE_INFO_S info = Cars(1);
    EXPECT_EQ(info.valid, 1U);
    EXPECT_EQ(info.car0.field4, 40U);
    EXPECT_TRUE(info.car1 == NO_CAR);
    FailCall("OrmNodeGetChild", 1, 9);
    EXPECT_TRUE(IsUntouched(Cars(1)));
    FailCall("OrmCloseSession", 1, 9);
    EXPECT_EQ(Cars(1).car1.present, 1U);
    EXPECT_EQ(TakeMessages(), (Messages{"QOS_GetCarInfo: orm prepare for scan failed. ret = 9",
                                        "QOS_GetCarInfo: orm prepare for scan failed.ret = 9",
                                        "QOS_GetCarInfo: orm close session failed"}));
}

TEST_F(Qos, RemarksKeepTheLowByteAndNeedTheDscpListFirst)
{
    Insert(Profile(1, "both")
               .AddItem("remark_dscp_list", Item{0, 0x12E})
               .AddItem("remark_dscp_list", Item{1, 10})
               .AddItem("remark_dscp_list", Item{2, 18})
               .AddItem("remark_8021p_list", Item{0, 5})
               .AddItem("remark_8021p_list", Item{1, 0x106}));
    Insert(Profile(2, "dscp").AddItem("remark_dscp_list", Item{0, 0x12E}));
    Insert(Profile(3, "8021p").AddItem("remark_8021p_list", Item{0, 5}));

    const QOS_PROFILE_INFO_S both = Remarks(1);
    EXPECT_EQ(both.valid, 1U);
    EXPECT_EQ(both.dscpValid, 1U);
    EXPECT_EQ(both.dscp0, 18U);
    EXPECT_EQ(both.dscp1, 10U);
    EXPECT_EQ(both.pri8021pValid, 1U);
    EXPECT_EQ(both.pri8021p0, 5U);
    EXPECT_EQ(both.pri8021p1, 6U);
    EXPECT_TRUE(both.car0 == NO_CAR);
    EXPECT_TRUE(TakeLog().empty());

    const QOS_PROFILE_INFO_S dscp = Remarks(2);
    EXPECT_EQ(dscp.dscp0, 0x2EU);
    EXPECT_EQ(dscp.dscp1, 7U);
    EXPECT_EQ(dscp.pri8021pValid, 7U);
    EXPECT_TRUE(IsUntouched(Remarks(3)));
    EXPECT_EQ(TakeMessages(),
              (Messages{"QOS_GetRemarkInfo: remark 8021p list is not exist. ret = 10058",
                        "QOS_GetRemarkInfo: remark dscp list is not exist."}));
}

TEST_F(Qos, ARemarkListThatFailsKeepsTheOneBeforeIt)
{
    Insert(Profile(1, "both")
               .AddItem("remark_dscp_list", Item{0, 8})
               .AddItem("remark_8021p_list", Item{0, 5}));
    FailCall("OrmNodeGetFieldById", 1, 9);
    EXPECT_TRUE(IsUntouched(Remarks(1)));
    FailCall("OrmNodeGetFieldById", 2, 9);
    EXPECT_EQ(Remarks(1).dscp0, 8U);
    EXPECT_EQ(TakeMessages(),
              (Messages{"QOS_GetDscp: get remark desp list failed. ret: 9",
                        "QOS_GetRemarkInfo: orm prepare for scan failed.ret = 200",
                        "QOS_Get8021: get remark 8021p list value failed. ret: 9"}));
    // A list without a size is an empty one.
    FailCall("OrmNodeGetSize", 1, 9);
    EXPECT_EQ(Remarks(1).dscpValid, 7U);
    EXPECT_TRUE(TakeLog().empty());
}

}  // namespace
