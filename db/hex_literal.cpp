// Byte strings as conditions write them.
#include <cstdlib>
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr char PREFIX[] = "0x";

// "0x", two digits for each byte, and the terminator.
constexpr size_t LiteralSize(size_t bytes)
{
    return sizeof(PREFIX) + 2 * bytes;
}

uint32_t AppendBytes(const uint8_t* bytes, size_t size, char* output)
{
    for (size_t i = 0; i < size; i++) {
        char digits[3];
        if (sprintf_s(digits, sizeof(digits), "%02x", bytes[i]) < 0 ||
            strcat_s(output, LiteralSize(size), digits) != 0) {
            return FAIL;
        }
    }
    return OK;
}

}  // namespace

uint32_t QRB_DB_TransStringToHexNumString(const char* text, char* output, int32_t size)
{
    if (size < 0) {
        return FAIL;
    }
    const size_t bytes = static_cast<size_t>(size);
    uint8_t* const work = static_cast<uint8_t*>(calloc(bytes, 1));
    if (work == nullptr) {
        return FAIL;
    }
    memcpy(work, text, strnlen(text, bytes));
    uint32_t ret = FAIL;
    if (strcpy_s(output, LiteralSize(bytes), PREFIX) == 0) {
        ret = AppendBytes(work, bytes, output);
    }
    free(work);
    return ret;
}
