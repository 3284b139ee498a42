// The stand-in as a database, compared with a model of one table: reads return what was written,
// and refused writes change nothing.
#include <algorithm>
#include <array>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include <tarnd_platform/orm_accessors.h>

#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using standin::Row;
using standin::Transaction;
using Numbers = std::vector<uint32_t>;
constexpr uint32_t none = UINT32_MAX;

// Each inserted row has a number of its own, its mtu, which distinguishes it from another one with
// its key. Numbers are in table order: the rank, then a count of insertions.
constexpr int RANK_SHIFT = 24;

struct ModelRow {
    uint32_t index;
    std::string name;
    uint32_t number;

    Row AsRow() const { return support::Base(index).Set("if_name", name).Set("mtu", number); }
};
using Model = std::vector<ModelRow>;  // in table order

class StandinDatabase : public testing::Test {
protected:
    void SetUp() override
    {
        standin::Reset();
        EXPECT_EQ(OrmOpenSessionByDefault(&reading_), 0U);
        EXPECT_EQ(OrmOpenSessionByDefault(&scanning_), 0U);
    }
    void TearDown() override
    {
        EXPECT_EQ(OrmCloseSession(reading_), 0U);
        EXPECT_EQ(OrmCloseSession(scanning_), 0U);
        standin::Reset();
    }

    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

    // Commits a transaction of a few writes to both; to neither if one of the writes is invalid.
    void CommitSome()
    {
        Transaction transaction;
        Model after = model_;
        std::string refusal;
        for (uint32_t left = Below(4) + 1; left > 0 && refusal.empty(); left--) {
            refusal = AddWrite(transaction, after);
        }
        ASSERT_EQ(support::RefusalOf([&] { transaction.Commit(); }), refusal);
        if (refusal.empty()) {
            model_ = after;
        }
    }

    // Reads by each key. A session's current row does not change by later writes.
    void ReadSome()
    {
        const ModelRow asked = AnyEntry();
        const auto there = std::ranges::find(model_, asked.index, &ModelRow::index);
        ASSERT_EQ(standin::Find(asked.AsRow()),
                  there == model_.end() ? std::nullopt : std::optional(there->AsRow()));

        uint32_t kept = none;
        ASSERT_EQ(OrmGetField(reading_, "mtu", &kept, 4) == 0, read_ != none);
        ASSERT_EQ(kept, read_);
        std::array<char, 68> key{};
        asked.name.copy(key.data() + 4, asked.name.size());
        const auto named = std::ranges::find(model_, asked.name, &ModelRow::name);
        read_ = named == model_.end() ? none : named->number;
        ASSERT_EQ(OrmPrepare(reading_, "if_base", QRB_ORM_OP_READ), 0U);
        ASSERT_EQ(OrmgIfBaseSetKeyLocalKeyInner(reading_, key.data(), key.size()), 0U);
        ASSERT_EQ(OrmExecute(reading_), read_ == none ? ORM_NO_RECORD : 0U);
    }

    // A scan with transactions between its steps returns each row at most once, in table order: all
    // rows that remain in the table, and none that were inserted later.
    void ScanSome()
    {
        const Numbers before = InModel();
        Numbers throughout = before;
        Numbers seen;
        ORM_SCAN scan = 0;
        ASSERT_EQ(OrmPrepare(scanning_, "if_base", QRB_ORM_OP_SCAN), 0U);
        ASSERT_EQ(OrmScanStart(scanning_, &scan), 0U);
        for (uint8_t end = 0; OrmScanNext(scanning_, scan, &end) == 0 && end == 0;) {
            seen.push_back(none);
            ASSERT_EQ(OrmGetField(scanning_, "mtu", &seen.back(), 4), 0U);
            for (uint32_t commits = Below(3); commits > 0; commits--) {
                CommitSome();
                std::erase_if(throughout, [order = InModel()](uint32_t row) {
                    return !std::ranges::binary_search(order, row);
                });
            }
        }
        ASSERT_EQ(OrmScanEnd(scanning_, scan), 0U);
        ASSERT_TRUE(std::ranges::is_sorted(seen, std::less_equal()));
        ASSERT_TRUE(std::ranges::includes(before, seen));
        ASSERT_TRUE(std::ranges::includes(seen, throughout));
    }

private:
    Numbers InModel() const
    {
        Numbers numbers;
        std::ranges::transform(model_, std::back_inserter(numbers), &ModelRow::number);
        return numbers;
    }

