// The registry store a test works on: the site's own store of this platform,
// private to the test. Off Windows it is a SQLite file in the test's folder.
// On Windows it is the real registry: every call of the test's store sees
// HKEY_LOCAL_MACHINE moved to a scratch key of its own under
// HKEY_CURRENT_USER, so tests neither need the rights of an administrator nor
// meet each other's settings, and the key goes when the store goes.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>

#include <atomic>
#include <string>

#include "config/WinRegistryStore.h"
#else
#include "config/SqliteRegistryStore.h"
#endif

namespace hifx::test {

#ifdef _WIN32

class TestRegistryStore final : public IRegistryStore {
 public:
  explicit TestRegistryStore(const std::filesystem::path& /*folder*/) {
    static std::atomic<int> count{0};
    name_ = "Software\\hifx-tests\\" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    RegCreateKeyExA(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                    nullptr, &scratch_, nullptr);
  }
  ~TestRegistryStore() override {
    RegCloseKey(scratch_);
    RegDeleteTreeA(HKEY_CURRENT_USER, name_.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, name_.c_str());
  }
  TestRegistryStore(const TestRegistryStore&) = delete;
  TestRegistryStore& operator=(const TestRegistryStore&) = delete;

  bool KeyExists(uint32_t hive, const KeyNames& key) override {
    const Moved moved(scratch_);
    return store_.KeyExists(hive, key);
  }
  bool CreateKey(uint32_t hive, const KeyNames& key) override {
    const Moved moved(scratch_);
    return store_.CreateKey(hive, key);
  }
  bool SetValue(uint32_t hive, const KeyNames& key, std::string_view name, uint32_t type,
                std::string_view data) override {
    const Moved moved(scratch_);
    return store_.SetValue(hive, key, name, type, data);
  }
  std::optional<RegValue> GetValue(uint32_t hive, const KeyNames& key, std::string_view name) override {
    const Moved moved(scratch_);
    return store_.GetValue(hive, key, name);
  }
  bool DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) override {
    const Moved moved(scratch_);
    return store_.DeleteValue(hive, key, name);
  }
  std::vector<std::string> SubKeys(uint32_t hive, const KeyNames& key) override {
    const Moved moved(scratch_);
    return store_.SubKeys(hive, key);
  }
  std::vector<RegValue> Values(uint32_t hive, const KeyNames& key) override {
    const Moved moved(scratch_);
    return store_.Values(hive, key);
  }

 private:
  // HKEY_LOCAL_MACHINE stands for the scratch key while one call runs.
  class Moved {
   public:
    explicit Moved(HKEY scratch) { RegOverridePredefKey(HKEY_LOCAL_MACHINE, scratch); }
    ~Moved() { RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr); }
    Moved(const Moved&) = delete;
    Moved& operator=(const Moved&) = delete;
  };

  std::string name_;
  HKEY scratch_ = nullptr;
  WinRegistryStore store_;
};

#else

class TestRegistryStore final : public SqliteRegistryStore {
 public:
  explicit TestRegistryStore(const std::filesystem::path& folder) : SqliteRegistryStore(folder / "registry.db") {}
};

#endif

// Names made comparable across stores: as they are off Windows, where the
// SQLite store keeps the order of writing; sorted on Windows, where the order
// is the registry's own (by name under Wine).
inline std::vector<std::string> StoreOrder(std::vector<std::string> names) {
#ifdef _WIN32
  std::sort(names.begin(), names.end());
#endif
  return names;
}

// The keys of a collection the registry gives back, in its order.
inline std::vector<std::string> KeysOf(const auto& collection) {
  std::vector<std::string> keys;
  for (size_t i = 1; i <= collection.Count(); ++i) keys.push_back(collection.Key(i));
  return keys;
}

}  // namespace hifx::test
