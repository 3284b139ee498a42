// Random transactions of another client, in every form that the schema allows, on a real server:
// after each the tables are what a process that starts at that moment would read.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <tuple>

#include "sources/mirror.h"
#include "sources/ovsdb/ovsdb_source.h"
#include "support/fault_injection.h"
#include "support/ovsdb_server.h"
#include "support/recorded_changes.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using namespace support;
using sources::OvsdbSource;
using sources::WriteKind;
using sources::ovsdb::ColumnsOf;
using sources::ovsdb::LISTS_COLUMN;
using sources::ovsdb::PLACE_COLUMN;
using sources::ovsdb::SchemaColumn;
using standin::Field;
using standin::Kind;
using standin::Row;
using standin::Table;

// Two keys, a set, a list, three lists, an address in the key, a text in the key.
constexpr const char* MODEL_TABLES[] = {
    "if_base", "vlan", "am_ipv4_address", "qos_integration", "Fib_ConfigIpv4Fwd", "acl_group_id"};

Wire MapOf(const std::map<int, Wire>& pairs)
{
    Wire all = Wire::array();
    for (const auto& [position, value] : pairs) {
        all.push_back({position, value});
    }
    return {"map", all};
}

// Values and operations that collide often: few keys, few positions, few places.
class RandomClient {
public:
    explicit RandomClient(uint64_t seed) : random_(seed) {}

    size_t Below(size_t end) { return random_() % end; }
    template <typename Values>
    auto OneOf(const Values& values)
    {
        return values[Below(std::size(values))];
    }

    const Table& AnyTable() { return *sources::ovsdb::FindTable(OneOf(MODEL_TABLES)); }

    Wire Insertion(const Table& table)
    {
        return {{"op", "insert"}, {"table", ColumnsOf(table).name}, {"row", SomeColumns(table)}};
    }

    // Of the row with this id: changes whole columns, or elements of some, or deletes it.
    Wire Change(const Table& table, const std::string& id)
    {
        Wire operation = {{"op", "delete"},
                          {"table", ColumnsOf(table).name},
                          {"where", {{"_uuid", "==", {"uuid", id}}}}};
        switch (Below(5)) {
            case 0:
                break;
            case 1:
            case 2:
                operation.update({{"op", "update"}, {"row", SomeColumns(table)}});
                break;
            default:
                operation.update({{"op", "mutate"}, {"mutations", Mutations(table)}});
        }
        return operation;
    }

private:
    Wire Value(const Field& field)
    {
        constexpr const char* addresses[] = {"", "0.0.0.0", "10.0.0.1", "10.0.0.2", "256.0.0.1"};
        constexpr const char* hardware[] = {"", "00:00:00:00:00:00", "02:00:00:00:00:01", "x"};
        constexpr const char* texts[] = {"", "a", "b"};
        switch (field.kind) {
            case Kind::Ipv4:
                return OneOf(addresses);
            case Kind::Mac:
                return OneOf(hardware);
            case Kind::Text:
                if (Below(20) == 0) {  // more bytes than the table holds
                    std::string wide;
                    for (uint32_t i = 0; i < standin::LongestText(field); ++i) {
                        wide += "\u00fc";
                    }
                    return wide;
                }
                return OneOf(texts);
            default:
                return Below(4);
        }
    }

    Wire SomeIds()
    {
        std::set<size_t> ids;
        for (size_t i = Below(4); i > 0; --i) {
            ids.insert(Below(6) * 40);
        }
        return {"set", ids};
    }

    Wire SomeItems(const Field& field)
    {
        constexpr int positions[] = {0, 1, 2, 5, INT32_MAX};
        std::map<int, Wire> items;
        for (size_t i = Below(4); i > 0; --i) {
            items[OneOf(positions)] = Value(field);
        }
        return MapOf(items);
    }

    Wire SomeLists(const Table& table)
    {
        Wire names = Wire::array();
        for (const standin::List& list : table.lists) {
            if (Below(2) == 0) {
                names.push_back(list.name);
            }
        }
        return {"set", names};
    }

