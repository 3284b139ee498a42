// The writing side of the stand-in: what the rest of a device does to its configuration database.
//
// There is one database in the process. Any thread may call; transactions are carried out one after
// another, and each becomes visible at one moment: a read that starts afterwards sees all of it.
//
// A table is ordered by rank, and rows of one rank by their insertion. Scans follow this order.
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

// Text for a person: table, key or field, and the reason of the refusal.
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

    // A list that was never made is absent, which is not the same as empty.
    Row& MakeList(std::string_view list);
    // Adds an item at the end (and makes the list): its field values in the description's order.
    Row& AddItem(std::string_view list, std::span<const uint64_t> values);

    // Where the row enters its table: in front of all rows of higher rank. A row that is updated or
    // replaced keeps its place. 0 unless set; not part of the contents.
    Row& SetRank(uint32_t rank);
    uint32_t Rank() const { return rank_; }

    uint64_t Number(std::string_view field) const;  // Number, Ipv4
    std::string_view Text(std::string_view field) const;
    std::span<const uint8_t> Bytes(const Field& field) const;
    // Items one behind another, or nothing where the list is absent. list: its place in
    // Table::lists.
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
    uint32_t rank_ = 0;
    std::vector<uint8_t> record_;
    std::vector<std::optional<std::vector<uint8_t>>> lists_;
};

// The row for messages, by the fields of a key: "if_base: if_index 5" or
// "Fib.ConfigIpv4Fwd: destAddr 10.0.0.0, prefixLen 8".
std::string RowName(const Row& row, const Key& key);

// "192.0.2.1" for 0xC0000201.
std::string Ipv4ToText(uint32_t address);

// Several writes, all or nothing. Commit carries them out in order and throws Error for the first
// that is refused, whereupon nothing has changed. A transaction that was never committed changes
// nothing.
class Transaction {
public:
    void Insert(Row row);   // refused where a row has one of its keys
    void Update(Row row);   // refused where no row has its primary key
    void Replace(Row row);  // inserts, or puts the row in the old one's place
    void Delete(
        const Row& key);  // only the primary key's fields count; refused where no row has it
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

// The row with the primary key of key, if there is one.
std::optional<Row> Find(const Row& key);

// Every row of a table in the table's order, by a scan.
void ForEachRow(const Table& table, const std::function<void(const Row&)>& onRow);
size_t CountRows(const Table& table);

// Empties every table without messages to subscribers. For tests and benchmarks that start over.
void Reset();

}  // namespace standin
