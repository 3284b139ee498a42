// Interposes every function of the platform: definitions in the program precede the library's.
#include "support/fault_injection.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <optional>

#include <standin/store.h>
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/log.h>

#define UNWATCHED __attribute__((no_sanitize("address", "thread", "undefined")))

namespace support {

namespace {

// A planned failure: the nth call from now of one operation.
struct Planned {
    std::string operation;
    unsigned remaining = 0;
    uint32_t code = 0;
    CleanUp cleanUp = CleanUp::Works;
};

bool watching = false;  // accessed by atomic built-ins, because malloc reads it
std::mutex mutex;
std::vector<std::string> points;
std::vector<std::string> texts;
std::optional<Planned> planned;
std::optional<uint32_t> cleanUpCode;  // set if clean-ups after the fault fail too
std::atomic<int> openHandles = 0;

// Clean-up operations run even if they report a failure, so that only the caller can leak.
bool IsCleanUp(std::string_view operation)
{
    return operation == "OrmScanEnd" || operation == "OrmCloseSession";
}

// The code that an operation returns instead of its own.
std::optional<uint32_t> Fault(std::string_view operation)
{
    if (!__atomic_load_n(&watching, __ATOMIC_RELAXED)) {
        return std::nullopt;
    }
    const std::lock_guard lock(mutex);
    points.emplace_back(operation);
    if (IsCleanUp(operation) && cleanUpCode) {
        return cleanUpCode;
    }
    if (!planned || planned->operation != operation || --planned->remaining > 0) {
        return std::nullopt;
    }
    const Planned fault = *std::exchange(planned, std::nullopt);
    if (fault.cleanUp == CleanUp::FailsToo) {
        cleanUpCode = fault.code;
    }
    return fault.code;
}

// malloc is intercepted too, and sanitizers allocate before they are initialized.
template <auto Operation>
UNWATCHED auto Next(const char* name)
{
    static decltype(Operation) next = nullptr;
    auto found = __atomic_load_n(&next, __ATOMIC_RELAXED);
    if (found == nullptr) {
        found = reinterpret_cast<decltype(Operation)>(dlsym(RTLD_NEXT, name));
        __atomic_store_n(&next, found, __ATOMIC_RELAXED);
    }
    return found;
}

void Note(const char* text)
{
    const std::lock_guard lock(mutex);
    texts.emplace_back(text != nullptr ? text : "");
}
void Note(auto /*noText*/) {}

template <auto Operation, typename... Arguments>
auto Pass(const char* name, Arguments... arguments)
{
    using Result = decltype(Operation(arguments...));
    if (__atomic_load_n(&watching, __ATOMIC_RELAXED) && std::string_view(name).starts_with("Orm")) {
        (Note(arguments), ...);
    }
    const std::optional<uint32_t> fault = Fault(name);
    return fault ? static_cast<Result>(*fault) : Next<Operation>(name)(arguments...);
}

uint32_t Opened(uint32_t result)
{
    openHandles += result == 0 ? 1 : 0;
    return result;
}

template <auto Operation, typename... Arguments>
uint32_t Close(const char* name, Arguments... arguments)
{
    const std::optional<uint32_t> fault = Fault(name);
    const uint32_t result = Next<Operation>(name)(arguments...);
    openHandles -= result == 0 ? 1 : 0;
    return fault.value_or(result);
}

// All calls of malloc and calloc are intercepted. The library's are identified by the return
// address.
dl_find_object library = {};

UNWATCHED bool IsLibrary(const void* returnAddress)
{
    return __atomic_load_n(&watching, __ATOMIC_RELAXED) &&
           returnAddress >= library.dlfo_map_start && returnAddress < library.dlfo_map_end;
}

template <auto Operation, typename... Arguments>
int PassSystem(const char* name, const void* returnAddress, Arguments... arguments)
{
    if (IsLibrary(returnAddress)) {
        if (const auto error = Fault(name)) {
            errno = static_cast<int>(*error);
            return -1;
        }
    }
    return Next<Operation>(name)(arguments...);
}

// The library's blocks. There are few at a time, and recording them must not allocate.
void* blocks[64];
int blockCount = 0;

// Stores a block in an empty slot, or removes it from its slot.
UNWATCHED void* Exchange(void* before, void* after)
{
    for (void*& slot : blocks) {
        void* expected = before;
        if (before != after && __atomic_compare_exchange_n(&slot, &expected, after, false,
                                                           __ATOMIC_ACQ_REL, __ATOMIC_RELAXED)) {
            __atomic_add_fetch(&blockCount, after != nullptr ? 1 : -1, __ATOMIC_RELAXED);
            break;
        }
    }
    return after;
}

}  // namespace

std::vector<std::string> FaultPoints()
{
    const std::lock_guard lock(mutex);
    return points;
}

std::vector<std::string> PlatformTexts()
{
    const std::lock_guard lock(mutex);
    return texts;
}

void ResetPlatform()
{
    const std::lock_guard lock(mutex);
    points.clear();
    texts.clear();
    planned.reset();
    cleanUpCode.reset();
}

void WatchPlatform(bool on)
{
    if (library.dlfo_map_start == nullptr) {
        _dl_find_object(reinterpret_cast<void*>(&Tarn_QRB_Log_Printf), &library);
    }
    __atomic_store_n(&watching, on, __ATOMIC_RELAXED);
}

void FailCall(std::string_view operation, unsigned nth, uint32_t code, CleanUp later)
{
    const std::lock_guard lock(mutex);
    planned = {std::string(operation), nth, code, later};
}

int OpenHandles()
{
    return openHandles;
}
int LibraryBlocks()
{
    return __atomic_load_n(&blockCount, __ATOMIC_RELAXED);
}

void PlatformTest::SetUp()
{
    standin::Reset();
    ResetPlatform();
    WatchPlatform(true);
    TakeLog();
    handlesBefore_ = OpenHandles();
}

void PlatformTest::TearDown()
{
    WatchPlatform(false);
    EXPECT_EQ(OpenHandles(), handlesBefore_);
    ResetPlatform();
}

}  // namespace support

