// What a fuzz target of a whole conversion stands on: a folder of its own
// under the system's temporary folder, emptied at the start, with a registry
// and a fixed clock; and a way to write files there.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "base/Clock.h"
#include "config/SqliteRegistryStore.h"

namespace hifx::fuzz {

inline void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

struct ExchangeSite {
  explicit ExchangeSite(const std::string& name)
      : folder(std::filesystem::temp_directory_path() /
               ("hifx-fuzz-" + name + "-" + std::to_string(::getpid()))) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    store = std::make_unique<SqliteRegistryStore>(folder / "registry.db");
  }
  std::filesystem::path folder;
  FixedClock clock{CivilTime{2024, 2, 29, 13, 5, 9}};
  std::unique_ptr<SqliteRegistryStore> store;
};

}  // namespace hifx::fuzz
