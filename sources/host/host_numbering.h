// Numbers for things that other rows refer to.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <utility>

namespace sources {

// Gives equal things equal numbers, from 1, and counts their users. A thing without users keeps its
// number for a grace period, in which a reader that found the number can still look it up. Numbers
// are never reused.
template <typename Thing>
class Numbering {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds GRACE{1};

    struct State {
        uint32_t number;
        uint32_t users = 0;
        uint64_t lastRelease = 0;
    };
    using Item = std::pair<const Thing, State>;

    // The item of a thing, whose users may be 0. Valid until it expires.
    Item& Find(const Thing& thing)
    {
        const auto [entry, isNew] = items_.try_emplace(thing, State{last_ + 1});
        last_ += isNew ? 1 : 0;
        return *entry;
    }

    // The item of a thing that has one.
    const Item& At(const Thing& thing) const { return *items_.find(thing); }

    // True for the first user.
    bool Acquire(Item& item) { return item.second.users++ == 0; }

    // True for the last user.
    bool Release(Item& item, Time now)
    {
        if (--item.second.users > 0) {
            return false;
        }
        item.second.lastRelease = ++releases_;
        unused_.push_back({&item, now, releases_});
        return true;
    }

    // Removes what has not been used for the grace period. Calls onRemoval(item) before.
    template <typename Action>
    void Expire(Time now, Action&& onRemoval)
    {
        for (; !unused_.empty() && unused_.front().since <= now - GRACE; unused_.pop_front()) {
            const auto [item, since, release] = unused_.front();
            if (item->second.users == 0 && item->second.lastRelease == release) {
                onRemoval(*item);
                items_.erase(items_.find(item->first));
            }
        }
    }

    bool HasUnused() const { return !unused_.empty(); }

    // Calls action(item) for everything that has a number.
    template <typename Action>
    void ForEach(Action&& action) const
    {
        for (const Item& item : items_) {
            action(item);
        }
    }

private:
    struct Unused {
        Item* item;  // valid if it has not been removed: at its last release
        Time since;
        uint64_t release;
    };

    std::map<Thing, State> items_;
    std::deque<Unused> unused_;  // the longest unused first; some are in use again
    uint32_t last_ = 0;
    uint64_t releases_ = 0;
};

}  // namespace sources