using namespace support;

// clang-format off
#define OPERATION(result, name, parameters, ...) extern "C" result name parameters { return Pass<&name>(#name, __VA_ARGS__); }
#define OPENING(name, parameters, ...) extern "C" uint32_t name parameters { return Opened(Pass<&name>(#name, __VA_ARGS__)); }
#define CLOSING(name, parameters, ...) extern "C" uint32_t name parameters { return Close<&name>(#name, __VA_ARGS__); }
#define SYSTEM(name, parameters, ...) extern "C" int name parameters { return PassSystem<&name>(#name, __builtin_return_address(0), __VA_ARGS__); }
#define READER(table) OPERATION(uint32_t, Ormg##table##ReadInner, (const void* a, uint32_t b, void* c, uint32_t d), a, b, c, d)
#define ALL_FIELDS(table) OPERATION(uint32_t, Ormg##table##GetAllFieldsInner, (ORM_SESSION a, void* b, uint32_t c), a, b, c)
#define RECORD(table) READER(table) ALL_FIELDS(table)
#define SET_KEY(table, key) OPERATION(uint32_t, Ormg##table##SetKey##key##Inner, (ORM_SESSION a, const void* b, uint32_t c), a, b, c)

OPENING(OrmOpenSessionByDefault, (ORM_SESSION* a), a)
OPENING(OrmCreateSessionParam, (const char* a, const char* b, ORM_SESSION_PARAM* c), a, b, c)
OPENING(OrmOpenSubSession, (ORM_SESSION_PARAM a, ORM_FD_CONTROL b, ORM_SESSION* c), a, b, c)
OPENING(OrmScanStart, (ORM_SESSION a, ORM_SCAN* b), a, b)
CLOSING(OrmScanEnd, (ORM_SESSION a, ORM_SCAN b), a, b)
CLOSING(OrmCloseSession, (ORM_SESSION a), a)
OPERATION(uint32_t, OrmInit, (uint32_t a, uint32_t b), a, b)
OPERATION(uint32_t, OrmPrepare, (ORM_SESSION a, const char* b, uint32_t c), a, b, c)
OPERATION(uint32_t, OrmSetKeyName, (ORM_SESSION a, const char* b), a, b)
OPERATION(uint32_t, OrmSetIndexKeyValue, (ORM_SESSION a, uint32_t b, uint32_t c, const void* d, uint32_t e), a, b, c, d, e)
OPERATION(uint32_t, OrmExecute, (ORM_SESSION a), a)
OPERATION(uint32_t, OrmGetField, (ORM_SESSION a, const char* b, void* c, uint32_t d), a, b, c, d)
OPERATION(uint32_t, OrmGetFieldById, (ORM_SESSION a, uint32_t b, void* c, uint32_t d), a, b, c, d)
OPERATION(uint32_t, OrmSetScanCond, (ORM_SESSION a, const char* b), a, b)
OPERATION(uint32_t, OrmScanNext, (ORM_SESSION a, ORM_SCAN b, uint8_t* c), a, b, c)
OPERATION(uint32_t, OrmNodeGetChild, (ORM_SESSION a, ORM_NODE b, const char* c, ORM_NODE* d), a, b, c, d)
OPERATION(uint32_t, OrmNodeGetSize, (ORM_NODE a, uint32_t* b), a, b)
OPERATION(uint32_t, OrmNodeGetItemByIdx, (ORM_NODE a, uint32_t b, ORM_NODE* c), a, b, c)
OPERATION(uint32_t, OrmNodeGetFieldById, (ORM_NODE a, uint32_t b, void* c, uint32_t d), a, b, c, d)
OPERATION(uint32_t, OrmSessionParamSetConnName, (ORM_SESSION_PARAM a, const char* b), a, b)
OPERATION(uint32_t, OrmSubscribe, (ORM_SESSION a, const char* b, const char* c, ORM_SUB_CALLBACK d, void* e, const char* f), a, b, c, d, e, f)
OPERATION(uint32_t, OrmSubFetchNext, (ORM_MESSAGE a, uint8_t* b), a, b)
OPERATION(uint32_t, OrmSubExtractData, (ORM_MESSAGE a, uint32_t b, uint32_t c), a, b, c)
OPERATION(uint32_t, DbcHandleEvent, (int32_t a), a)
RECORD(IfBase)
RECORD(IfPhy)
RECORD(IfRoute)
RECORD(Port)
RECORD(Vlan)
READER(IfLink)
ALL_FIELDS(AclGroupId)
SET_KEY(IfBase, LocalKey)
SET_KEY(AmIpv4Address, PrimaryKey)
SET_KEY(AclGroupId, PrimaryKey)
SET_KEY(QosIntegration, PrimaryKey)
OPERATION(int, memcpy_s, (void* a, size_t b, const void* c, size_t d), a, b, c, d)
OPERATION(int, memset_s, (void* a, size_t b, int c, size_t d), a, b, c, d)
OPERATION(int, strcpy_s, (char* a, size_t b, const char* c), a, b, c)
OPERATION(int, strncpy_s, (char* a, size_t b, const char* c, size_t d), a, b, c, d)
OPERATION(int, strcat_s, (char* a, size_t b, const char* c), a, b, c)
SYSTEM(epoll_create, (int a) noexcept, a)
SYSTEM(epoll_ctl, (int a, int b, int c, epoll_event* d) noexcept, a, b, c, d)
SYSTEM(epoll_wait, (int a, epoll_event* b, int c, int d), a, b, c, d)
SYSTEM(close, (int a), a)
// clang-format on

