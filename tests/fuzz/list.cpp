// List operations in any order, with memory that runs out now and then, against vectors.
#include <dlfcn.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include <tarnd_platform/memory.h>
#include <tarnd_qrb/util_list.h>

#include "fuzz.h"

namespace {

uint32_t blocks          = 0;  // in use
uint32_t allocationsLeft = 0;  // before one fails; 0: none does

}  // namespace

// Ahead of the platform's.
extern "C" void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size)
{
    static const auto next = reinterpret_cast<decltype(&malloc_ex)>(dlsym(RTLD_NEXT, "malloc_ex"));
    if (allocationsLeft > 0 && --allocationsLeft == 0) {
        return nullptr;
    }
    blocks++;
    return next(handle, file, line, size);
}

extern "C" void free_ex(uint16_t handle, void* memory)
{
    static const auto next = reinterpret_cast<decltype(&free_ex)>(dlsym(RTLD_NEXT, "free_ex"));
    blocks -= memory != nullptr ? 1 : 0;
    next(handle, memory);
}

namespace {

using List  = UTIL_LIST_S;
using Node  = UTIL_LIST_NODE_S*;
using Model = std::vector<uint32_t>;

// Elements that own memory, so that one destroyed twice, or not at all, is seen.
using Owner = uint32_t*;

uint32_t ValueIn(const void* element)
{
    return **static_cast<const Owner*>(element);
}

void Destroy(void* element)
{
    delete *static_cast<Owner*>(element);
}

// The statuses are nobody's business.
uint32_t Copy(void* element, const void* value)
{
    *static_cast<Owner*>(element) = new uint32_t(ValueIn(value));
    return 1;
}

uint32_t Move(void* element, void* value)
{
    *static_cast<Owner*>(element) = std::exchange(*static_cast<Owner*>(value), nullptr);
    return 1;
}

constexpr UTIL_LIST_TRAITS_S owners = {sizeof(Owner), nullptr, Destroy, Copy,
                                       Move,          nullptr, nullptr};

bool StaysAhead(const void* existing, const void* added, uint64_t context)
{
    return ValueIn(existing) + context > ValueIn(added);
}

bool IsAtLeast(const void* element, uint64_t context)
{
    return ValueIn(element) >= context;
}

// The ways into a list: an element, or a node made beforehand, which is linked by a second call.
enum class Place { Front, Back, Before, Sorted };

struct Way {
    Place place;
    bool  moves;
    uint32_t (*insert)(List* list, Node at, Owner* value, uint64_t order);
};

template <typename Link>
uint32_t Then(Node built, Link link)
{
    if (built == nullptr) {
        return 1;
    }
    CHECK(built->next == nullptr && built->prev == nullptr);
    link(built);
    return 0;
}

// clang-format off
#define BY(...) [](List* l, [[maybe_unused]] Node at, Owner* v, [[maybe_unused]] uint64_t order) { return __VA_ARGS__; }
#define LINK(...) [&](Node n) { __VA_ARGS__; }
constexpr Way ways[] = {
    {Place::Front, false, BY(UTIL_LIST_PushFront(l, v))},
    {Place::Front, true, BY(UTIL_LIST_PushFrontMove(l, v))},
    {Place::Front, false, BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_PushFrontImpl(l, n))))},
    {Place::Back, false, BY(UTIL_LIST_PushBack(l, v))},
    {Place::Back, true, BY(UTIL_LIST_PushBackMove(l, v))},
    {Place::Back, true, BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits), LINK(UTIL_LIST_PushBackImpl(l, n))))},
    {Place::Before, false, BY(UTIL_LIST_InsertBefore(l, at, v))},
    {Place::Before, true, BY(UTIL_LIST_InsertBeforeMove(l, at, v))},
    {Place::Before, false, BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_InsertBeforeImpl(l, at, n))))},
    {Place::Sorted, false, BY(UTIL_LIST_SortedInsert(l, v, StaysAhead, order))},
    {Place::Sorted, true, BY(UTIL_LIST_SortedInsertMove(l, v, StaysAhead, order))},
    {Place::Sorted, true, BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits), LINK(UTIL_LIST_SortedInsertImpl(l, n, StaysAhead, order))))},
};
// clang-format on

// A list and what must be in it.
struct Pair {
    List  list;
    Model model;
};

void CheckPair(const Pair& pair)
{
    Model values;
    Node  previous = nullptr;
    for (Node node = pair.list.head; node != nullptr; previous = node, node = node->next) {
        CHECK(node->prev == previous);
        values.push_back(ValueIn(UTIL_LIST_Data(node)));
    }
    CHECK(values == pair.model);
    CHECK(pair.list.tail == previous && pair.list.count == values.size());
    CHECK(UTIL_LIST_IsEmpty(&pair.list) == values.empty());
}

class Lists {
public:
    explicit Lists(fuzz::Input& input) : input_(input)
    {
        for (Pair& pair : pairs_) {
            UTIL_LIST_Construct(&pair.list, &owners);
        }
    }
    ~Lists()
    {
        for (Pair& pair : pairs_) {
            UTIL_LIST_Destruct(&pair.list);
        }
    }
    Lists(const Lists&)            = delete;
    Lists& operator=(const Lists&) = delete;

