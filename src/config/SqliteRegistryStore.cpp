#include "config/SqliteRegistryStore.h"

#include <sqlite3.h>

#include "base/CaseBlind.h"
#include "base/Failure.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#endif

namespace hifx {
namespace {

// Marks a SQLite file as ours, so another program's database is never taken
// for a registry and changed.
constexpr int kApplicationId = 0x48494658;  // "HIFX"

enum StatementId {
  kFindKey,
  kInsertKey,
  kUpsertValue,
  kGetValue,
  kDeleteValue,
  kSubKeys,
  kValues,
  kStatementCount
};

std::string Fold(std::string_view name) { return UpperCase(name); }

void BindText(sqlite3_stmt* s, int index, std::string_view text) {
  sqlite3_bind_blob(s, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

std::string ColumnBytes(sqlite3_stmt* s, int column) {
  const void* data = sqlite3_column_blob(s, column);
  const int size = sqlite3_column_bytes(s, column);
  return data == nullptr ? std::string() : std::string(static_cast<const char*>(data), static_cast<size_t>(size));
}

// Resets a cached statement when the scope ends, whatever happens.
struct ResetOnExit {
  sqlite3_stmt* statement;
  ~ResetOnExit() {
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
  }
};

Failure OpenFailure(const std::filesystem::path& file, const std::string& why) {
  return Failure(FailureKind::BadSite, fail::kPathAccess, {}, file, why);
}

}  // namespace

SqliteRegistryStore::SqliteRegistryStore(const std::filesystem::path& file, int busyTimeoutMs)
    : file_(file), statements_(kStatementCount, nullptr) {
#ifndef _WIN32
  // Made readable by its owner only before SQLite ever opens it; its journal
  // files take the same permissions.
  // The site's passwords are in it: a file left readable by others is
  // tightened.
  const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) throw OpenFailure(file, std::string("cannot open the settings database (") + std::strerror(errno) + ")");
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    throw OpenFailure(file, "the settings database is not a plain file");
  }
  if ((st.st_mode & 077) != 0) ::fchmod(fd, st.st_mode & 0700);
  ::close(fd);
#endif
  if (sqlite3_open_v2(file.string().c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                      nullptr) != SQLITE_OK) {
    const std::string why = db_ != nullptr ? sqlite3_errmsg(db_) : "cannot open";
    sqlite3_close(db_);
    db_ = nullptr;
    throw OpenFailure(file, why);
  }
  sqlite3_busy_timeout(db_, busyTimeoutMs);
  auto fail = [&](const std::string& why) {
    sqlite3_close(db_);
    db_ = nullptr;
    return OpenFailure(file, why);
  };
  sqlite3_stmt* probe = nullptr;
  if (sqlite3_prepare_v2(db_, "PRAGMA application_id", -1, &probe, nullptr) != SQLITE_OK) {
    throw fail(std::string("not a settings database (") + sqlite3_errmsg(db_) + ")");
  }
  int step = sqlite3_step(probe);
  const int applicationId = step == SQLITE_ROW ? sqlite3_column_int(probe, 0) : -1;
  sqlite3_finalize(probe);
  if (step != SQLITE_ROW) {
    const bool notDatabase = sqlite3_errcode(db_) == SQLITE_NOTADB;
    throw fail(std::string(notDatabase ? "not a settings database (" : "cannot read the settings database (") +
               sqlite3_errmsg(db_) + ")");
  }
  if (applicationId != kApplicationId) {
    sqlite3_stmt* tables = nullptr;
    sqlite3_prepare_v2(db_, "SELECT count(*) FROM sqlite_master", -1, &tables, nullptr);
    step = sqlite3_step(tables);
    const int count = step == SQLITE_ROW ? sqlite3_column_int(tables, 0) : -1;
    sqlite3_finalize(tables);
    if (count != 0) throw fail("not a settings database (it holds another program's tables)");
  }
  if (const std::string damage = Damage(); !damage.empty()) {
    throw fail("the settings database is damaged (" + damage +
               "); restore it from a copy, or load the site's distribution file into a new site folder");
  }
  if (!Exec("PRAGMA journal_mode=WAL") || !Exec("PRAGMA synchronous=NORMAL")) {
    throw fail(std::string("cannot use the settings database (") + sqlite3_errmsg(db_) + ")");
  }
  // A file that carries the mark has its tables already: a program that only
  // reads the settings writes nothing, and so leaves nothing to sync or to
  // checkpoint when it closes.
  if (applicationId == kApplicationId) return;
  const bool ready = InTransaction([&] {
    return Exec(
               "CREATE TABLE IF NOT EXISTS reg_keys("
               " id INTEGER PRIMARY KEY, hive INTEGER NOT NULL, parent INTEGER NOT NULL,"
               " name BLOB NOT NULL, fold BLOB NOT NULL, UNIQUE(parent, fold))") &&
           Exec(
               "CREATE TABLE IF NOT EXISTS reg_values("
               " id INTEGER PRIMARY KEY, key_id INTEGER NOT NULL, name BLOB NOT NULL,"
               " fold BLOB NOT NULL, type INTEGER NOT NULL, data BLOB NOT NULL,"
               " UNIQUE(key_id, fold))") &&
           Exec(("PRAGMA application_id=" + std::to_string(kApplicationId)).c_str());
  });
  if (!ready) {
    throw fail(std::string("cannot prepare the settings database (") + sqlite3_errmsg(db_) + ")");
  }
}

SqliteRegistryStore::~SqliteRegistryStore() {
  for (sqlite3_stmt* s : statements_) sqlite3_finalize(s);
  sqlite3_close(db_);
}

std::string SqliteRegistryStore::Damage() {
  sqlite3_stmt* check = nullptr;
  if (sqlite3_prepare_v2(db_, "PRAGMA integrity_check(1)", -1, &check, nullptr) != SQLITE_OK) {
    return sqlite3_errmsg(db_);
  }
  std::string damage;
  if (sqlite3_step(check) == SQLITE_ROW) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(check, 0));
    damage = text == nullptr ? "no answer to the check" : text;
    if (damage == "ok") damage.clear();
  } else {
    damage = sqlite3_errmsg(db_);
  }
  sqlite3_finalize(check);
  return damage;
}

