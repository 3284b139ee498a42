// Platform calls in any order on handles of every kind: open, closed, of another type, invented.
// Each returns a code of the contract, writes only within its destination, and writes nothing if it
// fails.
#include <algorithm>
#include <array>
#include <concepts>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

#include "fuzz.h"

using standin::Row;
using standin::Table;
using standin::Tables;
using standin::Transaction;

namespace {

enum Sort : uint32_t { Session, Subscription, Parameter, Message, Scan, List, Item, Sorts };

using Texts = std::vector<std::string>;

// The current run; callbacks continue with its input.
struct ModelRun {
    fuzz::Input* input;
    std::vector<uint64_t> handles[Sorts];
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

// Mostly the newest handle of its sort; or an older one, one of another sort, one with a flipped
// bit, or any number.
uint64_t Handle(Sort sort)
{
    const uint32_t choice = Small(31);
    const auto& handles = run.handles[choice == 1 ? Small(Sorts - 1) : uint32_t{sort}];
    if (handles.empty() || choice == 5) {
        return run.input->ConsumeIntegral<uint64_t>();
    }
    const uint64_t handle = choice == 2 || choice == 3 ? Any(handles) : handles.back();
    return choice == 4 ? handle ^ uint64_t { 1 } << Small(63) : handle;
}

uint32_t Checked(uint32_t code)
{
    constexpr uint32_t firstRefusal = 2001;
    constexpr uint32_t lastRefusal = 2015;
    CHECK(code == ORM_OK || code == ORM_NO_RECORD || code == ORM_NO_LIST ||
          (code >= firstRefusal && code <= lastRefusal));
    return code;
}

// Inputs and outputs of a call that don't follow from its parameter types.
struct Manner {
    std::vector<Sort> takes = {};  // its handles, in order
    Sort gives = Sorts;            // a handle that it returns
    Texts texts = {""};            // one of them
    std::vector<uint32_t> numbers = {0, 0, 1, 2, 3, UINT32_MAX};
    uint32_t size = 4;  // of its destination, or of the key that it reads
    uint32_t keySize = 4;
};

// The arguments of one call, taken in order, and checks after the call.
class Arguments {
public:
    explicit Arguments(const Manner& manner) : manner_(manner) {}

    template <typename T>
    T Next()
    {
        if constexpr (std::same_as<T, uint64_t>) {
            return Handle(manner_.takes[taken_++]);
        } else if constexpr (std::same_as<T, const char*>) {
            return Any(manner_.texts).c_str();
        } else if constexpr (std::same_as<T, const void*>) {
            key_ = AnyBytes(manner_.keySize, 0);
            std::fill_n(key_.begin(), std::min(key_.size(), size_t{1}), Small(3));
            return Sized(key_);
        } else if constexpr (std::same_as<T, void*>) {
            destination_ = AnyBytes(manner_.size, untouched);
            return Sized(destination_);
        } else if constexpr (std::same_as<T, uint64_t*>) {
            return &handle_;
        } else if constexpr (std::same_as<T, uint32_t*>) {
            return &count_;
        } else if constexpr (std::same_as<T, uint8_t*>) {
            return &end_;
        } else {
            return size_ ? *std::exchange(size_, {}) : Any(manner_.numbers);
        }
    }

    void CheckAfter(uint32_t code)
    {
        if (Checked(code) != ORM_OK) {
            CHECK(handle_ == 0 && count_ == none && end_ == untouched);
            CHECK(std::ranges::count(destination_, untouched) == std::ssize(destination_));
        } else {
            CHECK((handle_ != 0) == (manner_.gives != Sorts));
            CHECK(count_ <= 3 || count_ == none);
            CHECK(end_ == 1 || end_ == untouched);
        }
        if (handle_ != 0) {
            run.handles[manner_.gives].push_back(handle_);
        }
    }

private:
    static constexpr uint8_t untouched = 0xAB;
    static constexpr uint32_t none = UINT32_MAX;

    static std::vector<uint8_t> AnyBytes(uint32_t rightSize, uint8_t value)
    {
        return std::vector<uint8_t>(Small(3) < 3 ? rightSize : Small(700), value);
    }
    void* Sized(std::vector<uint8_t>& bytes)
    {
        size_ = static_cast<uint32_t>(bytes.size());
        return bytes.data();
    }

