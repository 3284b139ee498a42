// Every operation of the platform, defined in the test program ahead of the platform library's own.
#include "support/platform.h"

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <optional>

#include <standin/database.h>
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

#define UNWATCHED __attribute__((no_sanitize("address", "thread", "undefined")))

namespace support {

namespace {

// A call that is going to fail: the nth from now of one operation.
struct Planned {
    std::string operation;
    unsigned    remaining = 0;
    uint32_t    code      = 0;
    CleanUp     cleanUp   = CleanUp::Works;
};

bool                     watching = false;  // by atomic built-ins, as what malloc looks at
std::mutex               mutex;
std::vector<std::string> points;
std::vector<std::string> texts;
std::optional<Planned>   planned;
std::optional<uint32_t>  cleanUpCode;  // set once a fault is to be followed by failing clean-ups
std::atomic<int>         openSessions = 0;
std::atomic<int>         openScans    = 0;

// What an operation is to answer instead of its own answer.
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

// malloc comes here too, and sanitizers allocate before they can watch anybody.
template <auto Operation>
UNWATCHED auto Next(const char* name)
{
    static decltype(Operation) next  = nullptr;
    auto                       found = __atomic_load_n(&next, __ATOMIC_RELAXED);
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

// A clean-up does its work even where it is to fail, so that what stays open is the caller's doing.
template <auto Operation, typename... Arguments>
uint32_t PassCleanUp(const char* name, std::atomic<int>& open, Arguments... arguments)
{
    const std::optional<uint32_t> fault  = Fault(name);
    const uint32_t                result = Next<Operation>(name)(arguments...);
    open -= result == 0 ? 1 : 0;
    return fault.value_or(result);
}

uint32_t Opened(uint32_t result, std::atomic<int>& open)
{
    open += result == 0 ? 1 : 0;
    return result;
}

// Everybody's malloc and calloc come to the test program, the library's by the address that they
// return to.
uintptr_t codeBegin = 0;
uintptr_t codeEnd   = 0;

int FindLibraryCode(dl_phdr_info* object, size_t /*size*/, void* /*context*/)
{
    if (std::string_view(object->dlpi_name).find("libtarnd_qrb.so") == std::string_view::npos) {
        return 0;
    }
    for (int i = 0; i < object->dlpi_phnum; i++) {
        const ElfW(Phdr)& segment = object->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
            codeBegin = object->dlpi_addr + segment.p_vaddr;
            codeEnd   = codeBegin + segment.p_memsz;
        }
    }
    return 1;
}

UNWATCHED bool IsLibrary(const void* returnAddress)
{
    const auto address = reinterpret_cast<uintptr_t>(returnAddress);
    return __atomic_load_n(&watching, __ATOMIC_RELAXED) && address >= codeBegin &&
           address < codeEnd;
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

// The library's blocks. They are few at a time, and keeping them must not allocate.
void* blocks[64];
int   blockCount = 0;

void* Taken(void* block)
{
    for (void*& slot : blocks) {
        void* empty = nullptr;
        if (block != nullptr && __atomic_compare_exchange_n(&slot, &empty, block, false,
                                                            __ATOMIC_ACQ_REL, __ATOMIC_RELAXED)) {
            __atomic_add_fetch(&blockCount, 1, __ATOMIC_RELAXED);
            break;
        }
    }
    return block;
}

UNWATCHED void GivenBack(void* block)
{
    for (void*& slot : blocks) {
        void* same = block;
        if (block != nullptr && __atomic_compare_exchange_n(&slot, &same, nullptr, false,
                                                            __ATOMIC_ACQ_REL, __ATOMIC_RELAXED)) {
            __atomic_sub_fetch(&blockCount, 1, __ATOMIC_RELAXED);
            return;
        }
    }
}

}  // namespace

bool IsCleanUp(std::string_view operation)
{
    return operation == "OrmScanEnd" || operation == "OrmCloseSession" || operation == "close";
}

std::vector<std::string> FaultPoints()
{
    const std::lock_guard lock(mutex);
    return points;
}

std::vector<std::string> PlatformCalls()
{
    std::vector<std::string> calls = FaultPoints();
    std::erase_if(calls, [](std::string_view call) {
        return !call.starts_with("Orm") && !call.starts_with("Dbc");
    });
    return calls;
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
    if (codeEnd == 0) {
        dl_iterate_phdr(FindLibraryCode, nullptr);
    }
    __atomic_store_n(&watching, on, __ATOMIC_RELAXED);
}

void FailCall(std::string_view operation, unsigned nth, uint32_t code, CleanUp later)
{
    const std::lock_guard lock(mutex);
    planned = {std::string(operation), nth, code, later};
}

int OpenSessions()
{
    return openSessions;
}
int OpenScans()
{
    return openScans;
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

// clang-format off
#define PASS(name, ...) { return Pass<&name>(#name, __VA_ARGS__); }
#define OPERATION1(result, name, A) extern "C" result name(A a) PASS(name, a)
#define OPERATION2(result, name, A, B) extern "C" result name(A a, B b) PASS(name, a, b)
#define OPERATION3(result, name, A, B, C) extern "C" result name(A a, B b, C c) PASS(name, a, b, c)
#define OPERATION4(result, name, A, B, C, D) extern "C" result name(A a, B b, C c, D d) PASS(name, a, b, c, d)
#define OPERATION5(result, name, A, B, C, D, E) extern "C" result name(A a, B b, C c, D d, E e) PASS(name, a, b, c, d, e)
#define OPERATION6(result, name, A, B, C, D, E, F) extern "C" result name(A a, B b, C c, D d, E e, F f) PASS(name, a, b, c, d, e, f)
#define READER(table) OPERATION4(uint32_t, Ormg##table##ReadInner, const void*, uint32_t, void*, uint32_t)
#define ALL_FIELDS(table) OPERATION3(uint32_t, Ormg##table##GetAllFieldsInner, ORM_SESSION, void*, uint32_t)
#define SET_KEY(table, key) OPERATION3(uint32_t, Ormg##table##SetKey##key##Inner, ORM_SESSION, const void*, uint32_t)

OPERATION2(uint32_t, OrmInit, uint32_t, uint32_t)
OPERATION3(uint32_t, OrmPrepare, ORM_SESSION, const char*, uint32_t)
OPERATION2(uint32_t, OrmSetKeyName, ORM_SESSION, const char*)
OPERATION5(uint32_t, OrmSetIndexKeyValue, ORM_SESSION, uint32_t, uint32_t, const void*, uint32_t)
OPERATION1(uint32_t, OrmExecute, ORM_SESSION)
OPERATION4(uint32_t, OrmGetField, ORM_SESSION, const char*, void*, uint32_t)
OPERATION4(uint32_t, OrmGetFieldById, ORM_SESSION, uint32_t, void*, uint32_t)
OPERATION2(uint32_t, OrmSetScanCond, ORM_SESSION, const char*)
OPERATION3(uint32_t, OrmScanNext, ORM_SESSION, ORM_SCAN, uint8_t*)
OPERATION4(uint32_t, OrmNodeGetChild, ORM_SESSION, ORM_NODE, const char*, ORM_NODE*)
OPERATION2(uint32_t, OrmNodeGetSize, ORM_NODE, uint32_t*)
OPERATION3(uint32_t, OrmNodeGetItemByIdx, ORM_NODE, uint32_t, ORM_NODE*)
OPERATION4(uint32_t, OrmNodeGetFieldById, ORM_NODE, uint32_t, void*, uint32_t)
OPERATION2(uint32_t, OrmSessionParamSetConnName, ORM_SESSION_PARAM, const char*)
OPERATION6(uint32_t, OrmSubscribe, ORM_SESSION, const char*, const char*, ORM_SUB_CALLBACK, void*, const char*)
OPERATION2(uint32_t, OrmSubFetchNext, ORM_MESSAGE, uint8_t*)
OPERATION3(uint32_t, OrmSubExtractData, ORM_MESSAGE, uint32_t, uint32_t)
OPERATION1(uint32_t, DbcHandleEvent, int32_t)
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
SET_KEY(IfBase, LocalKey)
SET_KEY(AmIpv4Address, PrimaryKey)
SET_KEY(AclGroupId, PrimaryKey)
SET_KEY(QosIntegration, PrimaryKey)
OPERATION4(int, memcpy_s, void*, size_t, const void*, size_t)
OPERATION4(int, memset_s, void*, size_t, int, size_t)
OPERATION3(int, strcpy_s, char*, size_t, const char*)
OPERATION4(int, strncpy_s, char*, size_t, const char*, size_t)
OPERATION3(int, strcat_s, char*, size_t, const char*)
// clang-format on

extern "C" {

uint32_t OrmOpenSessionByDefault(ORM_SESSION* session)
{
    return Opened(Pass<&OrmOpenSessionByDefault>("OrmOpenSessionByDefault", session), openSessions);
}

uint32_t OrmCreateSessionParam(const char* channel, const char* kind, ORM_SESSION_PARAM* param)
{
    return Opened(Pass<&OrmCreateSessionParam>("OrmCreateSessionParam", channel, kind, param),
                  openSessions);
}

void OrmDestroySessionParam(ORM_SESSION_PARAM param)
{
    openSessions -= param != 0 ? 1 : 0;
    Next<&OrmDestroySessionParam>("OrmDestroySessionParam")(param);
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
    return Fault("malloc_ex") ? nullptr
                              : Taken(Next<&malloc_ex>("malloc_ex")(handle, file, line, size));
}

void free_ex(uint16_t handle, void* block)
{
    GivenBack(block);
    Next<&free_ex>("free_ex")(handle, block);
}

UNWATCHED void* malloc(size_t size)
{
    if (!IsLibrary(__builtin_return_address(0))) {
        return Next<&malloc>("malloc")(size);
    }
    return Fault("malloc") ? nullptr : Taken(Next<&malloc>("malloc")(size));
}

UNWATCHED void* calloc(size_t count, size_t size)
{
    if (!IsLibrary(__builtin_return_address(0))) {
        return Next<&calloc>("calloc")(count, size);
    }
    return Fault("calloc") ? nullptr : Taken(Next<&calloc>("calloc")(count, size));
}

UNWATCHED void free(void* block)
{
    if (__atomic_load_n(&blockCount, __ATOMIC_RELAXED) != 0) {
        GivenBack(block);
    }
    // Looking for the next one may free something itself, which is let go.
    static thread_local bool looking = false;
    if (!looking) {
        looking = true;
        Next<&free>("free")(block);
        looking = false;
    }
}

[[gnu::no_sanitize_thread]] int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                               void* (*entry)(void*), void*             argument)
{
    if (IsLibrary(__builtin_return_address(0))) {
        if (const auto error = Fault("pthread_create")) {
            *thread = 1;  // as the system may leave it
            return static_cast<int>(*error);
        }
    }
    return Next<&pthread_create>("pthread_create")(thread, attributes, entry, argument);
}

int epoll_create(int size) noexcept
{
    return PassSystem<&epoll_create>("epoll_create", __builtin_return_address(0), size);
}

int epoll_ctl(int epollFd, int operation, int descriptor, epoll_event* event) noexcept
{
    return PassSystem<&epoll_ctl>("epoll_ctl", __builtin_return_address(0), epollFd, operation,
                                  descriptor, event);
}

int epoll_wait(int epollFd, epoll_event* events, int count, int timeout)
{
    return PassSystem<&epoll_wait>("epoll_wait", __builtin_return_address(0), epollFd, events,
                                   count, timeout);
}

int close(int descriptor)
{
    const bool fails  = IsLibrary(__builtin_return_address(0)) && Fault("close");
    const int  result = Next<&close>("close")(descriptor);
    return fails ? -1 : result;
}

}  // extern "C"
