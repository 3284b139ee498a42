// List operations in any order, with memory that runs out now and then, against vectors.
#include <dlfcn.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>
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

uint32_t Copy(void* element, const void* value)
{
    *static_cast<Owner*>(element) = new uint32_t(ValueIn(value));
    return 0;
}

uint32_t Move(void* element, void* value)
{
    *static_cast<Owner*>(element) = std::exchange(*static_cast<Owner*>(value), nullptr);
    return 0;
}

uint32_t printed = 0;

void Print(const void* element)
{
    printed += ValueIn(element);
}

constexpr UTIL_LIST_TRAITS_S owners = {sizeof(Owner), nullptr, Destroy, Copy, Move, nullptr, Print};

bool GreaterThanAdded(const void* existing, const void* added, uint64_t /*context*/)
{
    return ValueIn(existing) > ValueIn(added);
}

bool IsAtLeast(const void* element, uint64_t context)
{
    return ValueIn(element) >= context;
}

using Model = std::vector<uint32_t>;

// A list and what must be in it.
struct Pair {
    Pair() { UTIL_LIST_Construct(&list, &owners); }
    ~Pair() { UTIL_LIST_Destruct(&list); }
    Pair(const Pair&)            = delete;
    Pair& operator=(const Pair&) = delete;

    UTIL_LIST_S list;
    Model       model;
};

void CheckLinks(const UTIL_LIST_S& list)
{
    uint64_t                count    = 0;
    const UTIL_LIST_NODE_S* previous = nullptr;
    for (const UTIL_LIST_NODE_S* node = list.head; node != nullptr; node = node->next) {
        CHECK(node->prev == previous);
        previous = node;
        count++;
    }
    CHECK(list.tail == previous && list.count == count);
    CHECK(UTIL_LIST_IsEmpty(&list) == (count == 0));
}

Model ValuesOf(const UTIL_LIST_S& list)
{
    CheckLinks(list);
    Model values;
    for (UTIL_LIST_NODE_S* node = list.head; node != nullptr; node = node->next) {
        values.push_back(ValueIn(UTIL_LIST_Data(node)));
    }
    return values;
}

UTIL_LIST_NODE_S* NodeAt(const Pair& pair, size_t place)
{
    UTIL_LIST_NODE_S* node = pair.list.head;
    for (; place > 0; place--) {
        node = node->next;
    }
    return node;
}

auto At(Model& model, size_t place)
{
    return model.begin() + static_cast<ptrdiff_t>(place);
}

// Where one insertion puts its value: at a place, or where the order says.
enum class Where { Front, Back, Before, Sorted };

size_t PlaceOf(const Pair& pair, Where where, size_t place, uint32_t value)
{
    switch (where) {
        case Where::Front:
            return 0;
        case Where::Back:
            return pair.model.size();
        case Where::Before:
            return place;
        case Where::Sorted:
            break;
    }
    const auto found = std::ranges::find_if(pair.model, [=](uint32_t one) { return one <= value; });
    return static_cast<size_t>(found - pair.model.begin());
}

uint32_t InsertCopy(UTIL_LIST_S* list, Where where, UTIL_LIST_NODE_S* position, const Owner& value)
{
    switch (where) {
        case Where::Front:
            return UTIL_LIST_PushFront(list, &value);
        case Where::Back:
            return UTIL_LIST_PushBack(list, &value);
        case Where::Before:
            return UTIL_LIST_InsertBefore(list, position, &value);
        case Where::Sorted:
            break;
    }
    return UTIL_LIST_SortedInsert(list, &value, GreaterThanAdded, 0);
}

uint32_t InsertMoved(UTIL_LIST_S* list, Where where, UTIL_LIST_NODE_S* position, Owner& value)
{
    switch (where) {
        case Where::Front:
            return UTIL_LIST_PushFrontMove(list, &value);
        case Where::Back:
            return UTIL_LIST_PushBackMove(list, &value);
        case Where::Before:
            return UTIL_LIST_InsertBeforeMove(list, position, &value);
        case Where::Sorted:
            break;
    }
    return UTIL_LIST_SortedInsertMove(list, &value, GreaterThanAdded, 0);
}

