// A small route HIF for tests: a file header, two route headers and three
// meters, written through clsHIF the way a route conversion writes them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "hif/clsHIF.h"

namespace hifx::test {

// Writes the file and returns the bytes of each record in file order.
inline std::vector<std::string> WriteSampleHif(IShell& shell, const std::filesystem::path& path,
                                               int32_t fileType, int16_t version = 3) {
  std::vector<std::string> records;
  clsHIF hif(shell);
  hif.SetVersion(version);
  hif.CreateHIF(path, fileType, 10);
  auto write = [&] {
    records.push_back(hif.RawData());
    hif.WriteData();
  };
  hif.AddNew();
  hif.SetItem("RecType", Value::Long(kRecFileHeader));
  hif.SetItem("RouteNbr", Value::Long(2));
  hif.SetItem("Sequence", Value::Long(20240229));
  hif.SetItem("MeterTagNbr", Value::Long(1305));
  hif.SetItem("MeterType", Value::Long(version));
  hif.SetItem("PrvReading", Value::Long(3));
  hif.SetItem("ReadingDate", Value::Long(20240229));
  hif.SetItem("Initials", Value("HIF loaded from route.txt"));
  write();
  for (int route = 1; route <= 2; ++route) {
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecRouteHeader));
    hif.SetItem("RouteNbr", Value::Long(route));
    hif.SetItem("PrvReading", Value::Long(route == 1 ? 2 : 1));
    hif.SetItem("Initials", Value(route == 1 ? "NORTH" : "SOUTH"));
    hif.SetItem("ResponseText", Value(route == 1 ? "NORTH" : "SOUTH"));
    write();
  }
  struct Meter {
    int route, sequence, tag;
    const char* type;
    int previous;
    const char* address;
    const char* name;
  };
  const Meter meters[] = {{1, 10, 50012345, "W", 1234, "12 MAIN ST", "O'BRIEN, J"},
                          {1, 20, 50012346, "G", 98765, "14 MAIN ST", "SMITH & CO \xC9"},
                          {2, 10, 0, "E", 0, "1 OAK AVE", "DOE \"JJ\""}};
  for (const Meter& m : meters) {
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecMeter));
    hif.SetItem("RouteNbr", Value::Long(m.route));
    hif.SetItem("Sequence", Value::Long(m.sequence));
    hif.SetItem("MeterTagNbr", Value::Long(m.tag));
    hif.SetItem("MeterType", Value::Long(m.type[0]));
    hif.SetItem("Digits", Value::Long(5));
    hif.SetItem("PrvReading", Value::Long(m.previous));
    hif.SetItem("MaxReading", Value::Long(m.previous + 500));
    hif.SetItem("MinReading", Value::Long(m.previous + 1));
    hif.SetItem("ReadType", Value::Long(1));
    hif.SetItem("LstReadingDate", Value::Long(20240131));
    hif.SetItem("ServiceAddress", Value(m.address));
    hif.SetItem("BillingName", Value(m.name));
    hif.SetItem("MeterSerialNbr", Value("SN" + std::to_string(m.tag)));
    hif.SetItem("User1", Value("acct~" + std::to_string(m.sequence)));
    write();
  }
  // A hand-built code record behind the meters: one skip code.
  hif.DB().AddNew();
  int16_t at = hif.DB().SetInt16(0, Value::Long(kRecCodes));
  at = hif.DB().SetInt16(at, Value::Long(0));
  at = hif.DB().SetInt16(at, Value::Long(0));
  at = hif.DB().SetInt16(at, Value::Long(1));
  at = hif.DB().AppendString(at, "DOG", true);
  at = hif.DB().AppendString(at, "Dog in yard", true);
  at = hif.DB().AppendString(at, "", true);
  hif.DB().SetInt16(at, Value::Long(-1));
  write();
  return records;
}

}  // namespace hifx::test
