// The route check: the conversion's own reading and validation, every
// fault kept with its line, nothing of the user's written, and the same
// verdict as the conversion on every route file of the fuzz corpora.
#include <gtest/gtest.h>

#include <cstdlib>

#include "base/Failure.h"
#include "config/clsDist.h"
#include "support/RouteSite.h"
#include "support/TemporaryFolder.h"

namespace hifx::test {
namespace {

// Each fault as "LINE FIELD KIND".
std::vector<std::string> Listed(const RouteCheck& check) {
  std::vector<std::string> listed;
  for (const RouteFault& f : check.faults) listed.push_back(std::to_string(f.line) + " " + f.field + " " + f.kind);
  return listed;
}

struct RouteCheckTest : ::testing::Test {
  RouteSite site;
  bool made = std::filesystem::create_directory(site.dir / "tmp");
  TemporaryFolder temp{site.dir / "tmp"};
};

TEST_F(RouteCheckTest, EveryFaultWithItsLineAndNothingWritten) {
  auto map = FixedLayout();
  map["RouteNbr"] = "1,2,,,0";
  site.Map(map);
  site.Source({FixedLine("", 1, 16777216, 'W', 'R', "", "A"), FixedLine("1", 0, 100, 'W', 'R', "2 MAIN", "B"),
               FixedLine("1", 3, 100, 'W', 'R', "3 MAIN", "C"), FixedLine("1", 4, 0, 'W', 'M', "4 MAIN", "D"),
               FixedLine("2", 5, 100, 'W', 'R', "5 MAIN", "E")});
  RouteCheck check;
  EXPECT_FALSE(site.Exchange().CheckRoute(check));
  EXPECT_EQ(Listed(check), (std::vector<std::string>{"1 RouteNbr empty", "1 MeterTagNbr over maximum",
                                                     "1 ServiceAddress empty", "2 Sequence zero",
                                                     "3 MeterTagNbr duplicate tag", "5 MeterTagNbr duplicate tag"}));
  EXPECT_EQ(check.faults[1].value, "16777216");
  EXPECT_EQ(check.faults[1].message, "Value of MeterTagNbr(16777216) exceeds maximum permitted value in Line 1");
  EXPECT_EQ(check.faults[4].message, "Meter Tag Number of 100 is duplicate in Line 3 (3 MAIN C)");
  EXPECT_EQ(check.stop, "a duplicate tag: 100");
  EXPECT_EQ(std::tuple(check.lines, check.routes, check.meters), std::tuple(5, 3, 5));
  // The settings' destination is untouched and the scratch folder is gone.
  EXPECT_EQ(site.Exchange().RouteDestination, (site.dir / "route.pdb").string());
  EXPECT_FALSE(std::filesystem::exists(site.dir / "route.pdb"));
  EXPECT_TRUE(std::filesystem::is_empty(site.dir / "tmp"));
}

TEST_F(RouteCheckTest, EveryFaultPastTheConversionsLimitOfFifty) {
  for (const int lines : {50, 60}) {
    site.Map(FixedLayout());
    std::vector<std::string> source;
    for (int i = 0; i < lines; ++i) source.push_back(FixedLine("1", 0, 100 + i, 'W', 'R', "1 MAIN", "DOE"));
    site.Source(source);
    RouteCheck check;
    const bool converts = site.Exchange().CheckRoute(check);
    EXPECT_EQ(check.faults.size(), static_cast<size_t>(lines));
    EXPECT_EQ(check.faults.back().line, lines);
    EXPECT_EQ(converts, lines == 50);
    EXPECT_EQ(check.stop, lines == 50 ? "" : "more than 50 faults: the conversion stops at the 51st");
    EXPECT_EQ(site.Exchange().ConvertRoute(), converts);
  }
}

TEST_F(RouteCheckTest, AFailureInsideTheConversionEndsTheCheckOnItsLine) {
  site.Map(FixedLayout());
  // Digits is a 16-bit field: 99999 overflows it on line 2.
  site.Source({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "A"), FixedLine("1", 2, 101, 'W', 'R', "2 MAIN", "B", 99999)});
  RouteCheck check;
  EXPECT_FALSE(site.Exchange().CheckRoute(check));
  ASSERT_EQ(check.faults.size(), 1u);
  EXPECT_EQ(check.faults[0].line, 2);
  EXPECT_EQ(check.faults[0].kind, kFaultStop);
  EXPECT_EQ(check.stop, "line 2: " + check.faults[0].message);
  EXPECT_TRUE(site.shell.questions.empty());
}

// The change-out trap: a route file made before the meters were changed
// out in the field, held against the last readings.
TEST_F(RouteCheckTest, SinceTheLastReadingsTheMetersChangedOutNewAndGone) {
  auto map = FixedLayout();
  map["ServiceUniqueID"] = "27,10,,,0";
  site.Map(map);
  site.Source({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "ACCA"), FixedLine("1", 2, 101, 'W', 'R', "2 MAIN", "ACCB"),
               FixedLine("1", 3, 102, 'W', 'R', "3 MAIN", "ACCC")});
  ASSERT_TRUE(site.Exchange().ConvertRoute());
  std::filesystem::rename(site.dir / "route.pdb", site.dir / "last.pdb");

