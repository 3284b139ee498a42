// Other stores for the "if_base" rows, with which the stand-in is compared.
//
// Each is used in its fastest way: LMDB and SQLite with one read transaction for the whole
// measurement.
#pragma once

#include <lmdb.h>
#include <sqlite3.h>

#include <string>
#include <unordered_map>
#include <vector>

#include <tsl/robin_map.h>

#include "bench_rows.h"

namespace bench {

template <typename Map>
class MapStore {
public:
    explicit MapStore(uint32_t rows)
    {
        rows_.reserve(rows);
        for (uint32_t row = 1; row <= rows; row++) {
            rows_.emplace(row, InterfaceRecord(row));
        }
    }
    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
    {
        const auto found = rows_.find(ifIndex);
        if (found == rows_.end()) {
            return false;
        }
        *record = found->second;
        return true;
    }

private:
    Map rows_;
};
using FlatHash = MapStore<tsl::robin_map<uint32_t, QRB_IF_BASE_S>>;
using ChainedHash = MapStore<std::unordered_map<uint32_t, QRB_IF_BASE_S>>;

class Array {
public:
    explicit Array(uint32_t rows);
    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
    {
        *record = rows_[ifIndex - 1];
        return true;
    }
    template <typename OnRow>
    void Scan(OnRow onRow) const
    {
        for (const QRB_IF_BASE_S& row : rows_) {
            onRow(row.if_index, row.if_type);
        }
    }

private:
    std::vector<QRB_IF_BASE_S> rows_;
};

class Lmdb {
public:
    explicit Lmdb(uint32_t rows);
    ~Lmdb();
    Lmdb(const Lmdb&) = delete;
    Lmdb& operator=(const Lmdb&) = delete;

    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const;
    template <typename OnRow>
    void Scan(OnRow onRow) const
    {
        MDB_cursor* cursor = nullptr;
        mdb_cursor_open(reading_, table_, &cursor);
        MDB_val key;
        MDB_val value;
        while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
            const auto* row = static_cast<const QRB_IF_BASE_S*>(value.mv_data);
            onRow(row->if_index, row->if_type);
        }
        mdb_cursor_close(cursor);
    }

private:
    MDB_env* environment_ = nullptr;
    MDB_txn* reading_ = nullptr;
    MDB_dbi table_ = 0;
};

class Sqlite {
public:
    explicit Sqlite(uint32_t rows);
    ~Sqlite();
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const;
    template <typename OnRow>
    void Scan(OnRow onRow) const
    {
        while (sqlite3_step(scan_) == SQLITE_ROW) {
            onRow(static_cast<uint32_t>(sqlite3_column_int(scan_, 0)),
                  static_cast<uint16_t>(sqlite3_column_int(scan_, 1)));
        }
        sqlite3_reset(scan_);
    }

private:
    void Run(const char* statement);
    sqlite3_stmt* Prepared(const char* statement);

    sqlite3* database_ = nullptr;
    sqlite3_stmt* read_ = nullptr;
    sqlite3_stmt* scan_ = nullptr;
};

// Returns the store with this number of rows. Only one store of each kind exists at a time.
template <typename Store>
Store& Filled(uint32_t rows)
{
    static uint32_t filled = 0;
    static std::unique_ptr<Store> store;
    if (filled != rows) {
        store.reset();
        store = std::make_unique<Store>(rows);
        filled = rows;
    }
    return *store;
}

}  // namespace bench
