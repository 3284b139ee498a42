// Interface names as texts: copies, and the numeric tail. No database.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

uint32_t IF_INTF_GetFullNameByInput(const char* input, char* output)
{
    const size_t length = strlen(input);
    const int copied = strncpy_s(output, length + 1, input, length);
    if (copied != 0) {
        QRB_ERROR("get full name failed, input=%s ret = %d.\n", input, copied);
        return NONE;
    }
    return OK;
}

uint32_t IF_INTF_GetNameByIfName(char* output, const char* name)
{
    return strcpy_s(output, QRB_IF_NAME_SIZE, name) == 0 ? OK : FAIL;
}

uint32_t BDS_IfnetGetNumStrFromName(const char* name, char* output, uint32_t size)
{
    if (name == nullptr || output == nullptr || size == 0) {
        QRB_ERROR("Null value provided\n");
        return 0;
    }
    // '.' to ':' are neighbours: '.', '/', the digits and ':'.
    const auto isTail = [](char c) { return c >= '.' && c <= ':'; };
    const size_t length = strlen(name);
    size_t head = length;
    while (head > 0 && isTail(name[head - 1])) {
        head--;
    }
    const size_t tail = length - head;
    if (tail == 0 || tail + 1 >= size || head < 2) {
        return 0;
    }
    const int copied = memcpy_s(output, tail + 1, name + head, tail + 1);
    if (copied != 0) {
        QRB_ERROR("memcpy failed, ret=%d\n", copied);
    }
    return static_cast<uint32_t>(tail);
}