uint32_t InsertBuilt(UTIL_LIST_S* list, Where where, UTIL_LIST_NODE_S* position, const Owner& value)
{
    UTIL_LIST_NODE_S* node = UTIL_LIST_ConstructNodeCopy(&value, list->traits);
    if (node == nullptr) {
        return 1;
    }
    CHECK(node->next == nullptr && node->prev == nullptr);
    switch (where) {
        case Where::Front:
            UTIL_LIST_PushFrontImpl(list, node);
            break;
        case Where::Back:
            UTIL_LIST_PushBackImpl(list, node);
            break;
        case Where::Before:
            UTIL_LIST_InsertBeforeImpl(list, position, node);
            break;
        case Where::Sorted:
            UTIL_LIST_SortedInsertImpl(list, node, GreaterThanAdded, 0);
            break;
    }
    return 0;
}

class Lists {
public:
    explicit Lists(fuzz::Input& input) : input_(input)
    {
        UTIL_LIST_Construct(&byValue_, &g_utilListByValueTraits);
        UTIL_LIST_Construct(&byPointer_, &g_utilListByPtrTraits);
    }
    ~Lists()
    {
        UTIL_LIST_Destruct(&byValue_);
        UTIL_LIST_Destruct(&byPointer_);
    }
    Lists(const Lists&)            = delete;
    Lists& operator=(const Lists&) = delete;

    void Step()
    {
        constexpr void (Lists::*steps[])() = {
            &Lists::Insert, &Lists::Insert,    &Lists::Pop,       &Lists::Delete,
            &Lists::Remove, &Lists::Search,    &Lists::Walk,      &Lists::Erase,
            &Lists::Swap,   &Lists::MoveWhole, &Lists::CopyWhole, &Lists::Concatenate,
            &Lists::Clear,  &Lists::Nest,      &Lists::Unnest};
        allocationsLeft = Small(15) == 0 ? 1 + Small(3) : 0;
        (this->*steps[Small(std::size(steps) - 1)])();
        for (const Pair& pair : pairs_) {
            CHECK(ValuesOf(pair.list) == pair.model);
        }
        CheckNested();
    }

private:
    uint32_t Small(size_t most)
    {
        return input_.ConsumeIntegralInRange<uint32_t>(0, static_cast<uint32_t>(most));
    }
    Pair& Any() { return pairs_[Small(std::size(pairs_) - 1)]; }

    void Insert()
    {
        Pair&      pair  = Any();
        const auto where = pair.model.empty() ? Where::Sorted : static_cast<Where>(Small(3));
        const auto which = Small(2);
        const auto place = pair.model.empty() ? 0 : Small(pair.model.size() - 1);
        const auto at    = NodeAt(pair, place);

        const std::unique_ptr<uint32_t> kept(new uint32_t(Small(9)));
        const uint32_t                  value = *kept;
        Owner                           moved = new uint32_t(value);

        const uint32_t failed = which == 0   ? InsertCopy(&pair.list, where, at, kept.get())
                                : which == 1 ? InsertBuilt(&pair.list, where, at, kept.get())
                                             : InsertMoved(&pair.list, where, at, moved);
        CHECK((moved == nullptr) == (which == 2 && failed == 0));
        delete moved;
        if (failed == 0) {
            pair.model.insert(At(pair.model, PlaceOf(pair, where, place, value)), value);
        }
    }

    void Pop()
    {
        Pair&      pair  = Any();
        const bool front = Small(1) != 0;
        const bool empty = pair.model.empty();
        CHECK((front ? UTIL_LIST_PopFront(&pair.list) : UTIL_LIST_PopBack(&pair.list)) ==
              (empty ? 1 : 0));
        if (!empty) {
            pair.model.erase(front ? pair.model.begin() : pair.model.end() - 1);
        }
    }

    void Delete()
    {
        Pair& pair = Any();
        if (!pair.model.empty()) {
            const size_t      place = Small(pair.model.size() - 1);
            UTIL_LIST_NODE_S* next  = NodeAt(pair, place)->next;
            CHECK(UTIL_LIST_DeleteNode(&pair.list, NodeAt(pair, place)) == next);
            pair.model.erase(At(pair.model, place));
        }
    }

    void Remove()
    {
        Pair&          pair = Any();
        const uint32_t from = Small(9);
        UTIL_LIST_RemoveIf(&pair.list, IsAtLeast, from);
        std::erase_if(pair.model, [=](uint32_t value) { return value >= from; });
    }

