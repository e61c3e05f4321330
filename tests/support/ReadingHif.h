// A reading HIF of any size for report tests: a unit record, the route
// records and read meters, some of them exceptions, about twenty to a page
// of the Reading Report.
#pragma once

#include <filesystem>
#include <string>

#include "support/HifImage.h"
#include "support/TestShell.h"

namespace hifx::test {

inline void WriteReadingHif(const std::filesystem::path& path, int32_t meters, int32_t routes = 10) {
  TestShell quiet;
  HifWriter w(quiet, path, 3, kFilePDB, meters + routes + 1);
  w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", routes}, {"MeterType", 3}, {"ResponseText", "UNIT1"}});
  for (int32_t route = 1; route <= routes; ++route) {
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", route}, {"Initials", "R" + std::to_string(route)}});
  }
  for (int32_t i = 0; i < meters; ++i) {
    const int32_t previous = i * 7 % 90000;
    // Every seventh meter reads low, every eleventh carries a note.
    const int32_t current = i % 7 == 0 ? previous - 5 : previous + 40;
    w.Add({{"RecType", kRecMeter}, {"RouteNbr", i % routes + 1}, {"Sequence", i + 1}, {"MeterTagNbr", 1000000 + i},
           {"MeterType", 1}, {"Digits", 6}, {"Status", 1}, {"ReadType", 1}, {"PrvReading", previous},
           {"MinReading", previous + 1}, {"MaxReading", previous + 500}, {"CurReading", current},
           {"ReadingDate", 20240309}, {"ReadingTime", 80000 + i % 5000}, {"ServiceUniqueID", "AC" + std::to_string(i)},
           {"MeterSerialNbr", "SN" + std::to_string(i)}, {"BillingName", "CUSTOMER " + std::to_string(i)},
           {"ServiceAddress", std::to_string(i % 997 + 1) + " MAIN ST"},
           {"ResponseText", i % 11 == 0 ? "GATE LOCKED" : ""}});
  }
}

}  // namespace hifx::test
