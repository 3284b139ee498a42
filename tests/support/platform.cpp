// Every operation of the platform, defined in the test program ahead of the platform library's own.
#include "support/platform.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdarg>
#include <mutex>
#include <optional>

#include <standin/database.h>
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

namespace support {

namespace {

// A call that is going to fail: the nth from now of one operation, or of all where the name is
// empty.
struct Planned {
    std::string operation;
    unsigned    remaining = 0;
    uint32_t    code      = 0;
    CleanUp     cleanUp   = CleanUp::Works;
};

std::atomic<bool>        watching = false;
std::mutex               mutex;
std::vector<std::string> calls;
std::optional<Planned>   planned;
std::optional<uint32_t>  cleanUpCode;  // set once a fault is to be followed by failing clean-ups
std::atomic<int>         openSessions    = 0;
std::atomic<int>         openScans       = 0;
thread_local unsigned    allocationsLeft = 0;

// What a platform call is to answer instead of the platform's answer.
std::optional<uint32_t> Fault(std::string_view operation, bool counted)
{
    if (!watching.load(std::memory_order_relaxed)) {
        return std::nullopt;
    }
    const std::lock_guard lock(mutex);
    if (counted) {
        calls.emplace_back(operation);
    }
    const bool isCleanUp = operation == "OrmScanEnd" || operation == "OrmCloseSession";
    if (isCleanUp && cleanUpCode) {
        return cleanUpCode;
    }
    const bool meant =
        planned && (planned->operation.empty() ? counted : planned->operation == operation);
    if (!meant || --planned->remaining > 0) {
        return std::nullopt;
    }
    const Planned fault = *std::exchange(planned, std::nullopt);
    if (fault.cleanUp == CleanUp::FailsToo) {
        cleanUpCode = fault.code;
    }
    return fault.code;
}

// malloc comes here too, and the thread sanitizer allocates before it can watch anybody.
template <auto Operation>
[[gnu::no_sanitize_thread]] auto Next(const char* name)
{
    static decltype(Operation) next  = nullptr;
    auto                       found = __atomic_load_n(&next, __ATOMIC_RELAXED);
    if (found == nullptr) {
        found = reinterpret_cast<decltype(Operation)>(dlsym(RTLD_NEXT, name));
        __atomic_store_n(&next, found, __ATOMIC_RELAXED);
    }
    return found;
}

template <auto Operation, typename... Arguments>
uint32_t Pass(const char* name, Arguments... arguments)
{
    const std::optional<uint32_t> fault = Fault(name, true);
    return fault ? *fault : Next<Operation>(name)(arguments...);
}

// A clean-up does its work even where it is to fail, so that what stays open is the caller's doing.
template <auto Operation, typename... Arguments>
uint32_t PassCleanUp(const char* name, std::atomic<int>& open, Arguments... arguments)
{
    const std::optional<uint32_t> fault  = Fault(name, true);
    const uint32_t                result = Next<Operation>(name)(arguments...);
    open -= result == 0 ? 1 : 0;
    return fault.value_or(result);
}

uint32_t Opened(uint32_t result, std::atomic<int>& open)
{
    open += result == 0 ? 1 : 0;
    return result;
}

template <auto Operation, typename... Arguments>
int PassBounded(const char* name, Arguments... arguments)
{
    const std::optional<uint32_t> fault = Fault(name, false);
    return fault ? static_cast<int>(*fault) : Next<Operation>(name)(arguments...);
}

void Plan(const Planned& fault)
{
    const std::lock_guard lock(mutex);
    planned = fault;
}

}  // namespace

std::vector<std::string> PlatformCalls()
{
    const std::lock_guard lock(mutex);
    return calls;
}

void ResetPlatform()
{
    const std::lock_guard lock(mutex);
    calls.clear();
    planned.reset();
    cleanUpCode.reset();
    allocationsLeft = 0;
}

void WatchPlatform(bool on)
{
    watching = on;
}

void FailCall(std::string_view operation, unsigned nth, uint32_t code)
{
    Plan({std::string(operation), nth, code, CleanUp::Works});
}

void FailCallNumber(unsigned nth, uint32_t code, CleanUp cleanUp)
{
    Plan({"", nth, code, cleanUp});
}

void FailAllocation(unsigned nth)
{
    allocationsLeft = nth;
}

int OpenSessions()
{
    return openSessions;
}
int OpenScans()
{
    return openScans;
}

void PlatformTest::SetUp()
{
    standin::Reset();
    ResetPlatform();
    WatchPlatform(true);
    TakeLog();
    sessionsBefore_ = OpenSessions();
}

void PlatformTest::TearDown()
{
    WatchPlatform(false);
    EXPECT_EQ(OpenSessions(), sessionsBefore_);
    ResetPlatform();
}

}  // namespace support

