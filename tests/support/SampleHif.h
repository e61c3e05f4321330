// A small route HIF for tests: a file header, two route headers and three
// meters, written through clsHIF the way a route conversion writes them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/HifImage.h"

namespace hifx::test {

// Writes the file and returns the bytes of each record in file order.
inline std::vector<std::string> WriteSampleHif(IShell& shell, const std::filesystem::path& path, int32_t fileType) {
  HifWriter w(shell, path, 3, fileType, 10);
  w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"Sequence", 20240229}, {"MeterTagNbr", 1305},
         {"MeterType", 3}, {"PrvReading", 3}, {"ReadingDate", 20240229}, {"Initials", "HIF loaded from route.txt"}});
  for (const auto& [route, meters, name] : {std::tuple{1, 2, "NORTH"}, std::tuple{2, 1, "SOUTH"}}) {
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", route}, {"PrvReading", meters}, {"Initials", name},
           {"ResponseText", name}});
  }
  struct Meter {
    int route, sequence, tag;
    char type;
    int previous;
    const char* address;
    const char* name;
  };
  for (const Meter& m : {Meter{1, 10, 50012345, 'W', 1234, "12 MAIN ST", "O'BRIEN, J"},
                         Meter{1, 20, 50012346, 'G', 98765, "14 MAIN ST", "SMITH & CO \xC9"},
                         Meter{2, 10, 0, 'E', 0, "1 OAK AVE", "DOE \"JJ\""}}) {
    w.Add({{"RecType", kRecMeter}, {"RouteNbr", m.route}, {"Sequence", m.sequence}, {"MeterTagNbr", m.tag},
           {"MeterType", m.type}, {"Digits", 5}, {"PrvReading", m.previous}, {"MaxReading", m.previous + 500},
           {"MinReading", m.previous + 1}, {"ReadType", 1}, {"LstReadingDate", 20240131},
           {"ServiceAddress", m.address}, {"BillingName", m.name}, {"MeterSerialNbr", "SN" + std::to_string(m.tag)},
           {"User1", "acct~" + std::to_string(m.sequence)}});
  }
  // A hand-built code record behind the meters: one skip code.
  clsPalmDB& db = w.hif.DB();
  db.AddNew();
  int16_t at = db.SetInt16(0, Value::Long(kRecCodes));
  at = db.SetInt16(at, Value::Long(0));
  at = db.SetInt16(at, Value::Long(0));
  at = db.SetInt16(at, Value::Long(1));
  at = db.AppendString(at, "DOG", true);
  at = db.AppendString(at, "Dog in yard", true);
  at = db.AppendString(at, "", true);
  db.SetInt16(at, Value::Long(-1));
  w.Write();
  return w.records;
}

}  // namespace hifx::test
