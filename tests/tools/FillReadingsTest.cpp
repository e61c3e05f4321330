#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "base/Failure.h"
#include "hif/clsHIF.h"
#include "support/HifImage.h"
#include "support/TempDir.h"
#include "support/TestShell.h"
#include "tools/FillReadings.h"

namespace hifx::test {
namespace {

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
std::vector<std::string> WriteRoute(IShell& shell, const std::filesystem::path& path) {
  HifWriter w(shell, path, 3, kFilePDB, static_cast<int32_t>(kMeters.size()) + 2 * 2 + 10);
  clsHIF& hif = w.hif;
  w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"Sequence", kCreated}, {"MeterTagNbr", 1305},
         {"MeterType", 3}, {"PrvReading", static_cast<int32_t>(kMeters.size())}, {"ReadingDate", kCreated},
         {"Initials", "HIF loaded from route.txt"}});
  for (int32_t route = 1; route <= 2; ++route) {
    const auto count =
        std::count_if(kMeters.begin(), kMeters.end(), [&](const RouteMeter& m) { return m.route == route; });
    const std::string name = "ROUTE" + std::to_string(route);
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", route}, {"PrvReading", static_cast<int32_t>(count)},
           {"Initials", name}, {"ResponseText", name}});
  }
  // Code and index records write themselves: their bytes are kept as they go.
  auto kept = [&] { w.records.push_back(hif.RawData()); };
  int16_t number = 0;
  for (size_t i = 0; i < kMeters.size(); ++i) {
    const RouteMeter& m = kMeters[i];
    w.Add({{"RecType", kRecMeter}, {"RouteNbr", m.route}, {"Sequence", m.sequence}, {"MeterTagNbr", m.tag},
           {"MeterType", 'W'}, {"Digits", 6}, {"Decimals", m.decimals}, {"PrvReading", m.prv}, {"MaxReading", m.max},
           {"MinReading", m.min}, {"ReadType", m.readType}, {"LstReadingDate", 20240131}, {"UtilityCode", m.utility},
           {"ServiceAddress", std::to_string(m.sequence) + " MAIN ST"},
           {"BillingName", "CUSTOMER \xC9 " + std::to_string(i)}, {"Message", "Supervisor: Dog in yard"},
           {"User1", "acct~" + std::to_string(i)}});
    ++number;
    if (i + 1 == kMeters.size() || kMeters[i + 1].route != m.route) {
      hif.AddIndexRecord(static_cast<int16_t>(m.route), 2, 1, {"MAIN"}, {static_cast<int16_t>(number - 1)});
      kept();
    }
  }
  hif.AddCodeRecord(kRecLogins, 0, 1, 1, {"READER1"}, {"read1"}, {""});
  kept();
  hif.AddCodeRecord(kRecCodes, 0, 0, 3, kSkipCodes, {"Dog in yard", "Locked gate", "Vehicle"}, {"", "", ""});
  kept();
  hif.AddCodeRecord(kRecCodes, 1, 0, 1, {"01"}, {"Stopped meter"}, {""});
  kept();
  hif.AddCodeRecord(kRecAlerts, 0, 1, 1, {"RANGE"}, {"2"}, {""});
  kept();
  return w.records;
}

int32_t NumberOfRecType(const std::string& raw) { return raw.size() < 2 ? -1 : int32_t(BigEndianAt(raw, 0, 2)); }

// A record read back: schema records by field, code and index records only
// as bytes.
struct Record {
  std::string raw;
  int32_t recType = -1;
  KeyedCollection<Value> values;
  int32_t Number(const char* name) const { return values.Item(name).ToInt32(); }
  std::string Text(const char* name) const { return TextOf(values.Item(name)); }
};

std::vector<Record> ReadAll(IShell& shell, const std::filesystem::path& path) {
  clsHIF hif(shell);
  hif.SetVersion(ReadFileVersion(shell, path));
  EXPECT_FALSE(hif.OpenHIF(path));
  std::vector<Record> records;
  while (hif.ReadData()) {
    Record r{hif.RawData(), NumberOfRecType(hif.RawData()), {}};
    if (r.recType <= kRecOrphan) r.values = hif.GetValues();
    records.push_back(std::move(r));
  }
  return records;
}

