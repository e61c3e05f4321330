#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "hif/clsHIF.h"
#include "support/SampleHif.h"
#include "support/TempDir.h"
#include "support/TestShell.h"
#include "tools/FillReadings.h"

namespace hifx {
namespace {

using test::ReadBytes;
using test::TempDir;
using test::TestShell;
using test::WriteBytes;
using test::WriteSampleHif;

// The fields a handheld fills in; every other field comes back as routed.
const std::set<std::string> kHandheldFields = {"CurReading",   "ReadingDate", "ReadingTime",
                                               "Status",       "ResponseCode", "ResponseText",
                                               "TamperCount",  "Signal",      "Initials"};

constexpr int32_t kCreated = 20240228;  // a leap year's end of February

struct RouteMeter {
  int32_t route;
  int32_t sequence;
  int32_t tag;
  int32_t readType;  // 1 radio, 2 manual, 3 probe
  int32_t decimals;
  int32_t prv;
  int32_t min;
  int32_t max;
  int32_t utility;
};

// Two routes of seven meters: registers with and without decimals, a window
// that runs past the dial's end (min above max), a meter with no window, and
// manual meters without a tag.
const std::vector<RouteMeter> kMeters = {
    {1, 10, 2000101, 1, 0, 1234, 1235, 1734, 1},   {1, 20, 2000102, 1, 1, 4521, 4522, 5021, 2},
    {1, 30, 0, 2, 0, 310, 311, 810, 1},            {1, 40, 2000104, 1, 2, 770, 771, 970, 3},
    {1, 50, 2000105, 3, 0, 99800, 99801, 300, 1}, {1, 60, 2000106, 1, 0, 0, 0, 0, 2},
    {1, 70, 2000107, 1, 0, 50000, 50001, 50600, 1}, {2, 10, 2000201, 1, 0, 800, 801, 1300, 1},
    {2, 20, 0, 2, 1, 6000, 6001, 6400, 2},         {2, 30, 2000203, 1, 0, 12000, 12001, 12900, 1},
    {2, 40, 2000204, 1, 0, 45, 46, 545, 3},        {2, 50, 2000205, 3, 2, 300, 301, 420, 1},
    {2, 60, 2000206, 1, 0, 7000, 7001, 7500, 2},   {2, 70, 2000207, 1, 0, 150, 151, 650, 1}};

const std::vector<std::string> kSkipCodes = {"DOG", "LCK", "VEH"};

// A route file laid out as a route conversion writes it: the file header,
// the route headers, the meters with each route's index records behind its
// meters, then the login, skip, change-out and alert records.
std::vector<std::string> WriteRoute(IShell& shell, const std::filesystem::path& path,
                                    int32_t fileType, int16_t version, bool withSkipList = true,
                                    const std::vector<RouteMeter>& meters = kMeters) {
  int32_t routes = 0;
  for (const auto& m : meters) routes = std::max(routes, m.route);
  std::vector<std::string> records;
  clsHIF hif(shell);
  hif.SetVersion(version);
  hif.CreateHIF(path, fileType, static_cast<int32_t>(meters.size()) + 2 * routes + 10);
  // Each record's bytes as written; code and index records write themselves.
  auto write = [&] {
    records.push_back(hif.RawData());
    hif.WriteData();
  };
  auto kept = [&] { records.push_back(hif.RawData()); };
  hif.AddNew();
  hif.SetItem("RecType", Value::Long(kRecFileHeader));
  hif.SetItem("RouteNbr", Value::Long(routes));
  hif.SetItem("Sequence", Value::Long(kCreated));
  hif.SetItem("MeterTagNbr", Value::Long(1305));
  hif.SetItem("MeterType", Value::Long(version));
  hif.SetItem("PrvReading", Value::Long(static_cast<int32_t>(meters.size())));
  hif.SetItem("ReadingDate", Value::Long(kCreated));
  hif.SetItem("Initials", Value("HIF loaded from route.txt"));
  write();
  for (int32_t route = 1; route <= routes; ++route) {
    const auto count = std::count_if(meters.begin(), meters.end(),
                                     [&](const RouteMeter& m) { return m.route == route; });
    const std::string name = "ROUTE" + std::to_string(route);
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecRouteHeader));
    hif.SetItem("RouteNbr", Value::Long(route));
    hif.SetItem("PrvReading", Value::Long(static_cast<int32_t>(count)));
    hif.SetItem("Initials", Value(name));
    hif.SetItem("ResponseText", Value(name));
    write();
  }
  int16_t number = 0;
  for (size_t i = 0; i < meters.size(); ++i) {
    const RouteMeter& m = meters[i];
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecMeter));
    hif.SetItem("RouteNbr", Value::Long(m.route));
    hif.SetItem("Sequence", Value::Long(m.sequence));
    hif.SetItem("MeterTagNbr", Value::Long(m.tag));
    hif.SetItem("MeterType", Value::Long('W'));
    hif.SetItem("Digits", Value::Long(6));
    if (version >= 2) hif.SetItem("Decimals", Value::Long(m.decimals));
    hif.SetItem("PrvReading", Value::Long(m.prv));
    hif.SetItem("MaxReading", Value::Long(m.max));
    hif.SetItem("MinReading", Value::Long(m.min));
    hif.SetItem("ReadType", Value::Long(m.readType));
    hif.SetItem("LstReadingDate", Value::Long(20240131));
    hif.SetItem("UtilityCode", Value::Long(m.utility));
    hif.SetItem("ServiceAddress", Value(std::to_string(m.sequence) + " MAIN ST"));
    hif.SetItem("BillingName", Value("CUSTOMER \xC9 " + std::to_string(i)));
    hif.SetItem("Message", Value("Supervisor: Dog in yard"));
    hif.SetItem("User1", Value("acct~" + std::to_string(i)));
    write();
    ++number;
    if (i + 1 == meters.size() || meters[i + 1].route != m.route) {
      hif.AddIndexRecord(static_cast<int16_t>(m.route), 2, 1, {"MAIN"},
                         {static_cast<int16_t>(number - 1)});
      kept();
    }
  }
  hif.AddCodeRecord(kRecLogins, 0, 1, 1, {"READER1"}, {"read1"}, {""});
  kept();
  if (withSkipList) {
    hif.AddCodeRecord(kRecCodes, 0, 0, 3, kSkipCodes, {"Dog in yard", "Locked gate", "Vehicle"},
                      {"", "", ""});
    kept();
  }
  hif.AddCodeRecord(kRecCodes, 1, 0, 1, {"01"}, {"Stopped meter"}, {""});
  kept();
  hif.AddCodeRecord(kRecAlerts, 0, 1, 1, {"RANGE"}, {"2"}, {""});
  kept();
  return records;
}

