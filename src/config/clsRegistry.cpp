#include "config/clsRegistry.h"

#include <array>
#include <cstdio>

namespace hifx {
namespace {

// Data that does not fit the 1,024-byte read buffer reads as nothing.
constexpr size_t kReadBuffer = 1024;

struct HiveName {
  std::string_view name;
  uint32_t handle;
};

constexpr std::array<HiveName, 7> kHives = {{
    {"HKEY_CLASSES_ROOT", kHiveClassesRoot},
    {"HKEY_CURRENT_USER", kHiveCurrentUser},
    {"HKEY_LOCAL_MACHINE", kHiveLocalMachine},
    {"HKEY_USERS", kHiveUsers},
    {"HKEY_PERFORMANCE_DATA", kHivePerformanceData},
    {"HKEY_CURRENT_CONFIG", kHiveCurrentConfig},
    {"HKEY_DYN_DATA", kHiveDynData},
}};

Value DecodeValue(const RegValue& v) {
  if (v.data.size() > kReadBuffer) return Value();
  if (v.type == kRegSz || v.type == kRegExpandSz) {
    return Value(v.data.substr(0, v.data.find('\0')));
  }
  if (v.type == kRegDword) {
    // Built from the returned bytes with the last byte as the most significant.
    uint32_t n = 0;
    for (size_t i = v.data.size(); i-- > 0;) n = (n << 8) | static_cast<unsigned char>(v.data[i]);
    return Value::Long(static_cast<int32_t>(n));
  }
  return Value();
}

std::string HexBytes(std::string_view data) {
  std::string out;
  char buf[4];
  for (size_t i = 0; i < data.size(); ++i) {
    std::snprintf(buf, sizeof buf, "%02X", static_cast<unsigned char>(data[i]));
    if (i % 16 != 0) out.push_back(' ');
    out += buf;
    if (i % 16 == 15 || i + 1 == data.size()) out += "\r\n";
  }
  return out;
}

std::string_view TypeWord(uint32_t type) {
  switch (type) {
    case kRegDwordBigEndian: return "[dword big endian]";
    case kRegExpandSz: return "[expand sz]";
    case kRegLink: return "[link]";
    case kRegMultiSz: return "[multi sz]";
    case kRegNone: return "[none]";
    case kRegResourceList: return "[resource list]";
    case kRegFullResourceDescriptor: return "[full resource descriptor]";
    case kRegResourceRequirementsList: return "[resource requirements list]";
    default: return "[none]";
  }
}

}  // namespace

uint32_t HiveHandle(std::string_view name) {
  for (const HiveName& hive : kHives) {
    if (hive.name == name) return hive.handle;
  }
  return 0;
}

KeyNames SplitKeyPath(std::string_view path) {
  KeyNames names;
  size_t start = 0;
  while (start <= path.size()) {
    size_t end = path.find('\\', start);
    if (end == std::string_view::npos) end = path.size();
    if (end > start) names.emplace_back(path.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

bool clsRegistry::KeyPath(uint32_t& hive, std::string& path, const RegPath& parts) const {
  hive = parts.empty() ? 0 : HiveHandle(parts[0]);
  path.clear();
  for (size_t i = 1; i < parts.size(); ++i) {
    std::string element;
    for (const char c : parts[i]) {
      if (c != '\0') element.push_back(c);
    }
    if (!path.empty() && path.back() != '\\' && (element.empty() || element.front() != '\\')) {
      path.push_back('\\');
    }
    path += element;
  }
  return hive != 0;
}

namespace {

// Hive, key names and value name of a value path.
bool SplitValuePath(const clsRegistry& registry, const RegPath& parts, uint32_t& hive,
                    KeyNames& key, std::string& name) {
  if (parts.size() < 2) return false;
  const RegPath keyParts(parts.begin(), parts.end() - 1);
  std::string path;
  if (!registry.KeyPath(hive, path, keyParts)) return false;
  key = SplitKeyPath(path);
  for (const char c : parts.back()) {
    if (c != '\0') name.push_back(c);
  }
  return true;
}

bool SplitKey(const clsRegistry& registry, const RegPath& parts, uint32_t& hive, KeyNames& key) {
  std::string path;
  if (!registry.KeyPath(hive, path, parts)) return false;
  key = SplitKeyPath(path);
  return true;
}

}  // namespace

bool clsRegistry::SaveValue(std::string_view value, const RegPath& parts) {
  uint32_t hive = 0;
  KeyNames key;
  std::string name;
  if (!SplitValuePath(*this, parts, hive, key, name)) return false;
  std::string data(value);
  data.push_back('\0');
  return store_.SetValue(hive, key, name, kRegSz, data);
}

KeyedCollection<std::string> clsRegistry::GetKeys(const RegPath& parts) {
  KeyedCollection<std::string> keys;
  uint32_t hive = 0;
  KeyNames key;
  if (!SplitKey(*this, parts, hive, key)) return keys;
  for (auto& name : store_.SubKeys(hive, key)) {
    if (!keys.Contains(name)) keys.Add(name, name);
  }
  return keys;
}

KeyedCollection<std::string> clsRegistry::GetValues(const RegPath& parts) {
  KeyedCollection<std::string> names;
  uint32_t hive = 0;
  KeyNames key;
  if (!SplitKey(*this, parts, hive, key)) return names;
  for (auto& value : store_.Values(hive, key)) {
    if (!names.Contains(value.name)) names.Add(value.name, value.name);
  }
  return names;
}

bool clsRegistry::DeleteValue(const RegPath& parts) {
  uint32_t hive = 0;
  KeyNames key;
  std::string name;
  if (!SplitValuePath(*this, parts, hive, key, name)) return false;
  return store_.DeleteValue(hive, key, name);
}

Value clsRegistry::GetValue(const RegPath& parts) {
  uint32_t hive = 0;
  KeyNames key;
  std::string name;
  if (!SplitValuePath(*this, parts, hive, key, name)) return Value();
  const auto value = store_.GetValue(hive, key, name);
  return value ? DecodeValue(*value) : Value();
}

std::vector<std::pair<std::string, Value>> clsRegistry::GetValuesWithData(const RegPath& parts) {
  std::vector<std::pair<std::string, Value>> out;
  uint32_t hive = 0;
  KeyNames key;
  if (!SplitKey(*this, parts, hive, key)) return out;
  for (const RegValue& value : store_.Values(hive, key)) {
    out.emplace_back(value.name, DecodeValue(value));
  }
  return out;
}

void clsRegistry::DumpKey(uint32_t hive, const KeyNames& key, const std::string& relative,
                          std::string& out) {
  const std::vector<RegValue> values = store_.Values(hive, key);
  // The root's own line is left out when it has no values: a load reads a
  // name line as the key that later values go to.
  if (!relative.empty() || !values.empty()) out += relative + ":\r\n";
  for (const RegValue& v : values) {
    out += "> " + v.name + " = ";
    switch (v.type) {
      case kRegSz: out += "\"" + v.data.substr(0, v.data.find('\0')) + "\"\r\n"; break;
      case kRegDword: {
        uint32_t n = 0;
        for (size_t i = v.data.size(); i-- > 0;) n = (n << 8) | static_cast<unsigned char>(v.data[i]);
        char buf[16];
        std::snprintf(buf, sizeof buf, "&H%08X", n);
        out += std::string(buf) + "\r\n";
        break;
      }
      case kRegBinary: out += "[binary]\r\n" + HexBytes(v.data); break;
      default: out += std::string(TypeWord(v.type)) + "\r\n"; break;
    }
  }
  for (const std::string& sub : store_.SubKeys(hive, key)) {
    KeyNames child = key;
    child.push_back(sub);
    DumpKey(hive, child, relative.empty() ? sub : relative + "\\" + sub, out);
  }
}

std::string clsRegistry::GetKeyInfo(const RegPath& parts, IShell& shell) {
  std::string out;
  uint32_t hive = 0;
  KeyNames key;
  if (!SplitKey(*this, parts, hive, key) || !store_.KeyExists(hive, key)) {
    out += "Error opening key.";
    shell.MsgBox("Error opening key.", "Error", MsgButtons::OK, MsgIcon::Critical);
    return out;
  }
  DumpKey(hive, key, std::string(), out);
  return out;
}

}  // namespace hifx