bool SqliteRegistryStore::Exec(const char* sql) {
  return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteRegistryStore::InTransaction(const std::function<bool()>& work) {
  // A write among reads taken together ends their snapshot, which starts
  // again after it.
  const bool reading = readDepth_ > 0 && sqlite3_get_autocommit(db_) == 0;
  if (reading) Exec("COMMIT");
  bool done = false;
  if (Exec("BEGIN IMMEDIATE")) {
    done = work() && Exec("COMMIT");
    if (!done) Exec("ROLLBACK");
  }
  if (reading) Exec("BEGIN");
  return done;
}

void SqliteRegistryStore::BeginReads() {
  if (readDepth_++ == 0) Exec("BEGIN");
}

void SqliteRegistryStore::EndReads() {
  if (readDepth_ > 0 && --readDepth_ == 0 && sqlite3_get_autocommit(db_) == 0) Exec("COMMIT");
}

sqlite3_stmt* SqliteRegistryStore::Prepared(int which, const char* sql) {
  sqlite3_stmt*& s = statements_[static_cast<size_t>(which)];
  if (s == nullptr && sqlite3_prepare_v2(db_, sql, -1, &s, nullptr) != SQLITE_OK) {
    s = nullptr;
  }
  return s;
}

int64_t SqliteRegistryStore::FindKey(uint32_t hive, const KeyNames& key, bool create) {
  // Keys right under a hive hang from the hive's own negative id.
  int64_t id = -static_cast<int64_t>(hive);
  for (const std::string& name : key) {
    sqlite3_stmt* find = Prepared(kFindKey, "SELECT id FROM reg_keys WHERE parent=?1 AND fold=?2");
    if (find == nullptr) return 0;
    int64_t child = 0;
    {
      ResetOnExit reset{find};
      sqlite3_bind_int64(find, 1, id);
      BindText(find, 2, Fold(name));
      const int rc = sqlite3_step(find);
      if (rc == SQLITE_ROW) {
        child = sqlite3_column_int64(find, 0);
      } else if (rc != SQLITE_DONE) {
        return 0;
      }
    }
    if (child == 0) {
      if (!create) return 0;
      sqlite3_stmt* insert = Prepared(
          kInsertKey, "INSERT INTO reg_keys(hive, parent, name, fold) VALUES(?1, ?2, ?3, ?4)");
      if (insert == nullptr) return 0;
      ResetOnExit reset{insert};
      sqlite3_bind_int64(insert, 1, hive);
      sqlite3_bind_int64(insert, 2, id);
      BindText(insert, 3, name);
      BindText(insert, 4, Fold(name));
      if (sqlite3_step(insert) != SQLITE_DONE) return 0;
      child = sqlite3_last_insert_rowid(db_);
    }
    id = child;
  }
  return id;
}

bool SqliteRegistryStore::KeyExists(uint32_t hive, const KeyNames& key) {
  return FindKey(hive, key, false) != 0;
}

bool SqliteRegistryStore::CreateKey(uint32_t hive, const KeyNames& key) {
  return InTransaction([&] { return FindKey(hive, key, true) != 0; });
}

bool SqliteRegistryStore::SetValue(uint32_t hive, const KeyNames& key, std::string_view name,
                                   uint32_t type, std::string_view data) {
  return InTransaction([&] {
    const int64_t id = FindKey(hive, key, true);
    if (id == 0) return false;
    // An existing value keeps its place in the order and its name's case.
    sqlite3_stmt* s = Prepared(kUpsertValue,
                               "INSERT INTO reg_values(key_id, name, fold, type, data)"
                               " VALUES(?1, ?2, ?3, ?4, ?5) ON CONFLICT(key_id, fold)"
                               " DO UPDATE SET type=excluded.type, data=excluded.data");
    if (s == nullptr) return false;
    ResetOnExit reset{s};
    sqlite3_bind_int64(s, 1, id);
    BindText(s, 2, name);
    BindText(s, 3, Fold(name));
    sqlite3_bind_int64(s, 4, type);
    BindText(s, 5, data);
    return sqlite3_step(s) == SQLITE_DONE;
  });
}

std::optional<RegValue> SqliteRegistryStore::GetValue(uint32_t hive, const KeyNames& key,
                                                      std::string_view name) {
  const int64_t id = FindKey(hive, key, false);
  if (id == 0) return std::nullopt;
  sqlite3_stmt* s =
      Prepared(kGetValue, "SELECT name, type, data FROM reg_values WHERE key_id=?1 AND fold=?2");
  if (s == nullptr) return std::nullopt;
  ResetOnExit reset{s};
  sqlite3_bind_int64(s, 1, id);
  BindText(s, 2, Fold(name));
  if (sqlite3_step(s) != SQLITE_ROW) return std::nullopt;
  return RegValue{ColumnBytes(s, 0), static_cast<uint32_t>(sqlite3_column_int64(s, 1)),
                  ColumnBytes(s, 2)};
}

bool SqliteRegistryStore::DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) {
  return InTransaction([&] {
    const int64_t id = FindKey(hive, key, false);
    if (id == 0) return false;
    sqlite3_stmt* s = Prepared(kDeleteValue, "DELETE FROM reg_values WHERE key_id=?1 AND fold=?2");
    if (s == nullptr) return false;
    ResetOnExit reset{s};
    sqlite3_bind_int64(s, 1, id);
    BindText(s, 2, Fold(name));
    return sqlite3_step(s) == SQLITE_DONE && sqlite3_changes(db_) > 0;
  });
}

