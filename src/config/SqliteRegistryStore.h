// The registry in a SQLite file, for machines without one. Every write is one
// transaction; the file is in WAL mode with a busy timeout, so two processes
// on one site folder wait for each other instead of corrupting it. The file is
// readable by its owner only: the site's login passwords are kept in clear.
#pragma once

#include <filesystem>
#include <functional>

#include "config/IRegistryStore.h"

struct sqlite3;
struct sqlite3_stmt;

namespace hifx {

class SqliteRegistryStore : public IRegistryStore {
 public:
  // Opens or creates the file. Raises a failure naming the file when it can't
  // be opened or isn't a registry database; an existing file is never
  // replaced or emptied.
  explicit SqliteRegistryStore(const std::filesystem::path& file, int busyTimeoutMs = 10000);
  ~SqliteRegistryStore() override;
  SqliteRegistryStore(const SqliteRegistryStore&) = delete;
  SqliteRegistryStore& operator=(const SqliteRegistryStore&) = delete;

  bool KeyExists(uint32_t hive, const KeyNames& key) override;
  bool CreateKey(uint32_t hive, const KeyNames& key) override;
  bool SetValue(uint32_t hive, const KeyNames& key, std::string_view name, uint32_t type,
                std::string_view data) override;
  std::optional<RegValue> GetValue(uint32_t hive, const KeyNames& key,
                                   std::string_view name) override;
  bool DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) override;
  std::vector<std::string> SubKeys(uint32_t hive, const KeyNames& key) override;
  std::vector<RegValue> Values(uint32_t hive, const KeyNames& key) override;
  void BeginReads() override;
  void EndReads() override;

  const std::filesystem::path& File() const { return file_; }

 private:
  class Statement;
  // Id of the key, 0 when missing; with create, missing keys are made.
  int64_t FindKey(uint32_t hive, const KeyNames& key, bool create);
  bool Exec(const char* sql);
  // SQLite's own check of every page of the file: what is wrong, or empty.
  std::string Damage();
  bool InTransaction(const std::function<bool()>& work);
  sqlite3_stmt* Prepared(int which, const char* sql);

  std::filesystem::path file_;
  sqlite3* db_ = nullptr;
  std::vector<sqlite3_stmt*> statements_;
  int readDepth_ = 0;  // BeginReads not yet ended
};

}  // namespace hifx