  site.Source({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "ACCA"), FixedLine("1", 2, 201, 'W', 'R', "2 MAIN", "ACCB", 6),
               FixedLine("1", 4, 103, 'W', 'R', "4 MAIN", "ACCD")});
  RouteCheck check;
  check.since = site.dir / "last.pdb";
  EXPECT_TRUE(site.Exchange().CheckRoute(check));
  std::vector<std::string> changes;
  for (const MeterDifference& d : check.changes) {
    changes.push_back(std::string(ChangeWord(d.change)) + " " + d.before.account + ">" + d.after.account + " " +
                      ReplacedDetail(d.before, d.after));
  }
  EXPECT_EQ(changes, (std::vector<std::string>{"added >ACCD tag 0 -> 103, type 0 -> 87, digits 0 -> 5",
                                               "removed ACCC> tag 102 -> 0, type 87 -> 0, digits 5 -> 0",
                                               "meter ACCB>ACCB tag 101 -> 201, digits 5 -> 6"}));

  // A last readings file that can't be read ends the check before it runs.
  WriteBytes(site.dir / "last.pdb", "not a handheld file");
  RouteCheck damaged;
  damaged.since = site.dir / "last.pdb";
  EXPECT_THROW(site.Exchange().CheckRoute(damaged), Failure);
}

// A list of meters to read again is read by its re-read map, and held
// against the last readings by tag when it gives nothing else: only tags
// the route does not know are new, and the route's other meters not gone.
TEST_F(RouteCheckTest, AReReadListThroughItsOwnMapAndAgainstTheLastReadings) {
  site.Fixed({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "A"), FixedLine("1", 2, 101, 'W', 'R', "2 MAIN", "B")});
  ASSERT_TRUE(site.Exchange().ConvertRoute());
  site.Map({{"RouteNbr", "C,1"}, {"Sequence", "A"}, {"MeterTagNbr", "1,8,,,0"}, {"MeterType", "C,W"},
            {"ReadType", "C,R"}, {"UtilityCode", "C,1"}, {"ServiceAddress", "C,AGAIN"}},
           1, "Tags");
  WriteBytes(site.dir / "list.txt", "00000101\r\n00000777\r\n00000101\r\n");
  clsExchange& exchange = site.Exchange();
  exchange.ReReadSource = (site.dir / "list.txt").string();
  exchange.ReReadMap = "Tags";
  exchange.ReReadDestination = (site.dir / "reread.pdb").string();
  RouteCheck check;
  check.rereadList = true;
  check.since = site.dir / "route.pdb";
  EXPECT_FALSE(exchange.CheckRoute(check));
  EXPECT_EQ(Listed(check), (std::vector<std::string>{"3 MeterTagNbr duplicate tag"}));
  EXPECT_EQ(std::tuple(check.lines, check.routes, check.meters), std::tuple(3, 1, 3));

  WriteBytes(site.dir / "list.txt", "00000101\r\n00000777\r\n");
  RouteCheck clean;
  clean.rereadList = true;
  clean.since = site.dir / "route.pdb";
  EXPECT_TRUE(exchange.CheckRoute(clean));
  ASSERT_EQ(clean.changes.size(), 1u);
  EXPECT_EQ(ChangeLine(clean.changes[0], [](std::string& line, const std::string& text) { line += text; }),
            "new: route 1, sequence 2: tag 777");
  EXPECT_EQ(exchange.ReReadDestination, (site.dir / "reread.pdb").string());
  EXPECT_FALSE(std::filesystem::exists(site.dir / "reread.pdb"));
  EXPECT_TRUE(site.shell.questions.empty());
}

