// Platform calls in any order on handles of every sort: open, closed, of another kind, made up.
// Each answers a code of the contract or a refusal, writes within its destination, and writes
// nothing when it fails.
#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <standin/database.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

#include "fuzz.h"

using standin::Row;
using standin::Table;
using standin::Tables;
using standin::Transaction;

namespace {

enum Sort : uint32_t { Session, Subscription, Parameter, Message, Scan, List, Item, Sorts };

// The run under way: callbacks go on with its input.
struct Run {
    fuzz::Input*          input;
    std::vector<uint64_t> handles[Sorts];
    std::vector<int>      descriptors;
    std::thread::id       thread;
};
Run run;

template <size_t Size>
const char* Pick(const char* const (&texts)[Size])
{
    return texts[run.input->ConsumeIntegralInRange<size_t>(0, Size - 1)];
}

uint32_t Small(uint32_t most)
{
    return run.input->ConsumeIntegralInRange<uint32_t>(0, most);
}

const Table& AnyTable()
{
    return Tables()[Small(static_cast<uint32_t>(Tables().size() - 1))];
}

const char* TableName()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all = {"no_table"};
        for (const Table& table : Tables()) {
            all.emplace_back(table.name);
        }
        return all;
    }();
    return names[Small(static_cast<uint32_t>(names.size() - 1))].c_str();
}

// Mostly the youngest of its sort; or an older one, another sort's, one with a bit turned, or any
// number.
uint64_t Handle(Sort sort)
{
    const uint32_t choice  = Small(31);
    const auto&    handles = run.handles[choice == 1 ? Small(Sorts - 1) : uint32_t{sort}];
    if (handles.empty() || choice == 0) {
        return run.input->ConsumeIntegral<uint64_t>();
    }
    const uint64_t handle =
        choice < 4 ? handles[Small(static_cast<uint32_t>(handles.size() - 1))] : handles.back();
    return choice == 4 ? handle ^ uint64_t { 1 } << Small(63) : handle;
}

// What a reading call takes: a session, or a message.
uint64_t Reader()
{
    return Handle(Small(3) > 0 ? Session : Message);
}

uint32_t Checked(uint32_t code)
{
    constexpr uint32_t firstRefusal = 2001;
    constexpr uint32_t lastRefusal  = 2015;
    CHECK(code == ORM_OK || code == ORM_NO_RECORD || code == ORM_NO_LIST ||
          (code >= firstRefusal && code <= lastRefusal));
    return code;
}

// Makes a call that hands out a handle.
template <typename Call>
void Opening(Sort sort, Call call)
{
    uint64_t handle = 0;
    if (Checked(call(&handle)) == ORM_OK) {
        CHECK(handle != 0);
        run.handles[sort].push_back(handle);
    } else {
        CHECK(handle == 0);
    }
}

// Makes a call that fills a destination of some size, mostly the right one.
template <typename Call>
void Filling(uint32_t rightSize, Call call)
{
    const uint32_t             size = Small(3) > 0 ? rightSize : Small(700);
    const std::vector<uint8_t> before(size, 0xAB);
    std::vector<uint8_t>       destination = before;
    if (Checked(call(destination.data(), size)) != ORM_OK) {
        CHECK(destination == before);
    }
}

void Write()
{
    const Row   row = fuzz::PlainRow(AnyTable(), Small(3), Small(3));
    Transaction transaction;
    Small(1) != 0 ? transaction.Replace(row) : transaction.Delete(row);
    try {
        transaction.Commit();
    } catch (const standin::Error&) {
    }
}

void Steps(uint32_t most);

void Callback(ORM_MESSAGE message, uint32_t event)
{
    CHECK(event <= ORM_EVENT_REPLACE);
    if (std::this_thread::get_id() == run.thread) {
        run.handles[Message].push_back(message);
        Steps(8);
    }
}

int32_t Control(uint32_t descriptor, uint32_t operation)
{
    if (operation != 0) {
        std::erase(run.descriptors, static_cast<int>(descriptor));
        return 0;
    }
    if (Small(7) == 0) {
        return -1;
    }
    run.descriptors.push_back(static_cast<int>(descriptor));
    return 0;
}

struct Accessors {
    uint32_t (*read)(const void*, uint32_t, void*, uint32_t);
    uint32_t (*getAllFields)(ORM_SESSION, void*, uint32_t);
    uint32_t keySize;
    uint32_t recordSize;
};
constexpr Accessors accessors[] = {
    {OrmgIfBaseReadInner, OrmgIfBaseGetAllFieldsInner, 4, 387},
    {OrmgIfPhyReadInner, OrmgIfPhyGetAllFieldsInner, 4, 79},
    {OrmgIfLinkReadInner, OrmgIfPhyGetAllFieldsInner, 4, 10},
    {OrmgIfRouteReadInner, OrmgIfRouteGetAllFieldsInner, 4, 22},
    {OrmgPortReadInner, OrmgPortGetAllFieldsInner, 4, 1644},
    {OrmgVlanReadInner, OrmgVlanGetAllFieldsInner, 10, 238},
};

