// Platform calls in any order on handles of every kind: open, closed, of another kind, invalid.
// Each returns a code of the contract, writes within its destination, and writes nothing when it
// fails.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

#include "fuzz.h"

namespace {

enum FuzzedHandle : uint32_t { Session, Subscription, Parameter, Message, Scan, List, Item, Kinds };

constexpr uint32_t NO_COUNT = UINT32_MAX;
constexpr uint8_t UNTOUCHED = 0xAB;

// The current run; callbacks continue with its input.
struct ModelRun {
    fuzz::Input* input;
    std::vector<uint64_t> handles[Kinds];
    std::vector<int> descriptors;
    std::thread::id thread;
};
ModelRun run;

uint32_t Small(uint32_t most)
{
    return run.input->ConsumeIntegralInRange<uint32_t>(0, most);
}

template <typename Things>
const auto& Any(const Things& things)
{
    return things[Small(static_cast<uint32_t>(std::size(things) - 1))];
}
template <typename Thing>
Thing Any(std::initializer_list<Thing> things)
{
    return std::data(things)[Small(static_cast<uint32_t>(things.size() - 1))];
}
uint32_t AnyNumber()
{
    return Any({0U, 0U, 1U, 2U, 3U, UINT32_MAX});
}

// Mostly the newest of its kind; or an older one, another kind's, one with a bit flipped, or any
// number.
uint64_t Handle(FuzzedHandle kind)
{
    const uint32_t choice = Small(31);
    const auto& handles = run.handles[choice == 1 ? Small(Kinds - 1) : uint32_t{kind}];
    if (handles.empty() || choice == 5) {
        return run.input->ConsumeIntegral<uint64_t>();
    }
    const uint64_t handle = choice == 2 || choice == 3 ? Any(handles) : handles.back();
    return choice == 4 ? handle ^ uint64_t { 1 } << Small(63) : handle;
}

std::vector<uint8_t> AnyBytes(uint32_t rightSize, uint8_t value)
{
    return std::vector<uint8_t>(Small(3) < 3 ? rightSize : Small(700), value);
}
std::vector<uint8_t> AnyKey(uint32_t rightSize)
{
    std::vector<uint8_t> key = AnyBytes(rightSize, 0);
    std::fill_n(key.begin(), std::min(key.size(), size_t{1}), Small(3));
    return key;
}
uint32_t SizeOf(const std::vector<uint8_t>& bytes)
{
    return static_cast<uint32_t>(bytes.size());
}

uint32_t Checked(uint32_t code)
{
    constexpr uint32_t firstRefusal = 2001;
    constexpr uint32_t lastRefusal = 2015;
    CHECK(code == ORM_OK || code == ORM_NO_RECORD || code == ORM_NO_LIST ||
          (code >= firstRefusal && code <= lastRefusal));
    return code;
}

// Outputs of one call.
struct Outputs {
    std::vector<uint8_t> bytes;
    uint64_t handle = 0;
    uint32_t count = NO_COUNT;
    uint8_t end = UNTOUCHED;

    explicit Outputs(uint32_t size = 4) : bytes(AnyBytes(size, UNTOUCHED)) {}