extern "C" {

void OrmDestroySessionParam(ORM_SESSION_PARAM param)
{
    openHandles -= param != 0 ? 1 : 0;
    Next<&OrmDestroySessionParam>("OrmDestroySessionParam")(param);
}

int vsprintf_s(char* to, size_t size, const char* format, va_list arguments)
{
    const std::optional<uint32_t> fault = Fault("vsprintf_s");
    return fault ? -1 : Next<&vsprintf_s>("vsprintf_s")(to, size, format, arguments);
}

int sprintf_s(char* to, size_t size, const char* format, ...)
{
    if (Fault("sprintf_s")) {
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
    return Fault("malloc_ex")
               ? nullptr
               : Exchange(nullptr, Next<&malloc_ex>("malloc_ex")(handle, file, line, size));
}

void free_ex(uint16_t handle, void* block)
{
    Exchange(block, nullptr);
    Next<&free_ex>("free_ex")(handle, block);
}

UNWATCHED void* malloc(size_t size)
{
    if (!IsLibrary(__builtin_return_address(0))) {
        return Next<&malloc>("malloc")(size);
    }
    return Fault("malloc") ? nullptr : Exchange(nullptr, Next<&malloc>("malloc")(size));
}

UNWATCHED void* calloc(size_t count, size_t size)
{
    if (!IsLibrary(__builtin_return_address(0))) {
        return Next<&calloc>("calloc")(count, size);
    }
    return Fault("calloc") ? nullptr : Exchange(nullptr, Next<&calloc>("calloc")(count, size));
}

UNWATCHED void free(void* block)
{
    if (__atomic_load_n(&blockCount, __ATOMIC_RELAXED) != 0) {
        Exchange(block, nullptr);
    }
    // dlsym may itself call free; that call is ignored.
    static thread_local bool looking = false;
    if (!looking) {
        looking = true;
        Next<&free>("free")(block);
        looking = false;
    }
}

[[gnu::no_sanitize_thread]] int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                               void* (*entry)(void*), void* argument)
{
    if (IsLibrary(__builtin_return_address(0))) {
        if (const auto error = Fault("pthread_create")) {
            *thread = 1;  // the system may do so on failure
            return static_cast<int>(*error);
        }
    }
    return Next<&pthread_create>("pthread_create")(thread, attributes, entry, argument);
}

}  // extern "C"
