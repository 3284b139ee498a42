// The stand-in as a database: what is written is what is read, whatever happens meanwhile.
#include <tarnd_platform/orm_accessors.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <random>

#include <gtest/gtest.h>
#include <standin/database.h>

namespace {

using standin::Error;
using standin::Row;
using standin::Transaction;

class StandinDatabase : public testing::Test {
protected:
    void SetUp() override { standin::Reset(); }
    void TearDown() override { standin::Reset(); }
};

Row Interface(uint32_t index, std::string_view name, uint32_t mtu = 0)
{
    return Row("if_base").Set("if_index", index).Set("if_name", name).Set("mtu", mtu);
}

template <typename... Write>
void Commit(Write... write)
{
    Transaction transaction;
    (write(transaction), ...);
    transaction.Commit();
}

auto Insert(const Row& row)
{
    return [row](Transaction& transaction) { transaction.Insert(row); };
}

// A scan of "if_base", a few rows at a time.
class Scan {
public:
    explicit Scan(const char* condition = nullptr, const char* field = "if_index") : field_(field)
    {
        EXPECT_EQ(OrmOpenSessionByDefault(&session_), 0U);
        EXPECT_EQ(OrmPrepare(session_, "if_base", QRB_ORM_OP_SCAN), 0U);
        if (condition != nullptr) {
            EXPECT_EQ(OrmSetScanCond(session_, condition), 0U);
        }
        EXPECT_EQ(OrmScanStart(session_, &scan_), 0U);
    }
    ~Scan()
    {
        EXPECT_EQ(OrmScanEnd(session_, scan_), 0U);
        EXPECT_EQ(OrmCloseSession(session_), 0U);
    }
    Scan(const Scan&)            = delete;
    Scan& operator=(const Scan&) = delete;

    // False at the end.
    bool Next(uint32_t* value)
    {
        uint8_t end = 0;
        EXPECT_EQ(OrmScanNext(session_, scan_, &end), 0U);
        return end == 0 && OrmGetField(session_, field_, value, 4) == 0;
    }
    std::vector<uint32_t> Rest()
    {
        std::vector<uint32_t> rest;
        for (uint32_t index = 0; Next(&index);) {
            rest.push_back(index);
        }
        return rest;
    }

private:
    const char* field_;
    ORM_SESSION session_ = 0;
    ORM_SCAN    scan_    = 0;
};

std::string NameOf(uint32_t index)
{
    std::array<char, 387> record{};
    const uint32_t        read = OrmgIfBaseReadInner(&index, 4, record.data(), record.size());
    return read == 0 ? record.data() + 8 : "code " + std::to_string(read);
}

TEST_F(StandinDatabase, ReadsBackWhatWasWrittenByEveryKey)
{
    Commit(Insert(Interface(1, "eth1")), Insert(Interface(2, "eth2")));
    EXPECT_EQ(NameOf(1), "eth1");
    EXPECT_EQ(NameOf(3), "code 1001000");

    std::array<char, 68> localKey{};
    std::strcpy(localKey.data() + 4, "eth2");
    ORM_SESSION session = 0;
    uint32_t    index   = 0;
    ASSERT_EQ(OrmOpenSessionByDefault(&session), 0U);
    ASSERT_EQ(OrmPrepare(session, "if_base", QRB_ORM_OP_READ), 0U);
    ASSERT_EQ(OrmgIfBaseSetKeyLocalKeyInner(session, localKey.data(), 68), 0U);
    ASSERT_EQ(OrmExecute(session), 0U);
    EXPECT_EQ(OrmGetFieldById(session, 0, &index, 4), 0U);
    EXPECT_EQ(index, 2U);

    // The session keeps the record that it read; a new read sees the new name.
    Commit([](Transaction& t) { t.Update(Interface(2, "renamed")); });
    std::array<char, 64> name{};
    EXPECT_EQ(OrmGetField(session, "if_name", name.data(), 64), 0U);
    EXPECT_STREQ(name.data(), "eth2");
    EXPECT_EQ(OrmExecute(session), ORM_NO_RECORD);
    EXPECT_NE(OrmGetField(session, "if_name", name.data(), 64), 0U);
    EXPECT_EQ(OrmCloseSession(session), 0U);
    EXPECT_EQ(NameOf(2), "renamed");
}

TEST_F(StandinDatabase, RefusedTransactionChangesNothingAndSaysWhy)
{
    Commit(Insert(Interface(1, "eth1")), Insert(Interface(2, "eth2")));
    const struct {
        void (*write)(Transaction&);
        const char* reason;
    } refused[] = {
        {[](Transaction& t) { t.Insert(Interface(1, "other")); },
         "if_base: if_index 1: there is such a row already"},
        {[](Transaction& t) { t.Insert(Interface(7, "eth2")); },
         "if_base: name_scope 0, if_name \"eth2\": another row has this local_key"},
        {[](Transaction& t) { t.Replace(Interface(1, "eth2")); },
         "if_base: name_scope 0, if_name \"eth2\": another row has this local_key"},
        {[](Transaction& t) { t.Update(Interface(9, "eth9")); },
         "if_base: if_index 9: there is no such row"},
        {[](Transaction& t) { t.Delete(Interface(9, "")); },
         "if_base: if_index 9: there is no such row"},
    };
    for (const auto& [write, reason] : refused) {
        Transaction transaction;
        transaction.Insert(Interface(5, "eth5"));
        transaction.Delete(Interface(2, ""));
        transaction.Insert(Interface(2, "eth2"));
        transaction.Update(Interface(1, "renamed"));
        transaction.Delete(Interface(1, ""));
        transaction.Insert(Interface(1, "again"));
        transaction.Update(Interface(1, "eth1", 9));
        write(transaction);
        try {
            transaction.Commit();
            ADD_FAILURE() << "not refused: " << reason;
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), reason);
        }
        EXPECT_EQ(standin::CountRows(*standin::FindTable("if_base")), 2U);
        EXPECT_EQ(standin::Find(Interface(1, "")), Interface(1, "eth1"));
        EXPECT_EQ(Scan().Rest(), (std::vector<uint32_t>{1, 2}));
    }
}

