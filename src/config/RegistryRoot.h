// The one machine-wide key tree under which every setting of the site lives.
#pragma once

#include <string>
#include <string_view>

#include "config/clsRegistry.h"

namespace hifx {

inline constexpr std::string_view kRootHive = "HKEY_LOCAL_MACHINE";
inline constexpr std::string_view kRootPath = "Software\\Norvane, Inc.\\hifExchange\\";

// Hive, "Software", "Norvane, Inc.", "hifExchange", the key, the value name:
// the path that writes use.
inline RegPath RootValuePath(std::string_view key, std::string_view valueName) {
  return {std::string(kRootHive), "Software", "Norvane, Inc.", "hifExchange", std::string(key),
          std::string(valueName)};
}

// Hive, the root path followed by the key, the value name: the path that
// reads use.
inline RegPath RootReadPath(std::string_view key, std::string_view valueName) {
  return {std::string(kRootHive), std::string(kRootPath) + std::string(key),
          std::string(valueName)};
}

// Hive and the root path followed by the key: the path of a whole key.
inline RegPath RootKeyPath(std::string_view key) {
  return {std::string(kRootHive), std::string(kRootPath) + std::string(key)};
}

}  // namespace hifx