int32_t NumberOfRecType(const std::string& raw) {
  if (raw.size() < 2) return -1;
  return static_cast<uint8_t>(raw[0]) << 8 | static_cast<uint8_t>(raw[1]);
}

// A record read back: schema records by field, code and index records only
// as bytes.
struct Record {
  std::string raw;
  int32_t recType = -1;
  KeyedCollection<Value> values;
  // A field the file's version doesn't hold counts as 0, as readers take it.
  int32_t Number(const char* name) const {
    if (!values.Contains(name)) return 0;
    const Value& v = values.Item(name);
    return v.IsEmpty() || v.IsNull() ? 0 : v.ToInt32();
  }
  std::string Text(const char* name) const { return TextOf(values.Item(name)); }
};

std::vector<Record> ReadAll(IShell& shell, const std::filesystem::path& path) {
  const int16_t version = ReadFileVersion(shell, path);
  clsHIF hif(shell);
  hif.SetVersion(version);
  EXPECT_FALSE(hif.OpenHIF(path));
  std::vector<Record> records;
  while (hif.ReadData()) {
    Record r{hif.RawData(), NumberOfRecType(hif.RawData()), {}};
    if (r.recType <= kRecOrphan) r.values = hif.GetValues();
    records.push_back(std::move(r));
  }
  return records;
}

int64_t Power10(int32_t n) {
  int64_t p = 1;
  while (n-- > 0) p *= 10;
  return p;
}

bool ValidDate(int32_t yyyymmdd) {
  const std::chrono::year_month_day date{
      std::chrono::year{yyyymmdd / 10000},
      std::chrono::month{static_cast<unsigned>(yyyymmdd / 100 % 100)},
      std::chrono::day{static_cast<unsigned>(yyyymmdd % 100)}};
  return yyyymmdd > 0 && date.ok();
}

bool ValidTime(int32_t hhnnss) {
  return hhnnss > 0 && hhnnss / 10000 < 24 && hhnnss / 100 % 100 < 60 && hhnnss % 100 < 60;
}

// What a reading conversion and the reports make of a filled meter.
enum class Kind { InWindow, High, Low, Skipped, Unread };

Kind KindOf(const Record& r) {
  if (r.Number("Status") == 0) return r.Number("ResponseCode") > 0 ? Kind::Skipped : Kind::Unread;
  const int64_t dial = r.Number("CurReading") / Power10(r.Number("Decimals"));
  const int32_t min = r.Number("MinReading");
  const int32_t max = r.Number("MaxReading");
  if (min < max && dial > max) return Kind::High;
  if (min < max && dial < min) return Kind::Low;
  if (min > max && dial > max && dial < min) return Kind::High;
  return Kind::InWindow;
}

