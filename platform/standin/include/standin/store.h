// The interface for writing to the stand-in, as other components of a device write to its
// configuration database.
//
// There is one database in the process. Any thread may call. Transactions are serialised and
// atomic: a read that starts after a commit sees all of its writes.
//
// Rows of a table are ordered by rank, rows of equal rank by insertion. Scans follow this order.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <standin/tables.h>

namespace standin {

class StoredRow;

// The text has the table, the key or field, and the reason of the refusal.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The contents of one row, detached from the database. Setters throw Error for an unknown field, a
// value out of range or too long, or one of the wrong kind.
class Row {
public:
    explicit Row(const Table& table);
    explicit Row(std::string_view table);

    Row& Set(std::string_view field, uint64_t number);        // Number, Ipv4
    Row& Set(std::string_view field, std::string_view text);  // Text
    Row& SetBytes(std::string_view field,
                  std::span<const uint8_t> bytes);  // Mac, Set: exactly its width
    Row& AddToSet(std::string_view field, uint32_t first, uint32_t last);  // Set: turns bits on

    // Creates an empty list. A list that was not created is absent, which differs from empty.
    Row& MakeList(std::string_view list);
    // Appends an item, with field values in the order of the table definition; creates the list if
    // it is absent.
    Row& AddItem(std::string_view list, std::span<const uint64_t> values);

    // The rank determines the place of a new row: before all rows of higher rank. Updating or
    // replacing a row does not change its place. 0 by default; not part of the contents.
    Row& SetRank(uint64_t rank);
    uint64_t Rank() const { return rank_; }

    uint64_t Number(std::string_view field) const;  // Number, Ipv4
    std::string_view Text(std::string_view field) const;
    std::span<const uint8_t> Bytes(const Field& field) const;
    // The items, contiguous; no value if the list is absent. list: index in Table::lists.
    std::optional<std::span<const uint8_t>> Items(size_t list) const;

    const Table& Description() const { return *table_; }
    std::span<const uint8_t> Record() const { return record_; }

    friend bool operator==(const Row& one, const Row& other)
    {
        return one.table_ == other.table_ && one.record_ == other.record_ &&
               one.lists_ == other.lists_;
    }

private:
    friend Row Detached(const Table& table, const StoredRow& row);

    const Table* table_;
    uint64_t rank_ = 0;
    std::vector<uint8_t> record_;
    std::vector<std::optional<std::vector<uint8_t>>> lists_;
};

// Names the row in messages, by the fields of a key: "if_base: if_index 5" or
// "Fib.ConfigIpv4Fwd: destAddr 10.0.0.0, prefixLen 8".
std::string RowName(const Row& row, const Key& key);

// "192.0.2.1" for 0xC0000201.
std::string Ipv4ToText(uint32_t address);

// Several writes, executed atomically. Commit executes them in order and throws Error for the first
// one that is refused; no write takes effect then. A transaction that is not committed has no
// effect.
class Transaction {
public:
    void Insert(Row row);         // refused if a row has one of its keys
    void Update(Row row);         // refused if no row has its primary key
    void Replace(Row row);        // inserts, or replaces the row with its key
    void Delete(const Row& key);  // only the primary key is used; refused if no row has it
    void Commit();

    bool Empty() const { return writes_.empty(); }

private:
    enum class Operation : uint8_t { Insert, Delete, Update, Replace };  // as ORM_EVENT_*
    struct Write {
        Operation operation;
        Row row;
    };
    std::vector<Write> writes_;
};

// Finds the row with the primary key of key.
std::optional<Row> Find(const Row& key);

// Calls the function for every row of a table, in the table's order, by a scan.
void ForEachRow(const Table& table, const std::function<void(const Row&)>& onRow);
size_t CountRows(const Table& table);

// Clears every table without notifying subscribers. For tests and benchmarks.
void Reset();

}  // namespace standin