bool ValidDate(int32_t yyyymmdd) {
  const std::chrono::year_month_day date{std::chrono::year{yyyymmdd / 10000},
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
  int64_t dial = r.Number("CurReading");
  for (int32_t d = r.Number("Decimals"); d > 0; --d) dial /= 10;
  const int32_t min = r.Number("MinReading");
  const int32_t max = r.Number("MaxReading");
  if (min < max && dial > max) return Kind::High;
  if (min < max && dial < min) return Kind::Low;
  if (min > max && dial > max && dial < min) return Kind::High;
  return Kind::InWindow;
}

// Each seed gives the mix of readings and exceptions; the route's records
// come back in order with only the handheld's fields changed; the orphans
// are appended behind them with the tags of nearby meters.
class FillReadingsSeeds : public ::testing::TestWithParam<uint32_t> {};

TEST_P(FillReadingsSeeds, FillsTheMetersAndAppendsTheOrphans) {
  TempDir dir;
  TestShell shell;
  const auto route = WriteRoute(shell, dir / "route.pdb");
  FillReadings(shell, dir / "route.pdb", dir / "reading.pdb", GetParam());
  EXPECT_TRUE(shell.questions.empty());
  const auto records = ReadAll(shell, dir / "reading.pdb");
  ASSERT_EQ(records.size(), route.size() + kFilledOrphans);

  clsHIF schema(shell);
  schema.SetVersion(3);
  clsPalmDB& db = schema.DB();
  int high = 0, low = 0, skipped = 0, unread = 0, tampered = 0, read = 0, meters = 0, changed = 0;
  for (size_t i = 0; i < route.size(); ++i) {
    const Record& m = records[i];
    if (NumberOfRecType(route[i]) != kRecMeter) {
      EXPECT_EQ(m.raw, route[i]) << "record " << i << " is copied as it stands";
      continue;
    }
    ++meters;
    schema.SetRawData(route[i]);
    const auto before = schema.GetValues();
    for (int16_t f = 1; f <= db.FieldCount(); ++f) {
      const std::string name = db.FieldName(f);
      if (kHandheldFields.count(name) == 0) {
        EXPECT_EQ(m.values.Item(name), before.Item(name)) << name << " of " << i;
      }
    }
    changed += m.raw != route[i];

    const Kind kind = KindOf(m);
    high += kind == Kind::High;
    low += kind == Kind::Low;
    skipped += kind == Kind::Skipped;
    unread += kind == Kind::Unread;
    read += m.Number("Status") == 1;
    if (m.Number("TamperCount") > 0) {
      ++tampered;
      EXPECT_EQ(kind, Kind::InWindow) << "a tampered meter is read in its window";
    }
    if (kind == Kind::Skipped) {
      const int32_t code = m.Number("ResponseCode");
      ASSERT_LE(code, static_cast<int32_t>(kSkipCodes.size()));
      EXPECT_EQ(m.Text("ResponseText"), kSkipCodes[static_cast<size_t>(code - 1)]);
      EXPECT_EQ(m.Number("CurReading"), 0);
      EXPECT_TRUE(ValidDate(m.Number("ReadingDate"))) << "the reader was there";
    } else {
      EXPECT_EQ(m.Number("ResponseCode"), 0);
      EXPECT_EQ(m.Text("ResponseText"), "");
    }
    if (kind == Kind::Unread) {
      EXPECT_EQ(std::tuple(m.Number("CurReading"), m.Number("ReadingDate"), m.Number("ReadingTime")),
                std::tuple(0, 0, 0));
      EXPECT_EQ(m.Text("Initials"), "");
    }
  }
  ASSERT_EQ(meters, static_cast<int>(kMeters.size()));
  EXPECT_EQ(high, 1);
  EXPECT_EQ(low, 1);
  EXPECT_EQ(skipped, 1);
  EXPECT_EQ(unread, 1);
  EXPECT_EQ(tampered, 2);
  EXPECT_GT(read, meters / 2);
  EXPECT_GE(changed, meters - 1) << "only the meter never visited may come back untouched";

  // The same identity, and the record table sized for the orphans and spares.
  const std::string bytes = ReadBytes(dir / "reading.pdb");
  EXPECT_EQ(bytes.substr(0, 76), ReadBytes(dir / "route.pdb").substr(0, 76));
  EXPECT_EQ((BigEndianAt(bytes, 78, 4) - 78) / 8, route.size() + kFilledOrphans + kFilledSpareSlots);

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
    for (const char* field : {"PrvReading", "MaxReading", "MinReading", "LstReadingDate"}) {
      const int32_t near = o.Number(field);
      EXPECT_TRUE(near == 0 || routeTags.count(near) == 1) << field << " " << near;
    }
    const int32_t nearest = o.Number("PrvReading");
    const auto anchor = std::find_if(kMeters.begin(), kMeters.end(),
                                     [&](const RouteMeter& m) { return m.tag == nearest && m.tag != 0; });
    ASSERT_NE(anchor, kMeters.end());
    EXPECT_EQ(o.Number("UtilityCode"), anchor->utility);
    EXPECT_EQ(o.Text("BillingName"), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, FillReadingsSeeds, ::testing::Values(0u, 1u, 2u, 9u, 77u, 4294967295u),
                         [](const auto& info) { return "Seed" + std::to_string(info.param); });

TEST(FillReadings, SameSeedSameBytesAnotherSeedOthers) {
  TempDir dir;
  TestShell shell;
  WriteRoute(shell, dir / "route.pdb");
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

TEST(FillReadings, RefusesWhatItCannotFill) {
  TempDir dir;
  TestShell shell;
  EXPECT_THROW(FillReadings(shell, dir / "missing.pdb", dir / "reading.pdb", 1), Failure);
  EXPECT_FALSE(std::filesystem::exists(dir / "reading.pdb"));

  // Version 0 records have no reading fields.
  HifWriter(shell, dir / "v0.pdb", 0, kFilePDB, 2).Add({{"RecType", kRecMeter}, {"MeterTagNbr", 77}});
  EXPECT_THROW(FillReadings(shell, dir / "v0.pdb", dir / "reading.pdb", 1), Failure);
  EXPECT_FALSE(std::filesystem::exists(dir / "reading.pdb"));

  // The route file is never overwritten by its own reading.
  WriteRoute(shell, dir / "route.pdb");
  const std::string before = ReadBytes(dir / "route.pdb");
  EXPECT_THROW(FillReadings(shell, dir / "route.pdb", dir / "." / "route.pdb", 1), Failure);
  EXPECT_EQ(ReadBytes(dir / "route.pdb"), before);
}

}  // namespace
}  // namespace hifx::test