std::vector<const Record*> Meters(const std::vector<Record>& records) {
  std::vector<const Record*> meters;
  for (const auto& r : records) {
    if (r.recType == kRecMeter) meters.push_back(&r);
  }
  return meters;
}

// The record table's size, from the offset of the first record.
uint32_t PdbSlots(const std::string& bytes) {
  const auto byte = [&](size_t k) { return static_cast<uint32_t>(static_cast<uint8_t>(bytes[k])); };
  const uint32_t first = byte(78) << 24 | byte(79) << 16 | byte(80) << 8 | byte(81);
  return (first - 78) / 8;
}

class FillReadingsSeeds : public ::testing::TestWithParam<uint32_t> {};

TEST_P(FillReadingsSeeds, GivesTheMixOfReadingsAndExceptions) {
  TempDir dir;
  TestShell shell;
  WriteRoute(shell, dir / "route.pdb", kFilePDB, 3);
  FillReadings(shell, dir / "route.pdb", dir / "reading.pdb", GetParam());
  EXPECT_TRUE(shell.questions.empty());
  const auto records = ReadAll(shell, dir / "reading.pdb");
  const auto meters = Meters(records);
  ASSERT_EQ(meters.size(), kMeters.size());

  int high = 0, low = 0, skipped = 0, unread = 0, tampered = 0, read = 0;
  for (const Record* m : meters) {
    const Kind kind = KindOf(*m);
    high += kind == Kind::High;
    low += kind == Kind::Low;
    skipped += kind == Kind::Skipped;
    unread += kind == Kind::Unread;
    read += m->Number("Status") == 1;
    if (m->Number("TamperCount") > 0) {
      ++tampered;
      EXPECT_EQ(kind, Kind::InWindow) << "a tampered meter is read in its window";
    }
    if (kind == Kind::Skipped) {
      const int32_t code = m->Number("ResponseCode");
      ASSERT_LE(code, static_cast<int32_t>(kSkipCodes.size()));
      EXPECT_EQ(m->Text("ResponseText"), kSkipCodes[static_cast<size_t>(code - 1)]);
      EXPECT_EQ(m->Number("CurReading"), 0);
      EXPECT_TRUE(ValidDate(m->Number("ReadingDate"))) << "the reader was there";
    } else {
      EXPECT_EQ(m->Number("ResponseCode"), 0);
      EXPECT_EQ(m->Text("ResponseText"), "");
    }
    if (kind == Kind::Unread) {
      EXPECT_EQ(m->Number("CurReading"), 0);
      EXPECT_EQ(m->Number("ReadingDate"), 0);
      EXPECT_EQ(m->Number("ReadingTime"), 0);
      EXPECT_EQ(m->Text("Initials"), "");
    }
  }
  EXPECT_EQ(high, 1);
  EXPECT_EQ(low, 1);
  EXPECT_EQ(skipped, 1);
  EXPECT_EQ(unread, 1);
  EXPECT_EQ(tampered, 2);
  EXPECT_GT(read, static_cast<int>(meters.size()) / 2);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FillReadingsSeeds, ::testing::Values(0u, 1u, 2u, 77u, 4294967295u));

TEST(FillReadings, SameSeedSameBytesAnotherSeedOthers) {
  TempDir dir;
  TestShell shell;
  WriteRoute(shell, dir / "route.pdb", kFilePDB, 3);
  FillReadings(shell, dir / "route.pdb", dir / "a.pdb", 5);
  const std::string first = ReadBytes(dir / "a.pdb");
  // Filled again over a longer file of the same name: nothing of it stays.
  WriteBytes(dir / "b.pdb", std::string(first.size() * 2, '\x7F'));
  FillReadings(shell, dir / "route.pdb", dir / "b.pdb", 5);
  FillReadings(shell, dir / "route.pdb", dir / "c.pdb", 6);
  EXPECT_EQ(ReadBytes(dir / "b.pdb"), first);
  EXPECT_NE(ReadBytes(dir / "c.pdb"), first);
  EXPECT_TRUE(shell.questions.empty());
}

