// Installed printers for tests: each one a RecordingDevice, the first the
// system printer until another is selected.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "reports/RecordingDevice.h"

namespace hifx::test {

class RecordingPrinters final : public IRptPrinters {
 public:
  explicit RecordingPrinters(std::vector<std::string> names = {"Recording Printer"}) : names_(std::move(names)) {
    for (const auto& name : names_) devices_.try_emplace(name);
    current_ = names_.front();
  }

  IRptDevice& Printer() override { return devices_.at(current_); }
  std::string DeviceName() override { return current_; }
  std::vector<std::string> DeviceNames() override { return names_; }
  void Select(const std::string& deviceName) override {
    if (devices_.count(deviceName) != 0) current_ = deviceName;
  }
  void SetOrientation(int16_t value) override { orientation = value; }
  bool SetPaperBin(int32_t bin) override {
    paperBin = bin;
    return true;
  }

  RecordingDevice& Device(const std::string& name) { return devices_.at(name); }
  RecordingDevice& Current() { return devices_.at(current_); }

  int16_t orientation = 0;
  int32_t paperBin = -1;

 private:
  std::vector<std::string> names_;
  std::map<std::string, RecordingDevice> devices_;
  std::string current_;
};

}  // namespace hifx::test