    ModelRow AnyEntry() { return {Below(300), "eth" + std::to_string(Below(600)), 0}; }

    // The expected error of the write; empty if it is valid.
    std::string AddWrite(Transaction& transaction, Model& model)
    {
        using namespace support::writes;
        constexpr Writing kinds[] = {Insert, Insert, Replace, Update, Delete};
        const Writing kind = kinds[Below(std::size(kinds))];
        ModelRow entry = AnyEntry();
        const auto there = std::ranges::find(model, entry.index, &ModelRow::index);
        const auto named = std::ranges::find(model, entry.name, &ModelRow::name);
        const bool isThere = there != model.end();
        const std::string key = "if_base: if_index " + std::to_string(entry.index);
        const uint32_t rank = Below(3);  // no effect on an existing row
        entry.number = isThere ? there->number : rank << RANK_SHIFT | ++last_;
        kind(transaction, entry.AsRow().SetRank(rank));
        if (kind == Insert && isThere) {
            return key + ": there is such a row already";
        }
        if ((kind == Update || kind == Delete) && !isThere) {
            return key + ": there is no such row";
        }
        if (kind == Delete) {
            model.erase(there);
        } else if (named != model.end() && named != there) {
            return "if_base: name_scope 0, if_name \"" + entry.name +
                   "\": another row has this local_key";
        } else if (isThere) {
            *there = entry;
        } else {
            model.insert(std::ranges::upper_bound(model, entry.number, {}, &ModelRow::number),
                         entry);
        }
        return "";
    }

    Model model_;
    std::mt19937 random_{20};
    uint32_t last_ = 0;  // insertion
    ORM_SESSION reading_ = 0;
    ORM_SESSION scanning_ = 0;
    uint32_t read_ = none;  // number of the current row of the first session
};

TEST_F(StandinDatabase, RowsAcceptOnlyValuesThatFit)
{
    const auto refuses = [](std::string_view table, auto set) {
        Row row(table);
        EXPECT_THROW(set(row), standin::Error) << table;
        EXPECT_EQ(row, Row(table));
    };
    refuses("port", [](Row& row) { row.Set("pvid", 65536); });
    refuses("port", [](Row& row) { row.Set("no_field", 1); });
    refuses("port", [](Row& row) { row.Set("vlan_bitmap_1", 1); });
    refuses("port", [](Row& row) { row.AddToSet("vlan_bitmap_1", 4095, 4096); });
    refuses("port", [](Row& row) { row.AddToSet("vlan_bitmap_1", 2, 1); });
    refuses("port", [](Row& row) { row.SetBytes("vlan_bitmap_1", std::array<uint8_t, 1>()); });
    refuses("vlan", [](Row& row) { row.Set("name", std::string(33, 'x')); });
    refuses("qos_integration", [](Row& row) { row.AddItem("car_list", std::array{1UL}); });
    EXPECT_THROW(Row("no_table"), standin::Error);
}

TEST_F(StandinDatabase, AgreesWithAModelThroughRandomTransactions)
{
    for (int round = 0; round < 3000; round++) {
        CommitSome();
        ReadSome();
        if (round % 200 == 0) {
            std::thread([this] { ScanSome(); }).join();  // each reuses the thread's slot
        }
        ASSERT_FALSE(HasFatalFailure());
    }
}

}  // namespace