std::vector<std::string> SqliteRegistryStore::SubKeys(uint32_t hive, const KeyNames& key) {
  std::vector<std::string> names;
  const int64_t id = FindKey(hive, key, false);
  if (id == 0) return names;
  sqlite3_stmt* s = Prepared(kSubKeys, "SELECT name FROM reg_keys WHERE parent=?1 ORDER BY id");
  if (s == nullptr) return names;
  ResetOnExit reset{s};
  sqlite3_bind_int64(s, 1, id);
  while (sqlite3_step(s) == SQLITE_ROW) names.push_back(ColumnBytes(s, 0));
  return names;
}

std::vector<RegValue> SqliteRegistryStore::Values(uint32_t hive, const KeyNames& key) {
  std::vector<RegValue> values;
  const int64_t id = FindKey(hive, key, false);
  if (id == 0) return values;
  sqlite3_stmt* s =
      Prepared(kValues, "SELECT name, type, data FROM reg_values WHERE key_id=?1 ORDER BY id");
  if (s == nullptr) return values;
  ResetOnExit reset{s};
  sqlite3_bind_int64(s, 1, id);
  while (sqlite3_step(s) == SQLITE_ROW) {
    values.push_back(RegValue{ColumnBytes(s, 0), static_cast<uint32_t>(sqlite3_column_int64(s, 1)),
                              ColumnBytes(s, 2)});
  }
  return values;
}

}  // namespace hifx
