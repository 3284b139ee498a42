#include "stores.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace bench {

namespace {

void Check(bool works, const std::string& what)
{
    if (!works) {
        throw std::runtime_error(what);
    }
}

}  // namespace

Array::Array(uint32_t rows)
{
    rows_.reserve(rows);
    for (uint32_t row = 1; row <= rows; row++) {
        rows_.push_back(InterfaceRecord(row));
    }
}

Lmdb::Lmdb(uint32_t rows)
{
    constexpr size_t MAP_SIZE = size_t{1} << 30;

    // /dev/shm is in memory. The file is unlinked before it is used.
    char folder[] = "/dev/shm/tarnd_bench.XXXXXX";
    Check(mkdtemp(folder) != nullptr, "cannot create a directory for LMDB");
    Check(mdb_env_create(&environment_) == 0 && mdb_env_set_mapsize(environment_, MAP_SIZE) == 0 &&
              mdb_env_open(environment_, folder, MDB_NOSYNC | MDB_NOTLS, 0600) == 0,
          "LMDB does not open");
    std::filesystem::remove_all(folder);

    MDB_txn* writing = nullptr;
    Check(mdb_txn_begin(environment_, nullptr, 0, &writing) == 0 &&
              mdb_dbi_open(writing, nullptr, MDB_CREATE | MDB_INTEGERKEY, &table_) == 0,
          "LMDB does not begin");
    for (uint32_t row = 1; row <= rows; row++) {
        QRB_IF_BASE_S record = InterfaceRecord(row);
        MDB_val key = {sizeof(row), &row};
        MDB_val value = {sizeof(record), &record};
        Check(mdb_put(writing, table_, &key, &value, MDB_APPEND) == 0, "LMDB does not write");
    }
    Check(mdb_txn_commit(writing) == 0 &&
              mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &reading_) == 0,
          "LMDB does not commit");
}

Lmdb::~Lmdb()
{
    mdb_txn_abort(reading_);
    mdb_env_close(environment_);
}

bool Lmdb::Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
{
    MDB_val key = {sizeof(ifIndex), &ifIndex};
    MDB_val value;
    if (mdb_get(reading_, table_, &key, &value) != 0) {
        return false;
    }
    std::memcpy(record, value.mv_data, sizeof(*record));
    return true;
}

Sqlite::Sqlite(uint32_t rows)
{
    Check(sqlite3_open(":memory:", &database_) == SQLITE_OK, "SQLite does not open");
    Run("create table if_base (if_index integer primary key, if_type integer, record blob)");
    Run("begin");
    sqlite3_stmt* insert = Prepared("insert into if_base values (?, ?, ?)");
    for (uint32_t row = 1; row <= rows; row++) {
        const QRB_IF_BASE_S record = InterfaceRecord(row);
        sqlite3_bind_int(insert, 1, static_cast<int>(row));
        sqlite3_bind_int(insert, 2, record.if_type);
        sqlite3_bind_blob(insert, 3, &record, sizeof(record), nullptr);
        Check(sqlite3_step(insert) == SQLITE_DONE, "SQLite does not write");
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    Run("commit");
    read_ = Prepared("select record from if_base where if_index = ?");
    scan_ = Prepared("select if_index, if_type from if_base");
    Run("begin");
}

Sqlite::~Sqlite()
{
    sqlite3_finalize(read_);
    sqlite3_finalize(scan_);
    sqlite3_close(database_);
}

bool Sqlite::Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
{
    sqlite3_bind_int(read_, 1, static_cast<int>(ifIndex));
    const bool found = sqlite3_step(read_) == SQLITE_ROW;
    if (found) {
        std::memcpy(record, sqlite3_column_blob(read_, 0), sizeof(*record));
    }
    sqlite3_reset(read_);
    return found;
}

void Sqlite::Run(const char* statement)
{
    Check(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
}

sqlite3_stmt* Sqlite::Prepared(const char* statement)
{
    sqlite3_stmt* prepared = nullptr;
    Check(sqlite3_prepare_v2(database_, statement, -1, &prepared, nullptr) == SQLITE_OK, statement);
    return prepared;
}

}  // namespace bench