TEST_F(StandinDatabase, ScanGoesByOrderOfInsertionWhateverIsWrittenMeanwhile)
{
    for (uint32_t index = 1; index <= 100; index++) {
        Commit(Insert(Interface(index, "eth" + std::to_string(index))));
    }
    Scan     scan;
    uint32_t index = 0;
    ASSERT_TRUE(scan.Next(&index));
    Commit([](Transaction& t) {
        t.Delete(Interface(50, ""));
        t.Delete(Interface(60, ""));
        t.Insert(Interface(60, "moved to the end"));
        t.Update(Interface(70, "stays where it is"));
        t.Insert(Interface(101, "too late"));
    });
    std::vector<uint32_t> expected;
    for (uint32_t row = 2; row <= 100; row++) {
        if (row != 50 && row != 60) {
            expected.push_back(row);
        }
    }
    EXPECT_EQ(scan.Rest(), expected);
    expected.insert(expected.begin(), 1);
    expected.insert(expected.end(), {60, 101});
    EXPECT_EQ(Scan().Rest(), expected);
}

// The same as the database, by the simplest means. Each inserted row has a number of its own, kept
// in its mtu, so that a row can be told from another one with its key.
class Model {
public:
    struct Content {
        std::string name;
        uint32_t    number;
    };

    bool Has(uint32_t index) const { return rows_.contains(index); }
    bool HasName(uint32_t exceptIndex, const std::string& name) const
    {
        return std::any_of(rows_.begin(), rows_.end(), [&](const auto& row) {
            return row.first != exceptIndex && row.second.name == name;
        });
    }
    void Put(uint32_t index, const std::string& name)
    {
        if (!Has(index)) {
            order_.push_back(rows_[index].number = nextNumber_++);
        }
        rows_[index].name = name;
    }
    void Delete(uint32_t index)
    {
        std::erase(order_, rows_.at(index).number);
        rows_.erase(index);
    }
    // What a row put in this place would have for its number.
    uint32_t NumberOf(uint32_t index) const
    {
        return Has(index) ? rows_.at(index).number : nextNumber_;
    }
    std::string NameOf(uint32_t index) const
    {
        return Has(index) ? rows_.at(index).name : "code 1001000";
    }
    const std::vector<uint32_t>& Order() const { return order_; }

private:
    std::map<uint32_t, Content> rows_;
    std::vector<uint32_t>       order_;
    uint32_t                    nextNumber_ = 0;
};

