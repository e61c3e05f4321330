// What a fuzz target of a whole conversion stands on: a folder of its own
// under the system's temporary folder, emptied at the start, with a registry
// and a fixed clock; a way to write files there; the example site's maps and
// settings; and a way to empty the registry between inputs.
#pragma once

#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "base/Clock.h"
#include "base/Shell.h"
#include "config/SqliteRegistryStore.h"
#include "config/clsDist.h"

namespace hifx::fuzz {

inline void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

// Takes every key and value out of the registry file of a store, through a
// connection of its own kept open for the next time; the store's cached
// statements stay good.
inline void EmptyRegistry(const std::filesystem::path& file) {
  // Closed at exit, before the leak check.
  static struct Connections {
    std::map<std::filesystem::path, sqlite3*> open;
    ~Connections() {
      for (auto& entry : open) sqlite3_close(entry.second);
    }
  } connections;
  sqlite3*& db = connections.open[file];
  if (db == nullptr && sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
    std::fprintf(stderr, "fuzz: cannot open the registry %s\n", file.c_str());
    std::abort();
  }
  if (sqlite3_exec(db, "BEGIN; DELETE FROM reg_values; DELETE FROM reg_keys; COMMIT;", nullptr, nullptr,
                   nullptr) != SQLITE_OK) {
    std::fprintf(stderr, "fuzz: cannot empty the registry %s: %s\n", file.c_str(), sqlite3_errmsg(db));
    std::abort();
  }
}

struct ExchangeSite {
  explicit ExchangeSite(const std::string& name)
      : folder(std::filesystem::temp_directory_path() /
               ("hifx-fuzz-" + name + "-" + std::to_string(::getpid()))) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    store = std::make_unique<SqliteRegistryStore>(folder / "registry.db");
  }
  // The maps and settings of examples/site.dst, as `hifx dist load` puts them
  // in a site: route maps Billing (fixed columns), BillingCsv (delimited),
  // ReRead, E5000 and Mvrs, their reading maps, Orphans, and the site's lists.
  void LoadExampleSite() {
    SilentShell shell;
    if (!clsDist(*store, shell, folder).LoadDist(HIFX_EXAMPLES_DIR "/site.dst")) {
      std::fprintf(stderr, "fuzz: cannot load %s\n", HIFX_EXAMPLES_DIR "/site.dst");
      std::abort();
    }
  }
  void EmptyRegistry() { fuzz::EmptyRegistry(folder / "registry.db"); }

  std::filesystem::path folder;
  FixedClock clock{CivilTime{2024, 2, 29, 13, 5, 9}};
  std::unique_ptr<SqliteRegistryStore> store;
};

}  // namespace hifx::fuzz