// The words the command prints and the window shows, and the faults as a
// spreadsheet reads them back.
TEST(RouteCheckText, SummaryVerdictAndFaultsAsCsv) {
  RouteCheck check;
  check.lines = 1;
  check.routes = 1;
  check.meters = 1;
  EXPECT_EQ(CheckSummary(check), "1 line, 1 route, 1 meter; 0 faults");
  EXPECT_EQ(CheckVerdict(check), "The route would convert.");
  EXPECT_EQ(FaultsCsv(check), "Line,Field,Value,Kind,Message\r\n");

  check.lines = 12;
  check.Fault({2, "Sequence", "0", kFaultZero, "Sequence is zero"});
  check.Fault({0, "", "", kFaultStop, "Could not open \"r,1.txt\"\r\nat all"});
  check.Fault({11, "Address", " a\nb ", kFaultEmpty, "plain"});
  EXPECT_EQ(CheckSummary(check), "12 lines, 1 route, 1 meter; 3 faults: 1 empty, 1 stop, 1 zero");
  EXPECT_EQ(CheckVerdict(check), "The route would convert, with warnings.");
  check.Stop("a duplicate tag: 100");
  EXPECT_EQ(CheckVerdict(check), "The route would not convert: a duplicate tag: 100");
  EXPECT_EQ(FaultsCsv(check),
            "Line,Field,Value,Kind,Message\r\n"
            "2,Sequence,0,zero,Sequence is zero\r\n"
            ",,,stop,\"Could not open \"\"r,1.txt\"\"\r\nat all\"\r\n"
            "11,Address,\" a\nb \",empty,plain\r\n");
}

// The check and the conversion say the same of every route file of the
// fuzz corpora, through each of the example site's route maps.
TEST_F(RouteCheckTest, AgreesWithTheConversionOnEveryCorpusFile) {
  TestShell quiet;
  clsDist(site.Store(), quiet, site.dir.path()).LoadDist(std::string(HIFX_TEST_SOURCE_DIR) + "/../examples/site.dst");
  site.Exchange().Advanced().IndexControl(0);
  const std::filesystem::path corpora = std::filesystem::path(HIFX_TEST_SOURCE_DIR) / ".." / "fuzz" / "corpus";
  const std::vector<std::pair<std::string, std::vector<std::string>>> runs = {
      {"route_flat", {"Billing", "BillingCsv"}}, {"route_mvrs", {"Mvrs"}}, {"e5k_read", {"E5000"}}};
  int converted = 0, refused = 0;
  for (const auto& [corpus, maps] : runs) {
    for (const auto& entry : std::filesystem::directory_iterator(corpora / corpus)) {
      for (const std::string& map : maps) {
        clsExchange& exchange = site.Exchange();
        exchange.RouteSource = entry.path().string();
        exchange.RouteMap = map;
        std::filesystem::remove(site.dir / "route.pdb");
        const bool made = exchange.ConvertRoute();
        RouteCheck check;
        EXPECT_EQ(exchange.CheckRoute(check), made) << entry.path().filename() << " " << map << ": " << check.stop;
        (made ? converted : refused) += 1;
      }
    }
  }
  // Both outcomes are in the corpora.
  EXPECT_GT(converted, 10);
  EXPECT_GT(refused, 10);
}

}  // namespace
}  // namespace hifx::test