// One byte small, the rest zero; mostly of the right size.
std::vector<uint8_t> AnyKey(uint32_t rightSize)
{
    std::vector<uint8_t> key(Small(3) > 0 ? rightSize : Small(80));
    if (!key.empty()) {
        key[0] = static_cast<uint8_t>(Small(3));
    }
    return key;
}

void SetWholeKey()
{
    using SetKey                = uint32_t (*)(ORM_SESSION, const void*, uint32_t);
    constexpr SetKey   sets[]   = {OrmgIfBaseSetKeyLocalKeyInner,
                                   OrmgAmIpv4AddressSetKeyPrimaryKeyInner,
                                   OrmgQosIntegrationSetKeyPrimaryKeyInner};
    constexpr uint32_t widths[] = {68, 4, 4};
    const uint32_t     which    = Small(2);
    const auto         key      = AnyKey(widths[which]);
    Checked(sets[which](Handle(Session), key.data(), static_cast<uint32_t>(key.size())));
}

void SetGroupKey()
{
    const std::string      name(Small(70), 'a');
    const char* const      text = Small(7) > 0 ? name.c_str() : nullptr;
    std::array<uint8_t, 9> key  = {};
    std::memcpy(key.data(), &text, sizeof(text));
    Checked(
        OrmgAclGroupIdSetKeyPrimaryKeyInner(Handle(Session), key.data(), key.size() - Small(1)));
}

void ReadGroup()
{
    std::vector<char>       name(1 + Small(70), 'x');
    const auto              capacity = static_cast<uint32_t>(name.size());
    char* const             text     = name.data();
    std::array<uint8_t, 29> record   = {};
    std::memcpy(record.data(), &capacity, sizeof(capacity));
    std::memcpy(record.data() + 4, &text, sizeof(text));
    if (Checked(OrmgAclGroupIdGetAllFieldsInner(Reader(), record.data(), 29)) != ORM_OK) {
        CHECK(std::ranges::count(name, 'x') == std::ssize(name));
    }
}

// Makes a call that tells the end, or leaves it as it was.
template <typename Call>
void Moving(Call call)
{
    uint8_t        end  = 0x55;
    const uint32_t code = Checked(call(&end));
    CHECK(end == 0x55 || (end == 1 && code == ORM_OK));
}

void FindList()
{
    Opening(List, [](uint64_t* node) {
        const uint64_t parent = Small(7) > 0 ? 0 : Handle(List);
        return OrmNodeGetChild(Reader(), parent,
                               Pick({"ipv4_address_list", "car_list", "remark_dscp_list", "x"}),
                               node);
    });
}

void FindItem()
{
    Opening(Item, [](uint64_t* item) {
        const uint32_t index = Small(7) > 0 ? Small(3) : run.input->ConsumeIntegral<uint32_t>();
        return OrmNodeGetItemByIdx(Handle(List), index, item);
    });
}

void OpenParameter()
{
    Opening(Parameter,
            [](uint64_t* handle) { return OrmCreateSessionParam("channel:", "osc", handle); });
}

// Sessions without a control function start a thread, which takes its time.
void OpenSubscription()
{
    const ORM_FD_CONTROL control = Small(255) == 255 ? nullptr : Control;
    Opening(Subscription, [=](uint64_t* handle) {
        return OrmOpenSubSession(Handle(Parameter), control, handle);
    });
}

