// The machine registry itself, on Windows.
#pragma once

#include "config/IRegistryStore.h"

namespace hifx {

class WinRegistryStore final : public IRegistryStore {
 public:
  bool KeyExists(uint32_t hive, const KeyNames& key) override;
  bool CreateKey(uint32_t hive, const KeyNames& key) override;
  bool SetValue(uint32_t hive, const KeyNames& key, std::string_view name, uint32_t type,
                std::string_view data) override;
  std::optional<RegValue> GetValue(uint32_t hive, const KeyNames& key,
                                   std::string_view name) override;
  bool DeleteValue(uint32_t hive, const KeyNames& key, std::string_view name) override;
  std::vector<std::string> SubKeys(uint32_t hive, const KeyNames& key) override;
  std::vector<RegValue> Values(uint32_t hive, const KeyNames& key) override;
};

}  // namespace hifx
