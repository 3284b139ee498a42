// The stand-in as a database, beside a model of one table: what is written is what is read,
// whatever happens meanwhile, and what is refused changes nothing.
#include <tarnd_platform/orm_accessors.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

#include <gtest/gtest.h>
#include <standin/database.h>

namespace {

using standin::Row;
using standin::Transaction;
using Numbers = std::vector<uint32_t>;

constexpr uint32_t none = UINT32_MAX;

// Each inserted row has a number of its own, kept in its mtu, so that it can be told from another
// one with its key. Numbers grow with insertion.
struct Model {
    struct Content {
        std::string name;
        uint32_t    number;
    };
    std::map<uint32_t, Content> rows;
    uint32_t                    inserted = 0;

    uint32_t NumberOf(uint32_t index) const
    {
        return rows.contains(index) ? rows.at(index).number : none;
    }
    uint32_t IndexOf(const std::string& name) const
    {
        const auto named = [&](const auto& row) { return row.second.name == name; };
        const auto found = std::ranges::find_if(rows, named);
        return found == rows.end() ? none : found->first;
    }
    // As a scan goes.
    Numbers Order() const
    {
        Numbers order;
        for (const auto& [index, content] : rows) {
            order.push_back(content.number);
        }
        std::ranges::sort(order);
        return order;
    }
};

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

    std::string AnyName() { return "eth" + std::to_string(Below(600)); }

    // A transaction of a few writes, committed to both, or to neither where one can't be done.
    void CommitSome()
    {
        Transaction transaction;
        Model       after = model_;
        std::string refusal;
        for (uint32_t left = Below(4) + 1; left > 0 && refusal.empty(); left--) {
            refusal = AddWrite(transaction, after);
        }
        try {
            transaction.Commit();
            ASSERT_EQ(refusal, "");
            model_ = after;
        } catch (const standin::Error& error) {
            ASSERT_EQ(error.what(), refusal);
        }
    }

    // Asks by each key. What a session has read it keeps, whatever was written since.
    void ReadSome()
    {
        const uint32_t        index = Below(300);
        std::array<char, 387> record{};
        const uint32_t        code = OrmgIfBaseReadInner(&index, 4, record.data(), record.size());
        ASSERT_EQ(code, model_.NumberOf(index) == none ? ORM_NO_RECORD : 0U);
        if (code == 0) {
            ASSERT_EQ(record.data() + 8, model_.rows.at(index).name);
        }

        uint32_t kept = none;
        ASSERT_EQ(OrmGetField(reading_, "mtu", &kept, 4) == 0, read_ != none);
        ASSERT_EQ(kept, read_);
        const std::string    name = AnyName();
        std::array<char, 68> key{};
        name.copy(key.data() + 4, name.size());
        ASSERT_EQ(OrmPrepare(reading_, "if_base", QRB_ORM_OP_READ), 0U);
        ASSERT_EQ(OrmgIfBaseSetKeyLocalKeyInner(reading_, key.data(), key.size()), 0U);
        read_ = model_.NumberOf(model_.IndexOf(name));
        ASSERT_EQ(OrmExecute(reading_), read_ == none ? ORM_NO_RECORD : 0U);
    }

    // The rows that a scan meets, with something done after each.
    template <typename Action>
    Numbers Scan(Action afterEach)
    {
        Numbers  seen;
        ORM_SCAN scan = 0;
        EXPECT_EQ(OrmPrepare(scanning_, "if_base", QRB_ORM_OP_SCAN), 0U);
        EXPECT_EQ(OrmScanStart(scanning_, &scan), 0U);
        for (uint8_t end = 0; OrmScanNext(scanning_, scan, &end) == 0 && end == 0;) {
            seen.push_back(none);
            EXPECT_EQ(OrmGetField(scanning_, "mtu", &seen.back(), 4), 0U);
            afterEach();
        }
        EXPECT_EQ(OrmScanEnd(scanning_, scan), 0U);
        return seen;
    }

    Model model_;

private:
    // What is to be said of the write; empty where it can be done.
    std::string AddWrite(Transaction& transaction, Model& model)
    {
        const uint32_t    kind    = Below(5);
        const uint32_t    index   = Below(300);
        const std::string name    = AnyName();
        const bool        isThere = model.rows.contains(index);
        const uint32_t    number  = isThere ? model.NumberOf(index) : model.inserted;
        const Row         row =
            Row("if_base").Set("if_index", index).Set("if_name", name).Set("mtu", number);
        const std::string key = "if_base: if_index " + std::to_string(index);
        if (kind < 2) {
            transaction.Insert(row);
        } else if (kind == 2) {
            transaction.Replace(row);
        } else if (kind == 3) {
            transaction.Update(row);
        } else {
            transaction.Delete(row);
        }
        if (kind < 2 && isThere) {
            return key + ": there is such a row already";
        }
        if (kind > 2 && !isThere) {
            return key + ": there is no such row";
        }
        if (kind == 4) {
            model.rows.erase(index);
            return "";
        }
        const uint32_t holder = model.IndexOf(name);
        if (holder != none && holder != index) {
            return "if_base: name_scope 0, if_name \"" + name +
                   "\": another row has this local_key";
        }
        model.rows[index] = {name, number};
        model.inserted += isThere ? 0 : 1;
        return "";
    }

    std::mt19937 random_{20};
    ORM_SESSION  reading_  = 0;
    ORM_SESSION  scanning_ = 0;
    uint32_t     read_     = none;  // the number of the row that the first session stands on
};

TEST_F(StandinDatabase, RowsTakeOnlyWhatFits)
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
        if (round % 100 == 0) {
            ASSERT_EQ(Scan([] {}), model_.Order());
        }
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST_F(StandinDatabase, OpenScansAreFairThroughRandomTransactions)
{
    for (int round = 0; round < 12; round++) {
        for (int fill = 0; fill < 50; fill++) {
            CommitSome();
        }
        const Numbers before     = model_.Order();
        Numbers       throughout = before;
        const Numbers seen       = Scan([&] {
            for (uint32_t commits = Below(3); commits > 0; commits--) {
                CommitSome();
                std::erase_if(throughout, [order = model_.Order()](uint32_t row) {
                    return !std::ranges::binary_search(order, row);
                });
            }
        });
        // Once each, in order, none that came late, none left out.
        EXPECT_TRUE(std::ranges::is_sorted(seen, std::less_equal()));
        EXPECT_TRUE(std::ranges::includes(before, seen));
        EXPECT_TRUE(std::ranges::includes(seen, throughout));
    }
}

}  // namespace