TEST(FillReadings, RouteRecordsComeBackInOrderWithOnlyTheReadingsChanged) {
  TempDir dir;
  TestShell shell;
  const auto route = WriteRoute(shell, dir / "route.pdb", kFilePDB, 3);
  FillReadings(shell, dir / "route.pdb", dir / "reading.pdb", 1);
  const auto filled = ReadAll(shell, dir / "reading.pdb");
  ASSERT_EQ(filled.size(), route.size() + kFilledOrphans);

  clsHIF schema(shell);
  schema.SetVersion(3);
  clsPalmDB& db = schema.DB();
  size_t changedMeters = 0;
  for (size_t i = 0; i < route.size(); ++i) {
    const int32_t recType = NumberOfRecType(route[i]);
    if (recType != kRecMeter) {
      EXPECT_EQ(filled[i].raw, route[i]) << "record " << i << " is copied as it stands";
      continue;
    }
    schema.SetRawData(route[i]);
    const auto before = schema.GetValues();
    for (int16_t f = 1; f <= db.FieldCount(); ++f) {
      const std::string name = db.FieldName(f);
      if (kHandheldFields.count(name) != 0) continue;
      EXPECT_EQ(filled[i].values.Item(name), before.Item(name)) << name << " of record " << i;
    }
    changedMeters += filled[i].raw != route[i];
  }
  // Only the meter never visited may come back untouched.
  EXPECT_GE(changedMeters, kMeters.size() - 1);

  // The same identity and the record table sized for the orphans and spares.
  const std::string routeBytes = ReadBytes(dir / "route.pdb");
  const std::string readingBytes = ReadBytes(dir / "reading.pdb");
  EXPECT_EQ(readingBytes.substr(0, 76), routeBytes.substr(0, 76));
  EXPECT_EQ(PdbSlots(readingBytes), route.size() + kFilledOrphans + kFilledSpareSlots);
  EXPECT_TRUE(shell.questions.empty());
}

// Each route on a day of its own, by one reader, meter after meter; a route
// longer than a working day goes on the next morning.
TEST(FillReadings, OrphansAreAppendedWithTheTagsOfNearbyMeters) {
  TempDir dir;
  TestShell shell;
  const auto route = WriteRoute(shell, dir / "route.pdb", kFilePDB, 3);
  FillReadings(shell, dir / "route.pdb", dir / "reading.pdb", 9);
  const auto records = ReadAll(shell, dir / "reading.pdb");
  ASSERT_EQ(records.size(), route.size() + kFilledOrphans);
  std::set<int32_t> routeTags;
  for (const auto& m : kMeters) routeTags.insert(m.tag);
  std::set<int32_t> orphanTags;
  for (size_t i = route.size(); i < records.size(); ++i) {
    const Record& o = records[i];
    ASSERT_EQ(o.recType, kRecOrphan);
    EXPECT_EQ(o.Number("RouteNbr"), 0);
    EXPECT_EQ(o.Number("Status"), 0);
    const int32_t tag = o.Number("MeterTagNbr");
    EXPECT_GT(tag, 0);
    EXPECT_EQ(routeTags.count(tag), 0u) << "an orphan's tag is on no meter";
    EXPECT_TRUE(orphanTags.insert(tag).second) << "each orphan is heard once";
    EXPECT_TRUE(ValidDate(o.Number("ReadingDate")));
    EXPECT_TRUE(ValidTime(o.Number("ReadingTime")));
    const int32_t nearest = o.Number("PrvReading");
    EXPECT_NE(nearest, 0);
    for (const char* field : {"PrvReading", "MaxReading", "MinReading", "LstReadingDate"}) {
      const int32_t near = o.Number(field);
      EXPECT_TRUE(near == 0 || (routeTags.count(near) == 1)) << field << " " << near;
    }
    const auto anchor = std::find_if(kMeters.begin(), kMeters.end(),
                                     [&](const RouteMeter& m) { return m.tag == nearest && m.tag != 0; });
    ASSERT_NE(anchor, kMeters.end());
    EXPECT_EQ(o.Number("UtilityCode"), anchor->utility);
    EXPECT_EQ(o.Text("BillingName"), "");
  }
}

// The small sample route in both containers and every version with reading
// fields: three meters give one read high, one skipped and one in window.
TEST(FillReadings, RefusesWhatItCannotFill) {
  TempDir dir;
  TestShell shell;
  EXPECT_THROW(FillReadings(shell, dir / "missing.pdb", dir / "reading.pdb", 1), Failure);
  EXPECT_FALSE(std::filesystem::exists(dir / "reading.pdb"));

  // Version 0 records have no reading fields.
  {
    clsHIF v0(shell);
    v0.CreateHIF(dir / "v0.pdb", kFilePDB, 2);
    v0.AddNew();
    v0.SetItem("RecType", Value::Long(kRecMeter));
    v0.SetItem("MeterTagNbr", Value::Long(77));
    v0.WriteData();
  }
  EXPECT_THROW(FillReadings(shell, dir / "v0.pdb", dir / "reading.pdb", 1), Failure);
  EXPECT_FALSE(std::filesystem::exists(dir / "reading.pdb"));

  // The route file is never overwritten by its own reading.
  WriteRoute(shell, dir / "route.pdb", kFilePDB, 3);
  const std::string before = ReadBytes(dir / "route.pdb");
  EXPECT_THROW(FillReadings(shell, dir / "route.pdb", dir / "." / "route.pdb", 1), Failure);
  EXPECT_EQ(ReadBytes(dir / "route.pdb"), before);
}

}  // namespace
}  // namespace hifx
