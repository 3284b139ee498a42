// The bounded functions: a result that fits exactly, one that is too long by a byte, no
// destination.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <tarnd_platform/bounded.h>

namespace {

using namespace std::string_literals;

struct BoundedCase {
    std::string call;
    std::function<int(char*, size_t)> function;
    std::string before;    // the whole destination
    std::string expected;  // afterwards
    int result = 0;        // 1: any error
};

#define BOUNDED(call) \
    #call, []([[maybe_unused]] char* to, [[maybe_unused]] size_t size) { return call; }

const BoundedCase CASES[] = {
    {BOUNDED(memcpy_s(to, size, "abcd", 3)), "xxxx", "abcx"},
    {BOUNDED(memcpy_s(to, size, "abcd", 4)), "xxxx", "abcd"},
    {BOUNDED(memcpy_s(to, size, "abcde", 5)), "xxxx", "xxxx", 1},
    {BOUNDED(memcpy_s(to, size, "", 0)), "xx", "xx"},
    {BOUNDED(memcpy_s(to, size, nullptr, 0)), "xx", "xx", 1},
    {BOUNDED(memcpy_s(nullptr, size, "a", 1)), "xx", "xx", 1},
    {BOUNDED(memset_s(to, size, 'a', 2)), "xxx", "aax"},
    {BOUNDED(memset_s(to, size, 'a', 3)), "xxx", "aaa"},
    {BOUNDED(memset_s(to, size, 'a', 4)), "xxx", "xxx", 1},
    {BOUNDED(memset_s(nullptr, size, 'a', 1)), "xxx", "xxx", 1},
    {BOUNDED(strcpy_s(to, size, "abc")), "xxxxx", "abc\0x"s},
    {BOUNDED(strcpy_s(to, size, "abc")), "xxxx", "abc\0"s},
    {BOUNDED(strcpy_s(to, size, "abcd")), "xxxx", "\0xxx"s, 1},
    {BOUNDED(strcpy_s(to, size, "")), "x", "\0"s},
    {BOUNDED(strcpy_s(to, size, nullptr)), "xx", "\0x"s, 1},
    {BOUNDED(strcpy_s(to, 0, "")), "x", "x", 1},
    {BOUNDED(strcpy_s(nullptr, size, "a")), "xx", "xx", 1},
    {BOUNDED(strncpy_s(to, size, "abcd", 3)), "xxxx", "abc\0"s},
    {BOUNDED(strncpy_s(to, size, "ab", 9)), "xxx", "ab\0"s},
    {BOUNDED(strncpy_s(to, size, "abcd", 4)), "xxxx", "\0xxx"s, 1},
    {BOUNDED(strncpy_s(to, size, "abcd", 0)), "x", "\0"s},
    {BOUNDED(strncpy_s(to, size, nullptr, 0)), "xx", "\0x"s, 1},
    {BOUNDED(strcat_s(to, size, "cd")), "ab\0xx"s, "abcd\0"s},
    {BOUNDED(strcat_s(to, size, "cde")), "ab\0xx"s, "\0b\0xx"s, 1},
    {BOUNDED(strcat_s(to, size, "")), "ab\0"s, "ab\0"s},
    {BOUNDED(strcat_s(to, size, "")), "abc", "\0bc"s, 1},  // no end in it
    {BOUNDED(strcat_s(to, size, nullptr)), "a\0"s, "\0\0"s, 1},
    {BOUNDED(strcat_s(nullptr, size, "a")), "a\0"s, "a\0"s, 1},
    {BOUNDED(sprintf_s(to, size, "%s/%d", "a", 12)), "xxxxx", "a/12\0"s, 4},
    {BOUNDED(sprintf_s(to, size, "%s/%d", "a", 123)), "xxxxx", "\0/12\0"s, -1},
    {BOUNDED(sprintf_s(to, size, "%s", "")), "x", "\0"s, 0},
    {BOUNDED(sprintf_s(to, 0, "%s", "")), "x", "x", -1},
    {BOUNDED(sprintf_s(nullptr, size, "a")), "xx", "xx", -1},
};

TEST(BoundedFunctions, WriteWhatFitsAndRefuseTheRest)
{
    for (const BoundedCase& row : CASES) {
        std::vector<char> bytes(row.before.begin(), row.before.end());  // of exactly this size
        const int result = row.function(bytes.data(), bytes.size());
        const std::string after(bytes.begin(), bytes.end());
        EXPECT_EQ(after, row.expected) << row.call << " on " << row.before.size() << " bytes";
        const bool isCode = row.call.starts_with("sprintf_s");
        EXPECT_EQ(isCode ? result : result != 0, row.result) << row.call;
    }
}

}  // namespace