    Wire SomeColumns(const Table& table)
    {
        constexpr int64_t places[] = {0, 1, 2, 3, 4, int64_t{1} << 40, INT64_MAX - 1, INT64_MAX};
        Wire columns = Wire::object();
        for (const SchemaColumn& column : ColumnsOf(table).columns) {
            if (Below(3) == 0) {
                continue;
            }
            if (column.list != nullptr) {
                columns[column.name] = SomeItems(*column.field);
            } else if (column.field->kind == Kind::Set) {
                columns[column.name] = SomeIds();
            } else {
                columns[column.name] = Value(*column.field);
            }
        }
        if (!table.lists.empty() && Below(2) == 0) {
            columns[LISTS_COLUMN] = SomeLists(table);
        }
        if (Below(2) == 0) {
            columns[PLACE_COLUMN] = OneOf(places);
        } else if (Below(4) == 0) {
            columns[PLACE_COLUMN] = {"set", Wire::array()};
        }
        return columns;
    }

    Wire Mutations(const Table& table)
    {
        Wire mutations = Wire::array();
        for (const SchemaColumn& column : ColumnsOf(table).columns) {
            const char* const mutator = Below(2) == 0 ? "insert" : "delete";
            if (column.list != nullptr) {
                mutations.push_back({column.name, mutator, SomeItems(*column.field)});
            } else if (column.field->kind == Kind::Set) {
                mutations.push_back({column.name, mutator, SomeIds()});
            } else if (column.field->kind == Kind::Number && Below(4) == 0) {
                mutations.push_back({column.name, "+=", 1});
            }
        }
        if (!table.lists.empty()) {
            mutations.push_back(
                {LISTS_COLUMN, Below(2) == 0 ? "insert" : "delete", SomeLists(table)});
        }
        return mutations;
    }

    std::mt19937_64 random_;
};

// A row of the server's, as the tables hold it.
struct ExpectedRow {
    const Table* table;
    int64_t place;
    Row row;
    std::string id;
};

bool HaveKeyInCommon(const Row& one, const Row& other)
{
    return &one.Description() == &other.Description() &&
           std::ranges::any_of(one.Description().keys, [&](const standin::Key& key) {
               return sources::KeyBytes(one, key) == sources::KeyBytes(other, key);
           });
}

class ClusterModelTest : public PlatformTest {
protected:
    void SetUp() override
    {
        if (support::Run("command -v ovsdb-server ovsdb-tool").status != 0) {
            GTEST_SKIP() << "ovsdb-server and ovsdb-tool are not installed";
        }
        PlatformTest::SetUp();
        WatchPlatform(false);
        server_ = std::make_unique<OvsdbServer>(folder_);
        server_->Transact({{{"op", "insert"}, {"table", "if_phy"}, {"row", {{"if_index", 1}}}}});
        Open();
        Write({});
    }

    void Open()
    {
        source_ = std::make_unique<OvsdbSource>(server_->Remote());
        source_->Follow();
    }

    // One to four operations of the client, and the number of the transaction in row 1 of if_phy.
    // Returns false if the server refused them.
    bool Transact()
    {
        std::vector<Wire> operations;
        for (size_t i = 1 + random_.Below(4); i > 0; --i) {
            const Table& table = random_.AnyTable();
            const auto& ids = ids_[&table];
            if (ids.size() < 2 || (ids.size() < 8 && random_.Below(2) == 0)) {
                operations.push_back(random_.Insertion(table));
            } else {
                operations.push_back(random_.Change(table, random_.OneOf(ids)));
            }
        }
        const auto refusal = RefusalOf([&] { Write(operations); });
        EXPECT_TRUE(refusal.empty() || refusal.find("identical values") != std::string::npos ||
                    refusal.find("constraint") != std::string::npos)
            << refusal;
        return refusal.empty();
    }

    // This process writes a row that the tables show.
    void WriteShownRow()
    {
        const auto rows = RowsOf(random_.AnyTable());
        if (rows.empty()) {
            return;
        }
        const auto kind = random_.Below(3) == 0 ? WriteKind::Delete : WriteKind::Update;
        const std::string refusal = RefusalOf([&] {
            source_->Commit({{kind, random_.OneOf(rows)}});
        });
        // A row that is left out has the key that this one gets in its usual form.
        EXPECT_TRUE(refusal.empty() || refusal.find("identical values") != std::string::npos)
            << refusal;
        Write({});
    }

