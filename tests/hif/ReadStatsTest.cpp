// Read statistics counted from a reading file made with known readings:
// every outcome once or more, two routes, orphans, the file's skip list.
#include <gtest/gtest.h>

#include "base/Failure.h"
#include "hif/ReadStats.h"
#include "support/HifImage.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

struct Reading {
  int32_t route, status, readType, current, previous, minimum, maximum, date, time;
  int32_t responseCode = 0, tamper = 0;
};

void AddMeter(HifWriter& w, const Reading& r) {
  w.Add({{"RecType", kRecMeter}, {"RouteNbr", r.route}, {"MeterType", 1}, {"Digits", 6}, {"Status", r.status},
         {"ReadType", r.readType}, {"CurReading", r.current}, {"PrvReading", r.previous},
         {"MinReading", r.minimum}, {"MaxReading", r.maximum}, {"ReadingDate", r.date},
         {"ReadingTime", r.time}, {"ResponseCode", r.responseCode}, {"TamperCount", r.tamper}});
}

TEST(ReadStats, KnownReadingsAreCountedPerRouteAndInTotal) {
  TempDir dir;
  TestShell shell;
  const auto file = dir / "readings.pdb";
  {
    HifWriter w(shell, file, 3, kFilePDB, 20);
    w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"MeterType", 3}});
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", 7}, {"Initials", "NORTH"}});
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", 3}, {"Initials", "SOUTH"}});
    // Route 7: read by radio in range, low, high (tampered), a rollover by
    // hand, unread, skipped with code 2; read over midnight.
    AddMeter(w, {7, 1, 1, 150, 100, 101, 600, 20240309, 235900});
    AddMeter(w, {7, 1, 1, 50, 100, 101, 600, 20240309, 235930});
    AddMeter(w, {7, 1, 3, 900, 100, 101, 600, 20240310, 1500, 0, 2});
    AddMeter(w, {7, 1, 2, 90, 100, 0, 0, 20240310, 2000});
    AddMeter(w, {7, 0, 1, 0, 100, 101, 600, 0, 0});
    AddMeter(w, {7, 0, 1, 0, 100, 101, 600, 20240310, 1000, 2});
    // Route 3: a manual skip (read type 4, code 1), a manual read of 0 (a
    // skip too), a read with no date (a skip), one plain read.
    AddMeter(w, {3, 1, 4, 0, 100, 101, 600, 20240309, 90000, 1});
    AddMeter(w, {3, 1, 2, 0, 100, 101, 600, 20240309, 90100});
    AddMeter(w, {3, 1, 1, 200, 100, 101, 600, 0, 0});
    AddMeter(w, {3, 1, 1, 200, 100, 101, 600, 20240309, 90200});
    w.Add({{"RecType", kRecOrphan}, {"MeterTagNbr", 5}});
    w.Add({{"RecType", kRecOrphan}, {"MeterTagNbr", 6}});
    w.hif.AddCodeRecord(kRecCodes, 1, 0, 1, {"RC1"}, {"not a skip"}, {});
    w.hif.AddCodeRecord(kRecCodes, 0, 0, 2, {"DOG", "LCK"}, {"Dog in yard", "Locked gate"}, {});
  }
  const ReadStats stats = CountReadings(shell, file);

  ASSERT_EQ(stats.routes.size(), 2u);
  const RouteReadStats& south = stats.routes[0];
  const RouteReadStats& north = stats.routes[1];
  EXPECT_EQ(std::tuple(south.route, south.name, north.route, north.name), std::tuple(3, "SOUTH", 7, "NORTH"));

  const auto counts = [](const RouteReadStats& s) {
    return std::vector<int32_t>{s.meters, s.read,  s.unread, s.skipped,  s.radio, s.manual,
                                s.probe,  s.low,   s.high,   s.rollover, s.tamper};
  };
  //                                          mtr read unrd skip radio man probe low high roll tamp
  EXPECT_EQ(counts(north), (std::vector<int32_t>{6, 4, 1, 1, 2, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(counts(south), (std::vector<int32_t>{4, 1, 0, 3, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(counts(stats.total), (std::vector<int32_t>{10, 5, 1, 4, 3, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(north.skippedByCode, (std::map<int32_t, int32_t>{{2, 1}}));
  EXPECT_EQ(south.skippedByCode, (std::map<int32_t, int32_t>{{0, 2}, {1, 1}}));
  EXPECT_EQ(stats.total.skippedByCode, (std::map<int32_t, int32_t>{{0, 2}, {1, 1}, {2, 1}}));

  // The first and last readings, over midnight, and the whole run's span.
  EXPECT_EQ(north.first, (ReadingTime{20240309, 235900}));
  EXPECT_EQ(north.last, (ReadingTime{20240310, 2000}));
  EXPECT_EQ(north.SpanSeconds(), 21 * 60);
  EXPECT_EQ(stats.total.first, (ReadingTime{20240309, 90200}));
  EXPECT_EQ(stats.total.SpanSeconds(), 15 * 3600 + 18 * 60);

  EXPECT_EQ(stats.orphans, 2);
  ASSERT_EQ(stats.skipCodes.size(), 2u);
  EXPECT_EQ(std::tuple(stats.skipCodes[1].code, stats.skipCodes[1].reason), std::tuple("LCK", "Locked gate"));
}

TEST(ReadStats, AFileWithoutMetersAndAFileThatIsNoHif) {
  TempDir dir;
  TestShell shell;
  {
    HifWriter w(shell, dir / "empty.pdb", 3, kFilePDB, 2);
    w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 0}, {"MeterType", 3}});
  }
  const ReadStats empty = CountReadings(shell, dir / "empty.pdb");
  EXPECT_TRUE(empty.routes.empty());
  EXPECT_EQ(std::tuple(empty.total.meters, empty.total.first.has_value(), empty.total.SpanSeconds()),
            std::tuple(0, false, int64_t{0}));

  WriteBytes(dir / "text.pdb", "not a handheld file");
  EXPECT_THROW(CountReadings(shell, dir / "text.pdb"), Failure);
}

}  // namespace
}  // namespace hifx::test
