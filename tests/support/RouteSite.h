// A site for route conversion tests: a registry, a recording shell, a fixed
// clock, map files and a source file in a temporary folder, and a clsExchange
// set up to convert the source with the map "Route".
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/TestRegistryStore.h"
#include "exchange/clsExchange.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {

// The route catalogue's fields in order.
inline const std::vector<std::string>& RouteFields() {
  static const std::vector<std::string> fields = {
      "RouteNbr",       "Sequence",        "MeterTagNbr",     "MeterType",       "Digits",
      "Decimals",       "PrvReading",      "MaxReading",      "MinReading",      "ReadType",
      "LstReadingDate", "UtilityCode",     "Lat",             "Lng",             "ScaleFactor",
      "InitReading",    "InitPulseCount",  "InitTamperCount", "Message",         "ServiceAddress",
      "BillingName",    "ServiceUniqueID", "MeterSerialNbr",  "User1",           "User2",
      "User3",          "User4",           "User5"};
  return fields;
}

// The columns of the fixed test layout: route 1-2, sequence 3-6, tag 7-14,
// type 15, read type 16, address 17-26, name 27-36, digits 37-41.
inline std::map<std::string, std::string> FixedLayout() {
  return {{"RouteNbr", "1,2,,,0"},        {"Sequence", "3,4,,,0"},     {"MeterTagNbr", "7,8,,,0"},
          {"MeterType", "15,1,,,0"},      {"ReadType", "16,1,,,0"},    {"UtilityCode", "C,1"},
          {"ServiceAddress", "17,10,,,0"}, {"BillingName", "27,10,,,0"}, {"Digits", "37,5,,,0"}};
}

// The fixed layout with an autonumbered sequence, a prompted User1 and a
// constant in one more field.
inline std::map<std::string, std::string> NumberedLayout(const std::string& field, const std::string& constant) {
  auto map = FixedLayout();
  map["Sequence"] = "A";
  map["User1"] = "P";
  map[field] = "C," + constant;
  return map;
}

// One line of the fixed test layout.
inline std::string FixedLine(const std::string& route, int sequence, int tag, char type, char readType,
                             const std::string& address, const std::string& name, int digits = 5) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%-2s%04d%08d%c%c%-10s%-10s%05d", route.c_str(), sequence, tag, type,
                readType, address.c_str(), name.c_str(), digits);
  return buf;
}

class RouteSite {
 public:
  RouteSite()
      : store_(dir.path()),
        exchange_(std::make_unique<clsExchange>(
            ExchangeEnvironment{store_, shell, clock, dir.path(), dir / "sync"})) {
    exchange_->RouteSource = (dir / "route.txt").string();
    exchange_->RouteDestination = (dir / "route.pdb").string();
    exchange_->RouteMap = "Route";
    exchange_->Advanced().IndexControl(0);
  }

  clsExchange& Exchange() { return *exchange_; }
  IRegistryStore& Store() { return store_; }

  // Writes a map of the given fields (the rest "Do Not Map") as NAME.hcm.
  void Map(const std::map<std::string, std::string>& fields, int type = 1,
           const std::string& name = "Route", const std::string& header = "") {
    std::string text = "HIF=1.1\r\nMAPNAME=" + name + ".hcm\r\nMAPTYPE=" + std::to_string(type) + "\r\n" + header;
    for (const std::string& field : RouteFields()) {
      const auto it = fields.find(field);
      text += field + "=" + (it == fields.end() ? "N" : it->second) + "\r\n";
    }
    WriteBytes(dir / (name + ".hcm"), text);
  }

  // The source's lines, converted through a map of the fixed test layout.
  void Fixed(const std::vector<std::string>& lines) {
    Map(FixedLayout());
    Source(lines);
  }

  void Source(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\r\n";
    WriteBytes(dir / "route.txt", text);
  }

  // Every record of the destination, as field values by name.
  std::vector<KeyedCollection<Value>> Records(const std::string& file = "route.pdb") {
    std::vector<KeyedCollection<Value>> records;
    TestShell quiet;
    clsHIF hif(quiet);
    hif.SetVersion(3);
    if (hif.OpenHIF(dir / file)) return records;
    while (hif.ReadData()) records.push_back(hif.GetValues());
    return records;
  }

  std::vector<KeyedCollection<Value>> Meters() {
    std::vector<KeyedCollection<Value>> meters;
    for (auto& r : Records()) {
      if (r.Item("RecType").ToInt32() == kRecMeter) meters.push_back(std::move(r));
    }
    return meters;
  }

  std::vector<std::string> RawRecords(const std::string& file = "route.pdb") {
    std::vector<std::string> records;
    TestShell quiet;
    clsHIF hif(quiet);
    if (hif.OpenHIF(dir / file)) return records;
    while (hif.ReadData()) records.push_back(hif.RawData());
    return records;
  }

  TempDir dir;
  TestShell shell;
  FixedClock clock{CivilTime{2024, 2, 29, 13, 5, 9}};

 private:
  TestRegistryStore store_;
  std::unique_ptr<clsExchange> exchange_;
};

}  // namespace hifx::test