    void Check(uint32_t code, FuzzedHandle opens = Kinds) const
    {
        if (Checked(code) != ORM_OK) {
            CHECK(handle == 0 && count == NO_COUNT && end == UNTOUCHED);
            CHECK(std::ranges::count(bytes, UNTOUCHED) == std::ssize(bytes));
            return;
        }
        CHECK((handle != 0) == (opens != Kinds));
        CHECK(count <= 3 || count == NO_COUNT);
        CHECK(end == 1 || end == UNTOUCHED);
        if (handle != 0) {
            run.handles[opens].push_back(handle);
        }
    }
};

const char* AnyTable()
{
    const auto& tables = standin::Tables();
    const uint32_t choice = Small(static_cast<uint32_t>(tables.size()));
    return choice < tables.size() ? tables[choice].name.data() : "no_table";
}

void Calls(uint32_t most);

void Callback(ORM_MESSAGE message, uint32_t event)
{
    CHECK(event <= ORM_EVENT_REPLACE);
    if (std::this_thread::get_id() == run.thread) {
        run.handles[Message].push_back(message);
        uint8_t end = 0;
        CHECK(Small(1) != 0 || OrmSubFetchNext(message, &end) == ORM_OK);
        Calls(8);
    }
}

int32_t Control(uint32_t descriptor, uint32_t operation)
{
    if (operation != 0) {
        std::erase(run.descriptors, static_cast<int>(descriptor));
        return 0;
    }
    if (Small(7) == 7) {
        return -1;
    }
    run.descriptors.push_back(static_cast<int>(descriptor));
    return 0;
}

void Write(const standin::Table& table)
{
    const standin::Row row = fuzz::PlainRow(table, Small(3), Small(3));
    standin::Transaction transaction;
    Small(1) != 0 ? transaction.Replace(row) : transaction.Delete(row);
    try {
        transaction.Commit();
    } catch (const standin::Error&) {
    }
}

void SetGroupKey()
{
    const std::string name(Small(70), 'a');
    const char* const text = Small(7) > 0 ? name.c_str() : nullptr;
    std::array<uint8_t, 9> key = {};
    std::memcpy(key.data(), &text, sizeof(text));
    Checked(
        OrmgAclGroupIdSetKeyPrimaryKeyInner(Handle(Session), key.data(), key.size() - Small(1)));
}

void ReadGroup()
{
    std::vector<char> name(1 + Small(70), 'x');
    const auto capacity = static_cast<uint32_t>(name.size());
    char* const text = name.data();
    std::array<uint8_t, 29> record = {};
    std::memcpy(record.data(), &capacity, sizeof(capacity));
    std::memcpy(record.data() + 4, &text, sizeof(text));
    if (Checked(OrmgAclGroupIdGetAllFieldsInner(Handle(Session), record.data(), 29)) != ORM_OK) {
        CHECK(std::ranges::count(name, 'x') == std::ssize(name));
    }
}

// A function, and the sizes of its key and record.
template <typename Function>
struct Accessor {
    Function* function;
    uint32_t keySize, recordSize;
};

void ReadRecord()
{
    static constexpr Accessor<decltype(OrmgIfBaseReadInner)> reads[] = {
        {OrmgIfBaseReadInner, 4, 387}, {OrmgIfPhyReadInner, 4, 79},  {OrmgIfLinkReadInner, 4, 10},
        {OrmgIfRouteReadInner, 4, 22}, {OrmgPortReadInner, 4, 1644}, {OrmgVlanReadInner, 10, 238}};
    const auto& read = Any(reads);
    const std::vector<uint8_t> key = AnyKey(read.keySize);
    Outputs out(read.recordSize);
    out.Check(read.function(key.data(), SizeOf(key), out.bytes.data(), SizeOf(out.bytes)));
}

void GetAllFields()
{
    static constexpr Accessor<decltype(OrmgIfBaseGetAllFieldsInner)> gets[] = {
        {OrmgIfBaseGetAllFieldsInner, 0, 387},
        {OrmgIfPhyGetAllFieldsInner, 0, 79},
        {OrmgIfRouteGetAllFieldsInner, 0, 22},
        {OrmgPortGetAllFieldsInner, 0, 1644},
        {OrmgVlanGetAllFieldsInner, 0, 238}};
    const auto& get = Any(gets);
    Outputs out(get.recordSize);
    const uint64_t source = Handle(Small(3) < 3 ? Session : Message);
    out.Check(get.function(source, out.bytes.data(), SizeOf(out.bytes)));
}

void SetKey()
{
    static constexpr Accessor<decltype(OrmgIfBaseSetKeyLocalKeyInner)> sets[] = {
        {OrmgIfBaseSetKeyLocalKeyInner, 68, 0},
        {OrmgAmIpv4AddressSetKeyPrimaryKeyInner, 4, 0},
        {OrmgQosIntegrationSetKeyPrimaryKeyInner, 4, 0}};
    const auto& set = Any(sets);
    const std::vector<uint8_t> key = AnyKey(set.keySize);
    Checked(set.function(Handle(Session), key.data(), SizeOf(key)));
}

// Selects a row, so that the calls that follow find something.
void SelectRow()
{
    const char* const table = Any({"am_ipv4_address", "qos_integration", "if_base", "port"});
    const uint32_t index = Small(3) / 2;
    const uint64_t session = run.handles[Session].back();
    OrmPrepare(session, table, QRB_ORM_OP_READ);
    OrmSetKeyName(session, "primary_key");
    OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &index, sizeof(index));
    Checked(OrmExecute(session));
}

