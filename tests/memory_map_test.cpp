// The daemon's modules, and the report of what they use.
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>

#include <set>

#include "support/platform.h"

namespace {

class MemoryMap : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        MEM_EX_Init();
    }
};

TEST_F(MemoryMap, FindsEveryModuleByItsName)
{
    std::set<uint16_t> handles;
    for (uint32_t module = 0; module < MEM_EX_MODULE_COUNT; module++) {
        EXPECT_EQ(MEM_EX_GetModule(g_memExModuleMap[module].name), module);
        EXPECT_EQ(MEM_EX_GetHandle(module), mem_handle_get(g_memExModuleMap[module].name));
        handles.insert(MEM_EX_GetHandle(module));
    }
    EXPECT_EQ(handles.size(), MEM_EX_MODULE_COUNT);
    EXPECT_FALSE(handles.contains(0));
    EXPECT_EQ(MEM_EX_GetModule("framework"), MEM_EX_MODULE_COUNT);
    EXPECT_EQ(MEM_EX_GetHandle(MEM_EX_MODULE_COUNT), 0);
}

TEST_F(MemoryMap, ReportsTrueFigures)
{
    std::vector<MEM_EX_DETAILED_INFO_S> entries(33);
    uint64_t                            count  = 40;
    const uint16_t                      handle = MEM_EX_GetHandle(MEM_EX_MODULE_QRB);
    ASSERT_EQ(MEM_EX_GetDetailedInfo(entries.data(), &count), 0U);
    EXPECT_EQ(count, MEM_EX_MODULE_COUNT);
    EXPECT_EQ(entries[32].name[0], '\0');
    const MEM_EX_DETAILED_INFO_S before = entries[MEM_EX_MODULE_QRB];
    EXPECT_STREQ(before.name, g_memExModuleMap[MEM_EX_MODULE_QRB].name);

    void* const held[] = {malloc_ex(handle, "here", 1, 100), malloc_ex(handle, "here", 2, 28)};
    ASSERT_EQ(MEM_EX_GetDetailedInfo(entries.data(), &count), 0U);
    EXPECT_EQ(entries[MEM_EX_MODULE_QRB].bytes, before.bytes + 128);
    EXPECT_EQ(entries[MEM_EX_MODULE_QRB].blocks, before.blocks + 2);
    free_ex(handle, held[0]);
    free_ex(handle, held[1]);
}

TEST_F(MemoryMap, RefusesAndSaysWhereItStopped)
{
    std::vector<MEM_EX_DETAILED_INFO_S> entries(33);
    uint64_t                            count = 31;
    EXPECT_EQ(MEM_EX_GetDetailedInfo(entries.data(), &count), 2U);
    EXPECT_EQ(count, 31U);
    EXPECT_EQ(MEM_EX_GetDetailedInfo(nullptr, &count), 1U);
    EXPECT_EQ(MEM_EX_GetDetailedInfo(entries.data(), nullptr), 1U);
    EXPECT_EQ(MEM_EX_GetDetailedInfoSize(nullptr), 1U);
    EXPECT_EQ(MEM_EX_GetDetailedInfoSize(&count), 0U);
    EXPECT_EQ(count, MEM_EX_MODULE_COUNT);

    support::FailCall("strcpy_s", 3, 1);
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries.data(), 32), 3U);
    EXPECT_TRUE(entries[1].name[0] != '\0' && entries[2].name[0] == '\0');
    g_memExModuleMap[2].handle = 0xFFFF;  // which the service doesn't know
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries.data(), 4), 4U);
    EXPECT_TRUE(entries[2].name[0] != '\0' && entries[3].name[0] == '\0');
    MEM_EX_Init();
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries.data(), 33), 3U);
    EXPECT_EQ(entries[32].name[0], '\0');
}

}  // namespace
