#include "config/WinRegistryStore.h"

#include <windows.h>

namespace hifx {
namespace {

constexpr REGSAM kAccess = 0x2003F;  // KEY_ALL_ACCESS less the synchronise right

std::string JoinKey(const KeyNames& key) {
  std::string path;
  for (const std::string& name : key) {
    if (!path.empty()) path.push_back('\\');
    path += name;
  }
  return path;
}

// An open key, closed when it goes out of scope.
class Key {
 public:
  Key(uint32_t hive, const KeyNames& key, bool create) {
    // The predefined handles are negative 32-bit numbers, widened with their sign.
    const HKEY root = reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
    const std::string path = JoinKey(key);
    if (RegOpenKeyExA(root, path.c_str(), 0, kAccess, &handle_) == ERROR_SUCCESS) return;
    handle_ = nullptr;
    if (create) {
      DWORD disposition = 0;
      if (RegCreateKeyExA(root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, kAccess, nullptr,
                          &handle_, &disposition) != ERROR_SUCCESS) {
        handle_ = nullptr;
      }
    }
  }
  ~Key() {
    if (handle_ != nullptr) RegCloseKey(handle_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return handle_; }

 private:
  HKEY handle_ = nullptr;
};

}  // namespace

bool WinRegistryStore::KeyExists(uint32_t hive, const KeyNames& key) {
  return Key(hive, key, false).get() != nullptr;
}

bool WinRegistryStore::CreateKey(uint32_t hive, const KeyNames& key) {
  return Key(hive, key, true).get() != nullptr;
}

bool WinRegistryStore::SetValue(uint32_t hive, const KeyNames& key, std::string_view name,
                                uint32_t type, std::string_view data) {
  Key k(hive, key, true);
  if (k.get() == nullptr) return false;
  const std::string valueName(name);
  return RegSetValueExA(k.get(), valueName.c_str(), 0, type,
                        reinterpret_cast<const BYTE*>(data.data()),
                        static_cast<DWORD>(data.size())) == ERROR_SUCCESS;
}

std::optional<RegValue> WinRegistryStore::GetValue(uint32_t hive, const KeyNames& key,
                                                   std::string_view name) {
  Key k(hive, key, false);
  if (k.get() == nullptr) return std::nullopt;
  const std::string valueName(name);
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExA(k.get(), valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::string data(size, '\0');
  if (RegQueryValueExA(k.get(), valueName.c_str(), nullptr, &type,
                       reinterpret_cast<BYTE*>(data.data()), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  data.resize(size);
  return RegValue{valueName, type, data};
}

bool WinRegistryStore::DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) {
  Key k(hive, key, false);
  if (k.get() == nullptr) return false;
  return RegDeleteValueA(k.get(), std::string(name).c_str()) == ERROR_SUCCESS;
}

std::vector<std::string> WinRegistryStore::SubKeys(uint32_t hive, const KeyNames& key) {
  std::vector<std::string> names;
  Key k(hive, key, false);
  if (k.get() == nullptr) return names;
  char buffer[1024];
  for (DWORD i = 0; RegEnumKeyA(k.get(), i, buffer, sizeof buffer) == ERROR_SUCCESS; ++i) {
    names.emplace_back(buffer);
  }
  return names;
}

std::vector<RegValue> WinRegistryStore::Values(uint32_t hive, const KeyNames& key) {
  std::vector<RegValue> values;
  Key k(hive, key, false);
  if (k.get() == nullptr) return values;
  char name[1024];
  for (DWORD i = 0;; ++i) {
    DWORD nameSize = sizeof name;
    DWORD type = 0;
    DWORD dataSize = 0;
    if (RegEnumValueA(k.get(), i, name, &nameSize, nullptr, &type, nullptr, &dataSize) != ERROR_SUCCESS) {
      break;
    }
    std::string data(dataSize, '\0');
    nameSize = sizeof name;
    if (RegEnumValueA(k.get(), i, name, &nameSize, nullptr, &type,
                      reinterpret_cast<BYTE*>(data.data()), &dataSize) != ERROR_SUCCESS) {
      break;
    }
    data.resize(dataSize);
    values.push_back(RegValue{std::string(name, nameSize), type, data});
  }
  return values;
}

}  // namespace hifx