    void Step()
    {
        constexpr void (Lists::*steps[])() = {
            &Lists::Insert, &Lists::Insert,    &Lists::Insert,    &Lists::Pop,
            &Lists::Remove, &Lists::Search,    &Lists::Iterate,   &Lists::Delete,
            &Lists::Swap,   &Lists::MoveWhole, &Lists::CopyWhole, &Lists::Concatenate};
        allocationsLeft = Below(16) == 0 ? 1 + Below(4) : 0;
        (this->*steps[Below(std::size(steps))])();
        for (const Pair& pair : pairs_) {
            CheckPair(pair);
        }
    }

private:
    uint32_t Below(size_t limit)
    {
        return input_.ConsumeIntegralInRange<uint32_t>(0, static_cast<uint32_t>(limit) - 1);
    }
    Pair& Any() { return pairs_[Below(std::size(pairs_))]; }

    void Insert()
    {
        auto& [list, model]  = Any();
        const Way&     way   = ways[Below(std::size(ways))];
        const uint64_t order = Below(2);
        const uint32_t value = Below(10);
        auto           place = model.end();
        Node           at    = nullptr;  // before which is the end
        if (way.place == Place::Front) {
            place = model.begin();
        } else if (way.place == Place::Before && !model.empty()) {
            place = model.begin();
            at    = list.head;
            for (uint32_t steps = Below(model.size()); steps > 0; steps--, at = at->next, ++place) {
            }
        } else if (way.place == Place::Sorted) {
            place = std::ranges::find_if(model, [=](auto one) { return one + order <= value; });
        }
        Owner      given  = new uint32_t(value);
        const bool failed = way.insert(&list, at, &given, order) != 0;
        CHECK((given == nullptr) == (way.moves && !failed));
        delete given;
        if (!failed) {
            model.insert(place, value);
        }
    }

    void Pop()
    {
        auto& [list, model] = Any();
        const bool front    = Below(2) != 0;
        CHECK((front ? UTIL_LIST_PopFront(&list) : UTIL_LIST_PopBack(&list)) ==
              (model.empty() ? 1 : 0));
        if (!model.empty()) {
            model.erase(front ? model.begin() : model.end() - 1);
        }
    }

    void Remove()
    {
        auto& [list, model] = Any();
        const uint32_t from = Below(11);  // 0: all
        from == 0 ? UTIL_LIST_Clear(&list) : UTIL_LIST_RemoveIf(&list, IsAtLeast, from);
        std::erase_if(model, [=](uint32_t value) { return value >= from; });
    }

    void Search()
    {
        const auto& [list, model] = Any();
        const uint32_t from       = Below(10);
        const auto     meant      = [=](uint32_t value) { return value >= from; };
        const auto     count      = std::ranges::count_if(model, meant);
        const Node     found      = UTIL_LIST_FindIf(&list, IsAtLeast, from);
        CHECK(UTIL_LIST_CountIf(&list, IsAtLeast, from) == static_cast<uint64_t>(count));
        CHECK((found == nullptr) == (count == 0));
        for (Node node = list.head; node != found; node = node->next) {
            CHECK(!meant(ValueIn(UTIL_LIST_Data(node))));
        }
        CHECK(found == nullptr || meant(ValueIn(UTIL_LIST_Data(found))));
    }

    // From either end, erasing on the way to the tail.
    void Iterate()
    {
        auto& [list, model] = Any();
        auto at             = UTIL_LIST_End(&list);
        for (size_t left = model.size(); at.methods->prev(&at).node != nullptr;) {
            CHECK(ValueIn(at.methods->getDataPtr(&at)) == model.at(--left));
        }
        const uint32_t erased = Below(10);
        for (at = UTIL_LIST_Begin(&list); at.node != nullptr;) {
            ValueIn(UTIL_LIST_GetDataPtr(&at)) == erased ? at.methods->erase(&at)
                                                         : at.methods->next(&at);
        }
        std::erase(model, erased);
    }

    void Delete()
    {
        auto& [list, model] = Any();
        if (!model.empty()) {
            const Node next = list.head->next;
            CHECK(UTIL_LIST_DeleteNode(&list, list.head) == next);
            model.erase(model.begin());
        }
    }

    void Swap()
    {
        Pair& one   = Any();
        Pair& other = Any();
        UTIL_LIST_Swap(&one.list, &other.list);
        std::swap(one.model, other.model);
    }

    void MoveWhole()
    {
        Pair& source = Any();
        Pair& target = Any();
        if (&source != &target) {
            UTIL_LIST_Destruct(&target.list);
            target.model = std::exchange(source.model, {});
        }
        UTIL_LIST_ConstructMove(&target.list, &source.list);
    }

    // Where memory runs out, what was copied so far stays.
    void CopyWhole()
    {
        const Pair& source = Any();
        Pair&       target = Any();
        if (&source != &target) {
            UTIL_LIST_Destruct(&target.list);
            target.model = source.model;
        }
        if (UTIL_LIST_ConstructCopy(&target.list, &source.list) != 0) {
            CHECK(target.list.count < target.model.size());
            target.model.resize(target.list.count);
        }
    }

    void Concatenate()
    {
        Pair& target = Any();
        Pair& source = Any();
        UTIL_LIST_ConcatenateMove(&target.list, &source.list);
        if (&target != &source) {
            target.model.insert(target.model.end(), source.model.begin(), source.model.end());
            source.model.clear();
        }
    }

    fuzz::Input& input_;
    Pair         pairs_[3];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    {
        Lists lists(input);
        while (input.remaining_bytes() > 0) {
            lists.Step();
        }
        allocationsLeft = 0;
    }
    CHECK(blocks == 0);
    return 0;
}
