// The daemon's modules and the report of their memory usage.
#include <algorithm>
#include <random>
#include <set>
#include <span>
#include <thread>

#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>

#include "support/fault_injection.h"

namespace {

// The map before the first handle is requested.
const std::vector<MEM_EX_MODULE_S> atStart(std::begin(g_memExModuleMap),
                                           std::end(g_memExModuleMap));

using MemoryMap = support::PlatformTest;

TEST_F(MemoryMap, FindsEveryModuleByItsName)
{
    MEM_EX_Init();
    std::set<uint16_t> handles = {0};
    for (uint32_t module = 0; module < MEM_EX_MODULE_COUNT; module++) {
        EXPECT_EQ(MEM_EX_GetModule(g_memExModuleMap[module].name), module);
        EXPECT_EQ(MEM_EX_GetHandle(module), mem_handle_get(g_memExModuleMap[module].name));
        handles.insert(MEM_EX_GetHandle(module));
        EXPECT_EQ(atStart[module].handle, 0);
    }
    EXPECT_EQ(handles.size(), MEM_EX_MODULE_COUNT + 1);
    EXPECT_EQ(MEM_EX_GetModule("framework"), MEM_EX_MODULE_COUNT);
    EXPECT_EQ(MEM_EX_GetHandle(MEM_EX_MODULE_COUNT), 0);
}

TEST_F(MemoryMap, ReportsUsageOrTheFailingModule)
{
    MEM_EX_Init();
    MEM_EX_DETAILED_INFO_S entries[33] = {};
    const MEM_EX_DETAILED_INFO_S& own = entries[MEM_EX_MODULE_QRB];
    const uint16_t handle = MEM_EX_GetHandle(MEM_EX_MODULE_QRB);
    uint64_t count = 31;
    EXPECT_EQ(MEM_EX_GetDetailedInfo(entries, &count), 2U);
    EXPECT_EQ(count, 31U);
    EXPECT_EQ(MEM_EX_GetDetailedInfoSize(&count), 0U);
    EXPECT_EQ(count++, 32U);
    EXPECT_EQ(MEM_EX_GetDetailedInfo(nullptr, &count), 1U);
    EXPECT_EQ(MEM_EX_GetDetailedInfo(entries, nullptr), 1U);
    for (int again = 0; again < 2; again++) {  // with a larger buffer than needed, and an exact one
        EXPECT_EQ(MEM_EX_GetDetailedInfo(entries, &count), 0U);
        EXPECT_EQ(count, 32U);
    }
    EXPECT_STREQ(own.name, "QRB");
    const MEM_EX_DETAILED_INFO_S before = own;
    void* block[] = {malloc_ex(handle, "", 1, 100), nullptr};
    std::thread([&] { block[1] = malloc_ex(handle, "", 2, 28); }).join();  // has its own counters
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries, 33), 3U);
    EXPECT_TRUE(own.bytes == before.bytes + 128 && own.blocks == before.blocks + 2);
    EXPECT_EQ(entries[32].name[0], '\0');
    free_ex(handle, block[0]);
    free_ex(handle, block[1]);

    entries[2] = entries[3] = {};
    support::FailCall("strcpy_s", 3, 1);
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries, 32), 3U);
    EXPECT_EQ(entries[2].name[0], '\0');
    g_memExModuleMap[2].handle = 0xFFFF;  // unknown to the accounting service
    EXPECT_EQ(MEM_EX_CopyDetailedInfo(entries, 4), 4U);
    EXPECT_TRUE(entries[2].name[0] != '\0' && entries[3].name[0] == '\0');
    MEM_EX_Init();
}

// Allocates and frees blocks of all sizes on several threads and checks their contents.
TEST_F(MemoryMap, NeverReturnsABlockTwice)
{
    uint64_t inUse[4] = {};
    std::mt19937 random(1);
    std::vector<std::span<uint8_t>> blocks;
    EXPECT_EQ(meminfo_get(5, 0, &inUse[0], &inUse[1]), 0U);
    for (const size_t most : {4000U, 10U, 1000U, 0U}) {
        std::thread([&] {
            while (blocks.size() < most) {
                const size_t size = random() % 300;
                blocks.emplace_back(static_cast<uint8_t*>(malloc_ex(0, "", 1, size)), size);
                std::ranges::fill(blocks.back(), static_cast<uint8_t>(size));
            }
            while (blocks.size() > most) {
                std::swap(blocks[random() % blocks.size()], blocks.back());
                const auto block = blocks.back();
                ASSERT_EQ(std::ranges::count(block, block.size() & 0xFF), std::ssize(block));
                free_ex(0, block.data());
                blocks.pop_back();
            }
        }).join();
    }
    EXPECT_EQ(malloc_ex(0, "", 1, size_t{1} << 48), nullptr);
    EXPECT_EQ(meminfo_get(5, 0, &inUse[2], &inUse[3]), 0U);
    EXPECT_TRUE(inUse[0] == inUse[2] && inUse[1] == inUse[3]);
}

}  // namespace
