// What the HIF viewer decides without a toolkit: the statistics panel's
// lines, the skipped meters by reason, the meter a click on the map picks
// and where that meter stands in the route and meter lists.
#include <gtest/gtest.h>

#include "shell/ViewerLogic.h"

namespace hifx::test {
namespace {

using namespace hifx::shell;

RouteReadStats Counts(int32_t route, int32_t meters, int32_t read) {
  RouteReadStats s;
  s.route = route;
  s.meters = meters;
  s.read = read;
  s.unread = meters - read;
  return s;
}

TEST(ViewerStats, TheFileAndTheChosenRouteSideBySide) {
  ReadStats stats;
  stats.routes = {Counts(3, 4, 1), Counts(7, 6, 4)};
  stats.routes[1].first = ReadingTime{20240309, 235900};
  stats.routes[1].last = ReadingTime{20240310, 2000};
  stats.total = Counts(0, 10, 5);
  stats.total.tamper = 2;
  stats.total.first = stats.routes[1].first;
  stats.total.last = stats.routes[1].last;
  stats.orphans = 2;

  ASSERT_EQ(RouteCounts(stats, 7), &stats.routes[1]);
  EXPECT_EQ(RouteCounts(stats, 5), nullptr);
  const auto lines = StatLines(stats, RouteCounts(stats, 7));
  std::vector<std::string> captions;
  for (const StatLine& line : lines) captions.push_back(line.caption);
  EXPECT_EQ(captions, (std::vector<std::string>{"Meters", "Read", "Not read", "Skipped", "By radio", "By hand",
                                                "By probe", "Below range", "Above range", "Rollover", "Tamper",
                                                "First reading", "Last reading", "Time taken", "Orphans"}));
  EXPECT_EQ(lines[0], (StatLine{"Meters", "10", "6"}));
  EXPECT_EQ(lines[2], (StatLine{"Not read", "5", "2"}));
  EXPECT_EQ(lines[10], (StatLine{"Tamper", "2", "0"}));
  EXPECT_EQ(lines[11], (StatLine{"First reading", "2024-03-09 23:59:00", "2024-03-09 23:59:00"}));
  EXPECT_EQ(lines[13], (StatLine{"Time taken", "0:21:00", "0:21:00"})) << "over midnight";
  EXPECT_EQ(lines[14], (StatLine{"Orphans", "2", ""})) << "orphans belong to no route";

  // A route not yet read has no times; no route chosen leaves its figures empty.
  const auto unread = StatLines(stats, RouteCounts(stats, 3));
  EXPECT_EQ(unread[12], (StatLine{"Last reading", "2024-03-10 00:20:00", "-"}));
  EXPECT_EQ(unread[13].route, "-");
  for (const StatLine& line : StatLines(stats, nullptr)) EXPECT_EQ(line.route, "") << line.caption;
}

TEST(ViewerStats, SkippedMetersByTheReasonOfTheirCode) {
  RouteReadStats s;
  EXPECT_EQ(SkippedByReason(s, {}), "");
  s.skippedByCode = {{0, 2}, {2, 1}, {5, 3}};
  const std::vector<SkipCode> codes = {{"DOG", "Dog in yard"}, {"LCK", "Locked gate"}};
  EXPECT_EQ(SkippedByReason(s, codes), "No skip code: 2\nLocked gate (LCK): 1\nSkip code 5: 3");
}

TEST(ViewerMap, AClickPicksTheNearestDotWithinReach) {
  using Place = std::optional<std::pair<double, double>>;
  const std::vector<Place> places = {Place{{100, 100}}, std::nullopt, Place{{108, 100}}, Place{{300, 50}}};
  EXPECT_EQ(NearestMeter(places, 103, 100), 0u);
  EXPECT_EQ(NearestMeter(places, 105, 101), 2u);
  EXPECT_EQ(NearestMeter(places, 300, 56), 3u) << "at the edge of reach";
  EXPECT_EQ(NearestMeter(places, 300, 56.5), std::nullopt);
  EXPECT_EQ(NearestMeter(places, 0, 0), std::nullopt) << "a meter without a position is never picked";
  EXPECT_EQ(NearestMeter({}, 100, 100), std::nullopt);
  EXPECT_EQ(NearestMeter(places, 120, 100, 15), 2u);
}

TEST(ViewerMap, AMeterIsFoundInItsRoutesListByItsPlaceAmongThatRoutesMeters) {
  const TextTable routes{{"Index", "Route", "Meters", "First Read", "Last Read"},
                         {{"7", "NORTH", "3", "", ""}, {"3", "SOUTH", "2", "", ""}}};
  std::vector<PlotMeter> meters;
  for (const int32_t route : {7, 3, 7, 9, 3, 7}) {
    PlotMeter meter;
    meter.route = route;
    meters.push_back(meter);
  }
  EXPECT_EQ(PlaceInLists(routes, meters, 0), (ListPlace{0, 0}));
  EXPECT_EQ(PlaceInLists(routes, meters, 4), (ListPlace{1, 1}));
  EXPECT_EQ(PlaceInLists(routes, meters, 5), (ListPlace{0, 2}));
  EXPECT_EQ(PlaceInLists(routes, meters, 3), std::nullopt) << "route 9 has no route record";
  EXPECT_EQ(PlaceInLists(routes, meters, 6), std::nullopt);
}

}  // namespace
}  // namespace hifx::test
