// The generic list, compared with plain allocation, std::list and GQueue.
#include <glib.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <list>

#include <benchmark/benchmark.h>

#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/util_list.h>

namespace {

struct ListedRecord {
    uint64_t priority;
    uint64_t rest[3];
};

constexpr size_t WAITING = 64;  // elements in the list while others are pushed and popped
constexpr size_t SORTED = 100;  // elements inserted in order

constexpr UTIL_LIST_TRAITS_S TRAITS = {
    sizeof(ListedRecord), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

// Whether an existing element precedes the new one: the order of every list here.
bool Ahead(const void* existing, const void* added, uint64_t /*context*/)
{
    return static_cast<const ListedRecord*>(existing)->priority >
           static_cast<const ListedRecord*>(added)->priority;
}

int Compare(gconstpointer one, gconstpointer other, gpointer /*context*/)
{
    return Ahead(one, other, 0) ? -1 : 1;
}

class OwnList {
public:
    OwnList()
    {
        MEM_EX_Init();
        UTIL_LIST_Construct(&list_, &TRAITS);
    }
    ~OwnList() { UTIL_LIST_Destruct(&list_); }
    void Push(const ListedRecord& element) { UTIL_LIST_PushBack(&list_, &element); }
    void Pop() { UTIL_LIST_PopFront(&list_); }
    void Insert(const ListedRecord& element) { UTIL_LIST_SortedInsert(&list_, &element, Ahead, 0); }
    void Clear() { UTIL_LIST_Clear(&list_); }

private:
    UTIL_LIST_S list_;
};

// The same comparator, inlined.
enum Known { AtRunTime, WhenCompiled };

template <Known compare>
class StdList {
public:
    void Push(const ListedRecord& element) { list_.push_back(element); }
    void Pop() { list_.pop_front(); }
    void Insert(const ListedRecord& element)
    {
        auto position = list_.begin();
        auto ahead = Ahead;
        if constexpr (compare == AtRunTime) {
            benchmark::DoNotOptimize(ahead);
        }
        while (position != list_.end() && ahead(&*position, &element, 0)) {
            ++position;
        }
        list_.insert(position, element);
    }
    void Clear() { list_.clear(); }

private:
    std::list<ListedRecord> list_;
};

class Queue {
public:
    ~Queue() { Clear(); }
    void Push(const ListedRecord& element) { g_queue_push_tail(&queue_, Copy(element)); }
    void Pop() { g_free(g_queue_pop_head(&queue_)); }
    void Insert(const ListedRecord& element)
    {
        g_queue_insert_sorted(&queue_, Copy(element), Compare, nullptr);
    }
    void Clear() { g_queue_clear_full(&queue_, g_free); }

private:
    static ListedRecord* Copy(const ListedRecord& element)
    {
        auto* copy = g_new(ListedRecord, 1);
        *copy = element;
        return copy;
    }

    GQueue queue_ = G_QUEUE_INIT;
};

// The allocation and the copy of a list node, without linking it.
class Blocks {
public:
    ~Blocks() { Clear(); }
    void Push(const ListedRecord& element)
    {
        void* block = malloc(2 * sizeof(void*) + sizeof(ListedRecord));
        memcpy(static_cast<char*>(block) + 2 * sizeof(void*), &element, sizeof(element));
        blocks_[pushed_++ % blocks_.size()] = block;
    }
    void Pop() { free(blocks_[popped_++ % blocks_.size()]); }
    void Clear()
    {
        while (popped_ < pushed_) {
            Pop();
        }
    }

private:
    std::array<void*, 2 * WAITING> blocks_ = {};
    size_t pushed_ = 0;
    size_t popped_ = 0;
};

template <typename List>
void PushPop(benchmark::State& state)
{
    List list;
    ListedRecord element = {};
    for (size_t pushed = 0; pushed < WAITING; pushed++) {
        list.Push(element);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(element);
        list.Push(element);
        list.Pop();
    }
}
BENCHMARK(PushPop<OwnList>)->Name("list_push_pop/util_list");
BENCHMARK(PushPop<Blocks>)->Name("list_push_pop/malloc_copy_free");
BENCHMARK(PushPop<StdList<WhenCompiled>>)->Name("list_push_pop/std_list");
BENCHMARK(PushPop<Queue>)->Name("list_push_pop/gqueue");

template <typename List>
void SortedInsert(benchmark::State& state)
{
    List list;
    std::array<ListedRecord, SORTED> elements = {};
    for (size_t element = 0; element < SORTED; element++) {
        elements[element].priority = element * 37 % SORTED;
    }
    for (auto _ : state) {
        for (const ListedRecord& element : elements) {
            list.Insert(element);
        }
        list.Clear();
    }
}
BENCHMARK(SortedInsert<OwnList>)->Name("list_sorted_insert/util_list");
BENCHMARK(SortedInsert<StdList<AtRunTime>>)->Name("list_sorted_insert/std_list");
BENCHMARK(SortedInsert<StdList<WhenCompiled>>)->Name("list_sorted_insert/std_list_inlined");
BENCHMARK(SortedInsert<Queue>)->Name("list_sorted_insert/gqueue");

}  // namespace