void Subscribe()
{
    const std::string definition = R"({"label_name":")" + std::string(AnyTable()) +
                                   R"(","events":[{"type":"insert"},{"type":"replace"},{"type":")" +
                                   Any({"update", "delete", "upsert"}) + "\"}]}";
    Checked(
        OrmSubscribe(Handle(Subscription), "name", definition.c_str(), Callback, nullptr, "owner"));
}

void Deliver()
{
    const bool known = !run.descriptors.empty() && Small(7) > 0;
    Checked(DbcHandleEvent(known ? Any(run.descriptors) : run.input->ConsumeIntegral<int32_t>()));
}

void OpenSession()
{
    Outputs out;
    out.Check(OrmOpenSessionByDefault(&out.handle), Session);
}
void FindList()
{
    Outputs out;
    const char* const list = Any({"ipv4_address_list", "car_list", "remark_dscp_list", "x"});
    const uint64_t parent = Small(7) < 7 ? 0 : Handle(List);
    out.Check(OrmNodeGetChild(Handle(Session), parent, list, &out.handle), List);
}
void FindItem()
{
    Outputs out;
    out.Check(OrmNodeGetItemByIdx(Handle(List), AnyNumber(), &out.handle), Item);
}
void CreateParameter()
{
    Outputs out;
    out.Check(OrmCreateSessionParam("", "osc", &out.handle), Parameter);
}
void OpenSubscription()
{
    // Sessions without a control function start a thread, which is slow.
    Outputs out;
    const ORM_FD_CONTROL control = Small(255) == 255 ? nullptr : Control;
    out.Check(OrmOpenSubSession(Handle(Parameter), control, &out.handle), Subscription);
}

constexpr void (*CALLS[])(Outputs&) = {
    [](Outputs&) { OpenSession(); },
    [](Outputs&) { FindList(); },
    [](Outputs&) { FindItem(); },
    [](Outputs&) { CreateParameter(); },
    [](Outputs&) { OpenSubscription(); },
    [](Outputs&) { Subscribe(); },
    [](Outputs&) { Deliver(); },
    [](Outputs&) { Write(Any(standin::Tables())); },
    [](Outputs&) { SetGroupKey(); },
    [](Outputs&) { ReadGroup(); },
    [](Outputs&) { ReadRecord(); },
    [](Outputs&) { GetAllFields(); },
    [](Outputs&) { SetKey(); },
    [](Outputs& out) { out.Check(OrmCloseSession(Handle(Session))); },
    [](Outputs& out) { out.Check(OrmCloseSession(Handle(Subscription))); },
    [](Outputs&) { OrmDestroySessionParam(Handle(Parameter)); },
    [](Outputs& out) {
        out.Check(
            OrmPrepare(Handle(Session), AnyTable(), Any({QRB_ORM_OP_READ, QRB_ORM_OP_SCAN, 0U})));
    },
    [](Outputs& out) {
        out.Check(OrmSetKeyName(Handle(Session), Any({"primary_key", "local_key", "no_key"})));
    },
    [](Outputs& out) {
        const std::vector<uint8_t> key = AnyKey(4);
        const uint32_t type = Any({0U, QRB_KEY_TYPE_U32});
        out.Check(OrmSetIndexKeyValue(Handle(Session), AnyNumber(), type, key.data(), SizeOf(key)));
    },
    [](Outputs& out) { out.Check(OrmExecute(Handle(Session))); },
    [](Outputs& out) {
        const char* const condition =
            Any({"if_index = 1", "vlan_id = 2 and vlan_scope0 = 0", "index = 1", "", "id"});
        out.Check(OrmSetScanCond(Handle(Session), condition));
    },
    [](Outputs& out) { out.Check(OrmScanStart(Handle(Session), &out.handle), Scan); },
    [](Outputs& out) { out.Check(OrmScanNext(Handle(Session), Handle(Scan), &out.end)); },
    [](Outputs& out) { out.Check(OrmScanEnd(Handle(Session), Handle(Scan))); },
    [](Outputs& out) {
        const char* const field = Any({"if_index", "index", "vlan_id", "no_field"});
        out.Check(OrmGetField(Handle(Session), field, out.bytes.data(), SizeOf(out.bytes)));
    },
    [](Outputs& out) {
        const uint64_t source = Handle(Any({Session, Message}));
        out.Check(OrmGetFieldById(source, AnyNumber(), out.bytes.data(), SizeOf(out.bytes)));
    },
    [](Outputs& out) { out.Check(OrmNodeGetSize(Handle(List), &out.count)); },
    [](Outputs& out) {
        out.Check(
            OrmNodeGetFieldById(Handle(Item), AnyNumber(), out.bytes.data(), SizeOf(out.bytes)));
    },
    [](Outputs& out) { out.Check(OrmSubFetchNext(Handle(Message), &out.end)); },
    [](Outputs& out) { out.Check(OrmSubExtractData(Handle(Message), Small(2), 0)); },
    [](Outputs&) { OpenSession(), SelectRow(), FindList(), FindItem(); },
    [](Outputs&) {
        CreateParameter(), OpenSubscription(), Subscribe();
        std::ranges::for_each(standin::Tables(), Write);
        Deliver();
    },
};

void Calls(uint32_t most)
{
    for (uint32_t left = most; left > 0 && run.input->remaining_bytes() > 0; left--) {
        Outputs out;
        Any(CALLS)(out);
    }
}

// Closes every handle and checks that no call accepts it afterwards.
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
        uint8_t end = 0;
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
    Calls(UINT32_MAX);
    CloseEverything();
    return 0;
}
