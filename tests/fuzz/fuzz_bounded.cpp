// The bounded functions, compared with the standard library's strings: a text that fits is copied,
// any other is refused and leaves an empty text. The address sanitizer detects writes outside.
#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include <tarnd_platform/bounded.h>

#include "fuzz.h"

namespace {

// A destination of an exact size, and the text expected in it.
void CheckText(int result, bool fits, const std::vector<char>& destination,
               const std::string& expected)
{
    CHECK((result == 0) == fits);
    CHECK(destination.empty() || destination.data() == (fits ? expected : std::string()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const auto capacity = input.ConsumeIntegralInRange<size_t>(0, 40);
    const auto count = input.ConsumeIntegralInRange<size_t>(0, 40);
    const auto number = input.ConsumeIntegral<int>();
    const std::string present = input.ConsumeRandomLengthString(40).c_str();
    const std::string source = input.ConsumeRemainingBytesAsString().c_str();

    std::vector<char> text(capacity, 'x');
    CheckText(strcpy_s(text.data(), capacity, source.c_str()), source.size() < capacity, text,
              source);

    const std::string cut = source.substr(0, count);
    CheckText(strncpy_s(text.data(), capacity, source.c_str(), count), cut.size() < capacity, text,
              cut);

    if (present.size() < capacity) {
        std::memcpy(text.data(), present.c_str(), present.size() + 1);
        const std::string joined = present + source;
        CheckText(strcat_s(text.data(), capacity, source.c_str()), joined.size() < capacity, text,
                  joined);
    }

    const std::string printed = source + "/" + std::to_string(number);
    const bool fits = printed.size() < capacity;
    const int length = sprintf_s(text.data(), capacity, "%s/%d", source.c_str(), number);
    CHECK(length == (fits ? static_cast<int>(printed.size()) : -1));
    CheckText(length < 0 ? length : 0, fits, text, printed);

    std::vector<char> bytes(count);
    std::vector<char> before(capacity, 'x');
    std::iota(bytes.begin(), bytes.end(), 'a');
    CHECK((memset_s(text.data(), capacity, 'x', capacity) == 0) == (text.data() != nullptr));
    CHECK((memcpy_s(text.data(), capacity, bytes.data(), count) == 0) ==
          (count <= capacity && text.data() != nullptr && bytes.data() != nullptr));
    if (count <= capacity) {
        std::copy(bytes.begin(), bytes.end(), before.begin());
    }
    CHECK(text == before);
    return 0;
}