    void ExpectTablesAsOnServer()
    {
        const auto rows = AllRows();
        EXPECT_TRUE(std::ranges::is_permutation(
            rows, expected_, {}, [](const Row& row) { return row; }, &ExpectedRow::row));
        const Table* table = nullptr;
        int64_t last = 0;
        for (const Row& row : rows) {
            const auto found = std::ranges::find(expected_, row, &ExpectedRow::row);
            if (found != expected_.end()) {
                EXPECT_TRUE(found->table != table || found->place >= last)
                    << standin::RowName(row, found->table->keys.front());
                table = found->table;
                last = found->place;
            }
        }
    }

    // The tables that a new source fills.
    void ExpectTablesOfNewSource()
    {
        const auto followed = AllRows();
        source_.reset();
        standin::Reset();
        Open();
        EXPECT_TRUE(std::ranges::is_permutation(AllRows(), followed));
        ExpectTablesAsOnServer();
    }

    RandomClient random_{std::random_device()()};

private:
    // Carries out the operations, reads what the server then has, and waits until it is here.
    void Write(std::vector<Wire> operations)
    {
        operations.push_back({{"op", "update"},
                              {"table", "if_phy"},
                              {"where", Wire::array()},
                              {"row", {{"speed", ++transactions_}}}});
        for (const char* name : MODEL_TABLES) {
            operations.push_back({{"op", "select"}, {"table", name}, {"where", Wire::array()}});
        }
        const Wire results = server_->Transact(operations);
        size_t result = operations.size() - std::size(MODEL_TABLES);
        std::vector<ExpectedRow> all = {
            {&Phy(1).Description(), INT64_MAX, Phy(1, transactions_), ""}};
        for (const char* name : MODEL_TABLES) {
            const Table& table = *sources::ovsdb::FindTable(name);
            ids_[&table].clear();
            for (const Wire& columns : results.at(result++).at("rows")) {
                const std::string id = columns.at("_uuid").at(1);
                ids_[&table].push_back(id);
                try {
                    all.push_back({&table, sources::ovsdb::PlaceOf(columns),
                                   sources::ovsdb::RowFromWire(table, columns), id});
                } catch (const standin::Error&) {  // can't be held
                }
            }
        }
        LeaveOutTakenKeys(all);
        EXPECT_TRUE(Eventually([&] { return Speed(1) == transactions_; }));
    }

    void LeaveOutTakenKeys(std::vector<ExpectedRow>& all)
    {
        std::ranges::sort(all, {}, [](const ExpectedRow& row) {
            return std::tuple(row.place, sources::PrimaryKey(row.row), std::string_view(row.id));
        });
        expected_.clear();
        for (ExpectedRow& row : all) {
            if (std::ranges::none_of(expected_, [&](const ExpectedRow& other) {
                    return HaveKeyInCommon(row.row, other.row);
                })) {
                expected_.push_back(std::move(row));
            }
        }
    }

    const Folder folder_;
    std::unique_ptr<OvsdbServer> server_;
    std::unique_ptr<OvsdbSource> source_;
    std::map<const Table*, std::vector<std::string>> ids_;
    std::vector<ExpectedRow> expected_;
    uint64_t transactions_ = 0;
};

// For three seconds, or as many as TARND_MODEL_SECONDS says; from seed 1, or TARND_MODEL_SEED.
TEST_F(ClusterModelTest, FollowedTablesEqualNewOnesAfterEachTransaction)
{
    const char* const seedText = std::getenv("TARND_MODEL_SEED");
    const auto seed =
        static_cast<unsigned>(seedText != nullptr ? std::strtoul(seedText, nullptr, 10) : 1);
    random_ = RandomClient(seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    const char* const asked = std::getenv("TARND_MODEL_SECONDS");
    const std::chrono::seconds length(asked != nullptr ? std::atoi(asked) : 3);
    size_t done = 0;
    size_t refused = 0;
    for (const auto end = std::chrono::steady_clock::now() + length;
         std::chrono::steady_clock::now() < end;) {
        if (random_.Below(8) == 0) {
            WriteShownRow();
        } else if (Transact()) {
            ++done;
        } else {
            ++refused;
        }
        ExpectTablesAsOnServer();
        if (random_.Below(50) == 0) {
            ExpectTablesOfNewSource();
        }
        TakeLog();
        ASSERT_FALSE(HasFailure()) << "transaction " << done + refused;
    }
    EXPECT_GT(done, refused / 4);
    RecordProperty("transactions", std::to_string(done));
    std::printf("%zu transactions, %zu refused\n", done, refused);
}

}  // namespace
