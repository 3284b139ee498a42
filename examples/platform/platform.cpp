// A platform with one interface, as a starting point for a platform of your own.
//
// Every function of the contract is defined. The functions that a lookup of an interface name
// needs are implemented; the others return a code, which the library logs.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_platform/orm.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/records.h>

namespace {

// A code of the platform's choice.
constexpr uint32_t NOT_IMPLEMENTED = 2;

}  // namespace

// Implemented: interface 42.

uint32_t OrmInit(uint32_t, uint32_t)
{
    return ORM_OK;
}

uint32_t OrmgIfBaseReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength)
{
    uint32_t ifIndex = 0;
    if (keyLength != sizeof(ifIndex) || recordLength != sizeof(QRB_IF_BASE_S)) {
        return NOT_IMPLEMENTED;
    }
    std::memcpy(&ifIndex, key, sizeof(ifIndex));
    if (ifIndex != 42) {
        return ORM_NO_RECORD;
    }
    QRB_IF_BASE_S row = {};
    row.if_index = ifIndex;
    std::strcpy(row.if_name, "Foreign42");
    std::memcpy(record, &row, sizeof(row));
    return ORM_OK;
}

// Not implemented.

uint32_t OrmOpenSessionByDefault(ORM_SESSION*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmCloseSession(ORM_SESSION)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmPrepare(ORM_SESSION, const char*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSetKeyName(ORM_SESSION, const char*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSetIndexKeyValue(ORM_SESSION, uint32_t, uint32_t, const void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmExecute(ORM_SESSION)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmGetField(ORM_SESSION, const char*, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmGetFieldById(ORM_SESSION, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSetScanCond(ORM_SESSION, const char*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmScanStart(ORM_SESSION, ORM_SCAN*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmScanNext(ORM_SESSION, ORM_SCAN, uint8_t*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmScanEnd(ORM_SESSION, ORM_SCAN)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmNodeGetChild(ORM_SESSION, ORM_NODE, const char*, ORM_NODE*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmNodeGetSize(ORM_NODE, uint32_t*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmNodeGetItemByIdx(ORM_NODE, uint32_t, ORM_NODE*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmNodeGetFieldById(ORM_NODE, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}

uint32_t OrmgIfPhyReadInner(const void*, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfLinkReadInner(const void*, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfRouteReadInner(const void*, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgPortReadInner(const void*, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgVlanReadInner(const void*, uint32_t, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfBaseGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfPhyGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfRouteGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgPortGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgVlanGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgAclGroupIdGetAllFieldsInner(ORM_SESSION, void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgIfBaseSetKeyLocalKeyInner(ORM_SESSION, const void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgAmIpv4AddressSetKeyPrimaryKeyInner(ORM_SESSION, const void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgAclGroupIdSetKeyPrimaryKeyInner(ORM_SESSION, const void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmgQosIntegrationSetKeyPrimaryKeyInner(ORM_SESSION, const void*, uint32_t)
{
    return NOT_IMPLEMENTED;
}

uint32_t OrmCreateSessionParam(const char*, const char*, ORM_SESSION_PARAM*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSessionParamSetConnName(ORM_SESSION_PARAM, const char*)
{
    return NOT_IMPLEMENTED;
}
void OrmDestroySessionParam(ORM_SESSION_PARAM) {}
uint32_t OrmOpenSubSession(ORM_SESSION_PARAM, ORM_FD_CONTROL, ORM_SESSION*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSubscribe(ORM_SESSION, const char*, const char*, ORM_SUB_CALLBACK, void*, const char*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSubFetchNext(ORM_MESSAGE, uint8_t*)
{
    return NOT_IMPLEMENTED;
}
uint32_t OrmSubExtractData(ORM_MESSAGE, uint32_t, uint32_t)
{
    return NOT_IMPLEMENTED;
}
uint32_t DbcHandleEvent(int32_t)
{
    return NOT_IMPLEMENTED;
}

// Memory, without accounting.

uint32_t mem_handle_get(const char*)
{
    return 0;
}
void* malloc_ex(uint16_t, const char*, uint32_t, size_t size)
{
    return std::malloc(size);
}
void free_ex(uint16_t, void* memory)
{
    std::free(memory);
}
uint32_t meminfo_get(uint32_t, uint16_t, uint64_t*, uint64_t*)
{
    return NOT_IMPLEMENTED;
}

// Bounded copies and formatting.

int memcpy_s(void* destination, size_t destinationSize, const void* source, size_t count)
{
    if (destination == nullptr || source == nullptr || count > destinationSize) {
        return 1;
    }
    std::memcpy(destination, source, count);
    return 0;
}

int memset_s(void* destination, size_t destinationSize, int value, size_t count)
{
    if (destination == nullptr || count > destinationSize) {
        return 1;
    }
    std::memset(destination, value, count);
    return 0;
}

int strncpy_s(char* destination, size_t destinationSize, const char* source, size_t count)
{
    if (destination == nullptr || destinationSize == 0) {
        return 1;
    }
    const size_t length = source == nullptr ? destinationSize : strnlen(source, count);
    if (length >= destinationSize) {
        *destination = '\0';
        return 1;
    }
    std::memcpy(destination, source, length);
    destination[length] = '\0';
    return 0;
}

int strcpy_s(char* destination, size_t destinationSize, const char* source)
{
    return strncpy_s(destination, destinationSize, source, SIZE_MAX);
}

int strcat_s(char* destination, size_t destinationSize, const char* source)
{
    const size_t used = destination == nullptr ? 0 : strnlen(destination, destinationSize);
    return destination == nullptr ? 1
                                  : strcpy_s(destination + used, destinationSize - used, source);
}

int vsprintf_s(char* destination, size_t destinationSize, const char* format, va_list arguments)
{
    if (destination == nullptr || format == nullptr) {
        return -1;
    }
    const int length = std::vsnprintf(destination, destinationSize, format, arguments);
    return length >= 0 && static_cast<size_t>(length) < destinationSize ? length : -1;
}

int sprintf_s(char* destination, size_t destinationSize, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(destination, destinationSize, format, arguments);
    va_end(arguments);
    return length;
}
