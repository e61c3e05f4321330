// Where the site's settings live: the machine registry on Windows, a SQLite
// file in the site folder elsewhere. The store behaves as the registry does:
// hives, keys along a path, names compared with no regard to case, values in
// the order they were first written, typed data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hifx {

// Handles of the predefined hives.
inline constexpr uint32_t kHiveClassesRoot = 0x80000000u;
inline constexpr uint32_t kHiveCurrentUser = 0x80000001u;
inline constexpr uint32_t kHiveLocalMachine = 0x80000002u;
inline constexpr uint32_t kHiveUsers = 0x80000003u;
inline constexpr uint32_t kHivePerformanceData = 0x80000004u;
inline constexpr uint32_t kHiveCurrentConfig = 0x80000005u;
inline constexpr uint32_t kHiveDynData = 0x80000006u;

// Registry value types.
enum RegType : uint32_t {
  kRegNone = 0,
  kRegSz = 1,
  kRegExpandSz = 2,
  kRegBinary = 3,
  kRegDword = 4,
  kRegDwordBigEndian = 5,
  kRegLink = 6,
  kRegMultiSz = 7,
  kRegResourceList = 8,
  kRegFullResourceDescriptor = 9,
  kRegResourceRequirementsList = 10,
};

struct RegValue {
  std::string name;
  uint32_t type = kRegNone;
  std::string data;  // the raw bytes, a string's closing NUL included
};

// A key path is the key names below the hive, without empty names:
// {"Software", "Norvane, Inc.", "hifExchange", "Route"}.
using KeyNames = std::vector<std::string>;

class IRegistryStore {
 public:
  virtual ~IRegistryStore() = default;

  virtual bool KeyExists(uint32_t hive, const KeyNames& key) = 0;
  // Creates every missing key along the path; true when the key exists after.
  virtual bool CreateKey(uint32_t hive, const KeyNames& key) = 0;
  // Writes one value, creating the keys along the path, as one change that is
  // either made whole or not at all.
  virtual bool SetValue(uint32_t hive, const KeyNames& key, std::string_view name, uint32_t type,
                        std::string_view data) = 0;
  virtual std::optional<RegValue> GetValue(uint32_t hive, const KeyNames& key,
                                           std::string_view name) = 0;
  virtual bool DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) = 0;
  // Names of the subkeys, in the order they were made.
  virtual std::vector<std::string> SubKeys(uint32_t hive, const KeyNames& key) = 0;
  // The values of a key with their data, in the order they were first written.
  virtual std::vector<RegValue> Values(uint32_t hive, const KeyNames& key) = 0;
  // Reads between these two see the settings as they stood at the first of
  // them, and a store that locks for each read locks once. Pairs may nest; a
  // write in between still goes through. See ReadingTogether.
  virtual void BeginReads() {}
  virtual void EndReads() {}
};

// Many settings read in one go, such as a whole group at load.
class ReadingTogether {
 public:
  explicit ReadingTogether(IRegistryStore& store) : store_(store) { store_.BeginReads(); }
  ~ReadingTogether() { store_.EndReads(); }
  ReadingTogether(const ReadingTogether&) = delete;
  ReadingTogether& operator=(const ReadingTogether&) = delete;

 private:
  IRegistryStore& store_;
};

}  // namespace hifx
