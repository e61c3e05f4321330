// Registry access for the rest of the program. A path is a list of values:
// the hive's name, the key names, and for value operations the value's name
// last. Nothing here raises: a missing key or value gives 0, false, an empty
// value or an empty list.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "config/IRegistryStore.h"

namespace hifx {

using RegPath = std::vector<std::string>;

// Hive handle of a hive's name, 0 for any other name.
uint32_t HiveHandle(std::string_view name);

class clsRegistry {
 public:
  explicit clsRegistry(IRegistryStore& store) : store_(store) {}

  // Splits parts into the hive and the key path: the elements after the
  // first, joined with "\" and never doubled, with NULs taken out. True for a
  // known hive.
  bool KeyPath(uint32_t& hive, std::string& path, const RegPath& parts) const;
  // Writes value as a plain string under the path's last element, creating
  // the keys on the way. True on success.
  bool SaveValue(std::string_view value, const RegPath& parts);
  KeyedCollection<std::string> GetKeys(const RegPath& parts);
  KeyedCollection<std::string> GetValues(const RegPath& parts);
  bool DeleteValue(const RegPath& parts);
  // A string's text up to its first NUL, a 32-bit number as an integer, and
  // empty for anything else, for a missing value, or for data over 1,024
  // bytes.
  Value GetValue(const RegPath& parts);
  // Every value of a key with what GetValue would give for it, in the key's
  // order: the same as GetValues followed by a GetValue for each name.
  std::vector<std::pair<std::string, Value>> GetValuesWithData(const RegPath& parts);
  // The dump of a key, its values and its subkeys, lines ending CR LF. A key
  // that can't be opened adds "Error opening key." and shows it.
  std::string GetKeyInfo(const RegPath& parts, IShell& shell);

 private:
  void DumpKey(uint32_t hive, const KeyNames& key, const std::string& relative, std::string& out);
  IRegistryStore& store_;
};

// The names of a key path of the store, parsed from a "\"-joined path.
KeyNames SplitKeyPath(std::string_view path);

}  // namespace hifx
