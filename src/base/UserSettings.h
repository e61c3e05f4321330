// The per-user settings of the desktop program (window placement, report
// options), by application, section and key. Values are texts.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace hifx {

class IUserSettings {
 public:
  virtual ~IUserSettings() = default;
  // The stored value, or defaultValue when there is none.
  virtual std::string GetSetting(std::string_view appName, std::string_view section,
                                 std::string_view key, std::string_view defaultValue) = 0;
  virtual void SaveSetting(std::string_view appName, std::string_view section, std::string_view key,
                           std::string_view value) = 0;
};

// Settings that last as long as the object: for a program built without a
// settings store of its own.
class MemoryUserSettings final : public IUserSettings {
 public:
  std::string GetSetting(std::string_view appName, std::string_view section, std::string_view key,
                         std::string_view defaultValue) override {
    const auto it = values_.find({std::string(appName), std::string(section), std::string(key)});
    return it == values_.end() ? std::string(defaultValue) : it->second;
  }
  void SaveSetting(std::string_view appName, std::string_view section, std::string_view key,
                   std::string_view value) override {
    values_[{std::string(appName), std::string(section), std::string(key)}] = std::string(value);
  }

 private:
  std::map<std::tuple<std::string, std::string, std::string>, std::string> values_;
};

}  // namespace hifx