using namespace support;

#define OPERATION(name, parameters, ...)        \
    extern "C" uint32_t name parameters         \
    {                                           \
        return Pass<&name>(#name, __VA_ARGS__); \
    }

#define READER(table)                                                                          \
    OPERATION(Ormg##table##ReadInner,                                                          \
              (const void* key, uint32_t keyLength, void* record, uint32_t recordLength), key, \
              keyLength, record, recordLength)

#define ALL_FIELDS(table)                                                                  \
    OPERATION(Ormg##table##GetAllFieldsInner,                                              \
              (ORM_SESSION session, void* record, uint32_t recordLength), session, record, \
              recordLength)

#define SET_KEY(tableAndKey)            \
    OPERATION(Ormg##tableAndKey##Inner, \
              (ORM_SESSION session, const void* key, uint32_t keyLength), session, key, keyLength)

OPERATION(OrmInit, (uint32_t mode, uint32_t option), mode, option)
OPERATION(OrmPrepare, (ORM_SESSION session, const char* table, uint32_t operation), session, table,
          operation)
OPERATION(OrmSetKeyName, (ORM_SESSION session, const char* key), session, key)
OPERATION(OrmSetIndexKeyValue,
          (ORM_SESSION session, uint32_t member, uint32_t type, const void* value, uint32_t size),
          session, member, type, value, size)
OPERATION(OrmExecute, (ORM_SESSION session), session)
OPERATION(OrmGetField, (ORM_SESSION session, const char* field, void* to, uint32_t size), session,
          field, to, size)
OPERATION(OrmGetFieldById, (ORM_SESSION session, uint32_t field, void* to, uint32_t size), session,
          field, to, size)
OPERATION(OrmSetScanCond, (ORM_SESSION session, const char* condition), session, condition)
OPERATION(OrmScanNext, (ORM_SESSION session, ORM_SCAN scan, uint8_t* end), session, scan, end)
OPERATION(OrmNodeGetChild, (ORM_SESSION session, ORM_NODE parent, const char* list, ORM_NODE* node),
          session, parent, list, node)
OPERATION(OrmNodeGetSize, (ORM_NODE node, uint32_t* count), node, count)
OPERATION(OrmNodeGetItemByIdx, (ORM_NODE node, uint32_t index, ORM_NODE* item), node, index, item)
OPERATION(OrmNodeGetFieldById, (ORM_NODE item, uint32_t field, void* to, uint32_t size), item,
          field, to, size)
OPERATION(OrmCreateSessionParam, (const char* channel, const char* kind, ORM_SESSION_PARAM* param),
          channel, kind, param)
OPERATION(OrmSessionParamSetConnName, (ORM_SESSION_PARAM param, const char* name), param, name)
OPERATION(OrmSubscribe,
          (ORM_SESSION session, const char* name, const char* definition, ORM_SUB_CALLBACK callback,
           void* argument, const char* owner),
          session, name, definition, callback, argument, owner)
OPERATION(OrmSubFetchNext, (ORM_MESSAGE message, uint8_t* end), message, end)
OPERATION(OrmSubExtractData, (ORM_MESSAGE message, uint32_t object, uint32_t flags), message,
          object, flags)
OPERATION(DbcHandleEvent, (int32_t descriptor), descriptor)

READER(IfBase)
READER(IfPhy)
READER(IfLink)
READER(IfRoute)
READER(Port)
READER(Vlan)
ALL_FIELDS(IfBase)
ALL_FIELDS(IfPhy)
ALL_FIELDS(IfRoute)
ALL_FIELDS(Port)
ALL_FIELDS(Vlan)
ALL_FIELDS(AclGroupId)
SET_KEY(IfBaseSetKeyLocalKey)
SET_KEY(AmIpv4AddressSetKeyPrimaryKey)
SET_KEY(AclGroupIdSetKeyPrimaryKey)
SET_KEY(QosIntegrationSetKeyPrimaryKey)

extern "C" {

uint32_t OrmOpenSessionByDefault(ORM_SESSION* session)
{
    return Opened(Pass<&OrmOpenSessionByDefault>("OrmOpenSessionByDefault", session), openSessions);
}

uint32_t OrmOpenSubSession(ORM_SESSION_PARAM param, ORM_FD_CONTROL control, ORM_SESSION* session)
{
    return Opened(Pass<&OrmOpenSubSession>("OrmOpenSubSession", param, control, session),
                  openSessions);
}

uint32_t OrmCloseSession(ORM_SESSION session)
{
    return PassCleanUp<&OrmCloseSession>("OrmCloseSession", openSessions, session);
}

uint32_t OrmScanStart(ORM_SESSION session, ORM_SCAN* scan)
{
    return Opened(Pass<&OrmScanStart>("OrmScanStart", session, scan), openScans);
}

uint32_t OrmScanEnd(ORM_SESSION session, ORM_SCAN scan)
{
    return PassCleanUp<&OrmScanEnd>("OrmScanEnd", openScans, session, scan);
}

int memcpy_s(void* to, size_t size, const void* from, size_t count)
{
    return PassBounded<&memcpy_s>("memcpy_s", to, size, from, count);
}

int memset_s(void* to, size_t size, int value, size_t count)
{
    return PassBounded<&memset_s>("memset_s", to, size, value, count);
}

int strcpy_s(char* to, size_t size, const char* from)
{
    return PassBounded<&strcpy_s>("strcpy_s", to, size, from);
}

int strncpy_s(char* to, size_t size, const char* from, size_t count)
{
    return PassBounded<&strncpy_s>("strncpy_s", to, size, from, count);
}

int strcat_s(char* to, size_t size, const char* from)
{
    return PassBounded<&strcat_s>("strcat_s", to, size, from);
}

int vsprintf_s(char* to, size_t size, const char* format, va_list arguments)
{
    const std::optional<uint32_t> fault = Fault("vsprintf_s", false);
    return fault ? -1 : Next<&vsprintf_s>("vsprintf_s")(to, size, format, arguments);
}

int sprintf_s(char* to, size_t size, const char* format, ...)
{
    if (Fault("sprintf_s", false)) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, format);
    const int length = Next<&vsprintf_s>("vsprintf_s")(to, size, format, arguments);
    va_end(arguments);
    return length;
}

void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size)
{
    return Fault("malloc_ex", false) ? nullptr
                                     : Next<&malloc_ex>("malloc_ex")(handle, file, line, size);
}

// The library's own allocations come here as everybody's do; only a planned one fails.
[[gnu::no_sanitize_thread]] void* malloc(size_t size)
{
    return allocationsLeft > 0 && --allocationsLeft == 0 ? nullptr : Next<&malloc>("malloc")(size);
}

[[gnu::no_sanitize_thread]] void* calloc(size_t count, size_t size)
{
    return allocationsLeft > 0 && --allocationsLeft == 0 ? nullptr
                                                         : Next<&calloc>("calloc")(count, size);
}

}  // extern "C"