void Subscribe()
{
    const std::string definition = std::string(R"({"label_name":")") + TableName() +
                                   R"(","events":[{"type":"insert"},{"type":"replace"},{"type":")" +
                                   Pick({"update", "delete", "upsert"}) + "\"}]}";
    Checked(
        OrmSubscribe(Handle(Subscription), "name", definition.c_str(), Callback, nullptr, "owner"));
}

void Deliver()
{
    const bool known = !run.descriptors.empty() && Small(7) > 0;
    Checked(DbcHandleEvent(
        known ? run.descriptors[Small(static_cast<uint32_t>(run.descriptors.size() - 1))]
              : run.input->ConsumeIntegral<int32_t>()));
}

uint64_t Opened()
{
    uint64_t session = 0;
    CHECK(OrmOpenSessionByDefault(&session) == ORM_OK);
    run.handles[Session].push_back(session);
    return session;
}

constexpr void (*steps[])() = {
    [] { Opened(); },
    OpenParameter,
    OpenSubscription,
    [] { Checked(OrmCloseSession(Handle(Small(3) > 0 ? Session : Subscription))); },
    [] { OrmDestroySessionParam(Handle(Parameter)); },
    [] {
        constexpr uint32_t operations[] = {QRB_ORM_OP_READ, QRB_ORM_OP_SCAN, 0};
        Checked(OrmPrepare(Handle(Session), TableName(), operations[Small(2)]));
    },
    [] {
        Checked(OrmSetKeyName(Handle(Session), Pick({"primary_key", "local_key", "no_key"})));
    },
    [] {
        const auto     value = AnyKey(4);
        const uint32_t type  = Small(7) == 0 ? Small(9) : QRB_KEY_TYPE_U32;
        Checked(OrmSetIndexKeyValue(Handle(Session), Small(3), type, value.data(),
                                    static_cast<uint32_t>(value.size())));
    },
    SetWholeKey,
    SetGroupKey,
    [] { Checked(OrmExecute(Handle(Session))); },
    [] {
        Checked(OrmSetScanCond(
            Handle(Session),
            Pick({"if_index = 1", "vlan_id = 2 and vlan_scope0 = 0", "index = 1", "", "id"})));
    },
    [] { Opening(Scan, [](uint64_t* handle) { return OrmScanStart(Handle(Session), handle); }); },
    [] { Moving([](uint8_t* end) { return OrmScanNext(Handle(Session), Handle(Scan), end); }); },
    [] { Checked(OrmScanEnd(Handle(Session), Handle(Scan))); },
    [] {
        Filling(Small(1) != 0 ? 4 : 1, [](void* to, uint32_t size) {
            return OrmGetField(Reader(), Pick({"if_index", "index", "vlan_id", "no_field"}), to,
                               size);
        });
    },
    [] {
        Filling(Small(1) != 0 ? 4 : 64, [](void* to, uint32_t size) {
            return OrmGetFieldById(Reader(), Small(12), to, size);
        });
    },
    [] {
        const Accessors& any = accessors[Small(std::size(accessors) - 1)];
        Filling(any.recordSize,
                [&](void* to, uint32_t size) { return any.getAllFields(Reader(), to, size); });
    },
    ReadGroup,
    [] {
        const Accessors& any = accessors[Small(std::size(accessors) - 1)];
        const auto       key = AnyKey(any.keySize);
        Filling(any.recordSize, [&](void* to, uint32_t size) {
            return any.read(key.data(), static_cast<uint32_t>(key.size()), to, size);
        });
    },
    FindList,
    [] {
        uint32_t count = 77;
        CHECK(Checked(OrmNodeGetSize(Handle(List), &count)) == ORM_OK ? count <= 3 : count == 77);
    },
    FindItem,
    [] {
        Filling(Small(1) != 0 ? 4 : 1, [](void* to, uint32_t size) {
            return OrmNodeGetFieldById(Handle(Item), Small(5), to, size);
        });
    },
    Subscribe,
    Deliver,
    [] { Moving([](uint8_t* end) { return OrmSubFetchNext(Handle(Message), end); }); },
    [] { Checked(OrmSubExtractData(Handle(Message), Small(2), Small(15) / 15)); },
    Write,
    // Some way into what a caller would do, so that the steps after it find something.
    [] {
        const uint64_t session = Opened();
        const uint32_t index   = Small(3) / 2;
        OrmPrepare(session, Pick({"am_ipv4_address", "qos_integration"}), QRB_ORM_OP_READ);
        OrmSetKeyName(session, "primary_key");
        OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &index, sizeof(index));
        if (Checked(OrmExecute(session)) == ORM_OK) {
            FindList();
            FindItem();
        }
    },
    [] {
        const uint64_t session = Opened();
        uint64_t       scan    = 0;
        uint8_t        end     = 0;
        OrmPrepare(session, TableName(), QRB_ORM_OP_SCAN);
        if (Checked(OrmScanStart(session, &scan)) == ORM_OK) {
            run.handles[Scan].push_back(scan);
            CHECK(OrmScanNext(session, scan, &end) == ORM_OK);
        }
    },
    [] {
        OpenParameter();
        OpenSubscription();
        Subscribe();
        Write();
        Deliver();
    },
};

void Steps(uint32_t most)
{
    for (uint32_t left = most; left > 0 && run.input->remaining_bytes() > 0; left--) {
        steps[Small(std::size(steps) - 1)]();
    }
}

// Afterwards no handle is good for anything.
void CloseEverything()
{
    std::vector<uint64_t> all;
    for (const auto& handles : run.handles) {
        all.insert(all.end(), handles.begin(), handles.end());
    }
    for (const uint64_t handle : all) {
        Checked(OrmCloseSession(handle));
        OrmDestroySessionParam(handle);
    }
    for (const uint64_t handle : all) {
        uint64_t other = 0;
        uint32_t count = 0;
        uint8_t  end   = 0;
        CHECK(OrmCloseSession(handle) != ORM_OK && OrmExecute(handle) != ORM_OK);
        CHECK(OrmOpenSubSession(handle, Control, &other) != ORM_OK);
        CHECK(OrmNodeGetSize(handle, &count) != ORM_OK);
        CHECK(OrmSubFetchNext(handle, &end) != ORM_OK);
    }
    CHECK(run.descriptors.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    run = {&input, {}, {}, std::this_thread::get_id()};
    fuzz::StartOver();
    Steps(UINT32_MAX);
    CloseEverything();
    return 0;
}