    const Manner& manner_;
    size_t taken_ = 0;
    std::vector<uint8_t> key_;
    std::vector<uint8_t> destination_;
    std::optional<uint32_t> size_;  // of the bytes that were taken last
    uint64_t handle_ = 0;
    uint32_t count_ = none;
    uint8_t end_ = untouched;
};

using Step = std::function<void()>;

template <typename... Parameters>
Step Calling(uint32_t (*call)(Parameters...), const Manner& manner)
{
    return [=] {
        Arguments arguments(manner);
        const std::tuple<Parameters...> inOrder{arguments.Next<Parameters>()...};
        arguments.CheckAfter(std::apply(call, inOrder));
    };
}

Step Filling(uint32_t (*getAllFields)(ORM_SESSION, void*, uint32_t), uint32_t size)
{
    const Step fromRow = Calling(getAllFields, {.takes = {Session}, .size = size});
    const Step fromMessage = Calling(getAllFields, {.takes = {Message}, .size = size});
    return [=] { Small(3) < 3 ? fromRow() : fromMessage(); };
}

void Steps(uint32_t most);

void Callback(ORM_MESSAGE message, uint32_t event)
{
    CHECK(event <= ORM_EVENT_REPLACE);
    if (std::this_thread::get_id() == run.thread) {
        run.handles[Message].push_back(message);
        uint8_t end = 0;
        CHECK(Small(1) != 0 || OrmSubFetchNext(message, &end) == ORM_OK);
        Steps(8);
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

// Sessions without a control function start a thread, which is slow.
uint32_t OpenSubscription(ORM_SESSION_PARAM parameter, ORM_SESSION* session)
{
    return OrmOpenSubSession(parameter, Small(255) == 255 ? nullptr : Control, session);
}

uint32_t Subscribe(ORM_SESSION session, const char* definition)
{
    return OrmSubscribe(session, "name", definition, Callback, nullptr, "owner");
}

uint32_t GetList(ORM_SESSION session, const char* name, ORM_NODE* list)
{
    return OrmNodeGetChild(session, Small(7) < 7 ? 0 : Handle(List), name, list);
}

uint32_t DestroyParameter(ORM_SESSION_PARAM parameter)
{
    OrmDestroySessionParam(parameter);
    return ORM_OK;
}

void Deliver()
{
    const bool known = !run.descriptors.empty() && Small(7) > 0;
    Checked(DbcHandleEvent(known ? Any(run.descriptors) : run.input->ConsumeIntegral<int32_t>()));
}

void Write(const Table& table)
{
    const Row row = fuzz::PlainRow(table, Small(3), Small(3));
    Transaction transaction;
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

// Begins with some steps of a typical caller, so that later calls have open handles.
void StandOnRow()
{
    static const Texts tables = {"am_ipv4_address", "qos_integration", "if_base", "port"};
    const uint32_t index = Small(3) / 2;
    const uint64_t session = run.handles[Session].back();
    OrmPrepare(session, Any(tables).c_str(), QRB_ORM_OP_READ);
    OrmSetKeyName(session, "primary_key");
    OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &index, sizeof(index));
    Checked(OrmExecute(session));
}

Texts TableNames()
{
    Texts names = {"no_table"};
    for (const Table& table : Tables()) {
        names.emplace_back(table.name);
    }
    return names;
}

Texts Definitions()
{
    Texts definitions;
    for (const std::string& table : TableNames()) {
        for (const std::string event : {"update", "delete", "upsert"}) {
            definitions.push_back(R"({"label_name":")" + table +
                                  R"(","events":[{"type":"insert"},{"type":"replace"},{"type":")" +
                                  event + "\"}]}");
        }
    }
    return definitions;
}

std::vector<Step> MakeSteps()
{
    const Texts tables = TableNames();
    const Texts keys = {"primary_key", "local_key", "no_key"};
    const Texts fields = {"if_index", "index", "vlan_id", "no_field"};
    const Texts lists = {"ipv4_address_list", "car_list", "remark_dscp_list", "x"};
    const Texts matches = {"if_index = 1", "vlan_id = 2 and vlan_scope0 = 0", "index = 1", "",
                           "id"};
    const auto open = Calling(OrmOpenSessionByDefault, {.gives = Session});
    const auto prepare = Calling(
        OrmPrepare, {.takes = {Session}, .texts = tables, .numbers = {QRB_ORM_OP_READ, 7, 0}});
    const auto start = Calling(OrmScanStart, {.takes = {Session}, .gives = Scan});
    const auto next = Calling(OrmScanNext, {.takes = {Session, Scan}});
    const auto list = Calling(GetList, {.takes = {Session}, .gives = List, .texts = lists});
    const auto item = Calling(OrmNodeGetItemByIdx, {.takes = {List}, .gives = Item});
    const auto parameter = Calling(OrmCreateSessionParam, {.gives = Parameter, .texts = {"osc"}});
    const auto subscription =
        Calling(OpenSubscription, {.takes = {Parameter}, .gives = Subscription});
    const auto subscribe = Calling(Subscribe, {.takes = {Subscription}, .texts = Definitions()});
    return {
        open,
        prepare,
        start,
        next,
        list,
        item,
        parameter,
        subscription,
        subscribe,
        Deliver,
        [] { Write(Any(Tables())); },
        SetGroupKey,
        ReadGroup,
        Calling(OrmCloseSession, {.takes = {Session}}),
        Calling(OrmCloseSession, {.takes = {Subscription}}),
        Calling(DestroyParameter, {.takes = {Parameter}}),
        Calling(OrmSetKeyName, {.takes = {Session}, .texts = keys}),
        Calling(OrmSetIndexKeyValue, {.takes = {Session}, .numbers = {0, QRB_KEY_TYPE_U32}}),
        Calling(OrmgIfBaseSetKeyLocalKeyInner, {.takes = {Session}, .keySize = 68}),
        Calling(OrmgAmIpv4AddressSetKeyPrimaryKeyInner, {.takes = {Session}}),
        Calling(OrmgQosIntegrationSetKeyPrimaryKeyInner, {.takes = {Session}}),
        Calling(OrmExecute, {.takes = {Session}}),
        Calling(OrmSetScanCond, {.takes = {Session}, .texts = matches}),
        Calling(OrmScanEnd, {.takes = {Session, Scan}}),
        Calling(OrmGetField, {.takes = {Session}, .texts = fields}),
        Calling(OrmGetFieldById, {.takes = {Session}}),
        Calling(OrmGetFieldById, {.takes = {Message}, .size = 1}),
        Calling(OrmNodeGetSize, {.takes = {List}}),
        Calling(OrmNodeGetFieldById, {.takes = {Item}}),
        Calling(OrmSubFetchNext, {.takes = {Message}}),
        Calling(OrmSubExtractData, {.takes = {Message}, .numbers = {0, 0, 0, 1, 2}}),
        Filling(OrmgIfBaseGetAllFieldsInner, 387),
        Filling(OrmgIfPhyGetAllFieldsInner, 79),
        Filling(OrmgIfRouteGetAllFieldsInner, 22),
        Filling(OrmgPortGetAllFieldsInner, 1644),
        Filling(OrmgVlanGetAllFieldsInner, 238),
        Calling(OrmgIfBaseReadInner, {.size = 387}),
        Calling(OrmgIfPhyReadInner, {.size = 79}),
        Calling(OrmgIfLinkReadInner, {.size = 10}),
        Calling(OrmgIfRouteReadInner, {.size = 22}),
        Calling(OrmgPortReadInner, {.size = 1644}),
        Calling(OrmgVlanReadInner, {.size = 238, .keySize = 10}),
        [=] { open(), StandOnRow(), list(), item(); },
        [=] { open(), prepare(), start(), next(); },
        [=] {
            parameter(), subscription(), subscribe();
            std::ranges::for_each(Tables(), Write);
            Deliver();
        },
    };
}

void Steps(uint32_t most)
{
    static const std::vector<Step> steps = MakeSteps();
    for (uint32_t left = most; left > 0 && run.input->remaining_bytes() > 0; left--) {
        Any(steps)();
    }
}

// Closes everything and checks that no handle is valid afterwards.
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
    Steps(UINT32_MAX);
    CloseEverything();
    return 0;
}