    void Search()
    {
        const Pair&    pair  = Any();
        const uint32_t from  = Small(9);
        const auto     meant = [=](uint32_t value) { return value >= from; };
        const auto     first = std::ranges::find_if(pair.model, meant);
        CHECK(UTIL_LIST_FindIf(&pair.list, IsAtLeast, from) ==
              NodeAt(pair, static_cast<size_t>(first - pair.model.begin())));
        CHECK(UTIL_LIST_CountIf(&pair.list, IsAtLeast, from) ==
              static_cast<uint64_t>(std::ranges::count_if(pair.model, meant)));
    }

    void Walk()
    {
        Pair& pair = Any();
        Model forward;
        Model backward;
        for (auto i = UTIL_LIST_Begin(&pair.list); i.node != nullptr; UTIL_LIST_Next(&i)) {
            forward.push_back(ValueIn(UTIL_LIST_GetDataPtr(&i)));
        }
        auto end = UTIL_LIST_End(&pair.list);
        while (end.methods->prev(&end).node != nullptr) {
            backward.push_back(ValueIn(end.methods->getDataPtr(&end)));
        }
        std::ranges::reverse(backward);
        CHECK(forward == pair.model && backward == pair.model);
    }

    void Erase()
    {
        Pair& pair = Any();
        if (!pair.model.empty()) {
            const size_t     place    = Small(pair.model.size() - 1);
            UTIL_LIST_ITER_S iterator = UTIL_LIST_Begin(&pair.list);
            for (size_t step = 0; step < place; step++) {
                UTIL_LIST_Next(&iterator);
            }
            UTIL_LIST_NODE_S* next = iterator.node->next;
            CHECK(UTIL_LIST_Erase(&iterator).node == next && iterator.node == next);
            pair.model.erase(At(pair.model, place));
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

    void CopyWhole()
    {
        const Pair& source = Any();
        Pair&       target = Any();
        if (&source == &target) {
            CHECK(UTIL_LIST_ConstructCopy(&target.list, &source.list) == 0);
            return;
        }
        UTIL_LIST_Destruct(&target.list);
        const bool whole = UTIL_LIST_ConstructCopy(&target.list, &source.list) == 0;
        CHECK(whole == (target.list.count == source.model.size()));
        target.model = {source.model.begin(),
                        source.model.begin() + static_cast<ptrdiff_t>(target.list.count)};
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

    void Clear()
    {
        Pair& pair = Any();
        UTIL_LIST_Clear(&pair.list);
        pair.model.clear();
    }

    // Puts a list into the lists of lists: a copy by pointer, and by value the list itself.
    void Nest()
    {
        allocationsLeft            = 0;
        Pair&              pair    = Any();
        const UTIL_LIST_S* pointer = &pair.list;
        CHECK(UTIL_LIST_PushBack(&byPointer_, &pointer) == 0);
        CHECK(UTIL_LIST_PushFrontMove(&byValue_, &pair.list) == 0);
        nested_.push_back(std::exchange(pair.model, {}));
    }

    void Unnest()
    {
        CHECK(UTIL_LIST_PopFront(&byPointer_) == (nested_.empty() ? 1 : 0));
        CHECK(UTIL_LIST_PopBack(&byValue_) == (nested_.empty() ? 1 : 0));
        if (!nested_.empty()) {
            nested_.erase(nested_.begin());
        }
    }

    void CheckNested() const
    {
        CheckLinks(byPointer_);
        CheckLinks(byValue_);
        UTIL_LIST_NODE_S* pointer = byPointer_.head;
        UTIL_LIST_NODE_S* value   = byValue_.tail;
        for (const Model& model : nested_) {
            CHECK(pointer != nullptr && value != nullptr);
            CHECK(ValuesOf(**static_cast<UTIL_LIST_S**>(UTIL_LIST_Data(pointer))) == model);
            CHECK(ValuesOf(*static_cast<UTIL_LIST_S*>(UTIL_LIST_Data(value))) == model);
            pointer = pointer->next;
            value   = value->prev;
        }
        CHECK(pointer == nullptr && value == nullptr);
    }

    fuzz::Input&       input_;
    Pair               pairs_[3];
    UTIL_LIST_S        byValue_;
    UTIL_LIST_S        byPointer_;
    std::vector<Model> nested_;  // oldest first
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