class RandomWrites {
public:
    explicit RandomWrites(uint32_t seed) : random_(seed) {}

    // A transaction of a few writes, committed to both unless one of them can't be.
    void Commit(Model& model)
    {
        Transaction transaction;
        Model       after    = model;
        bool        possible = true;
        for (uint32_t writes = Below(4) + 1; writes > 0 && possible; writes--) {
            possible = AddWrite(transaction, after);
        }
        if (possible) {
            transaction.Commit();
            model = after;
        } else {
            EXPECT_THROW(transaction.Commit(), Error);
        }
    }
    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

private:
    // Whether the write is possible.
    bool AddWrite(Transaction& transaction, Model& model)
    {
        const uint32_t    index = Below(300);
        const std::string name  = "eth" + std::to_string(Below(600));
        const Row         row   = Interface(index, name, model.NumberOf(index));
        const uint32_t    kind  = Below(5);
        if (kind == 0) {
            transaction.Delete(row);
        } else {
            (transaction.*std::array{&Transaction::Insert, &Transaction::Insert,
                                     &Transaction::Update, &Transaction::Replace}[kind - 1])(row);
        }
        const bool mustBeThere = kind == 0 || kind == 3;
        const bool mayBeThere  = mustBeThere || kind == 4;
        if ((mustBeThere && !model.Has(index)) || (!mayBeThere && model.Has(index)) ||
            (kind != 0 && model.HasName(index, name))) {
            return false;
        }
        if (kind == 0) {
            model.Delete(index);
        } else {
            model.Put(index, name);
        }
        return true;
    }

    std::mt19937 random_;
};

TEST_F(StandinDatabase, AgreesWithAModelThroughRandomTransactions)
{
    Model        model;
    RandomWrites writes(20);
    for (int round = 0; round < 3000; round++) {
        writes.Commit(model);
        const uint32_t probe = writes.Below(300);
        ASSERT_EQ(NameOf(probe), model.NameOf(probe));
        if (round % 100 == 0) {
            ASSERT_EQ(Scan(nullptr, "mtu").Rest(), model.Order());
        }
    }
    for (uint32_t index = 0; index < 300; index++) {
        ASSERT_EQ(NameOf(index), model.NameOf(index));
    }
}

TEST_F(StandinDatabase, OpenScansAreFairThroughRandomTransactions)
{
    Model        model;
    RandomWrites writes(21);
    for (int fill = 0; fill < 500; fill++) {
        writes.Commit(model);
    }
    for (int round = 0; round < 40; round++) {
        Scan                        scan(nullptr, "mtu");
        const std::vector<uint32_t> before     = model.Order();
        std::vector<uint32_t>       throughout = before;
        std::vector<uint32_t>       seen;
        for (uint32_t number = 0; scan.Next(&number);) {
            seen.push_back(number);
            for (uint32_t commits = writes.Below(3); commits > 0; commits--) {
                writes.Commit(model);
                std::erase_if(throughout, [order = model.Order()](uint32_t row) {
                    return std::find(order.begin(), order.end(), row) == order.end();
                });
            }
        }
        // Numbers grow with insertion: once each, in order, none that came late, none left out.
        EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end(), std::less_equal<>()));
        EXPECT_TRUE(std::includes(before.begin(), before.end(), seen.begin(), seen.end()));
        EXPECT_TRUE(std::includes(seen.begin(), seen.end(), throughout.begin(), throughout.end()));
    }
}

}  // namespace
