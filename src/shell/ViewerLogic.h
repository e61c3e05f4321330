// What the HIF viewer decides apart from drawing: the read counts as its
// statistics panel words them, and which meter a click on the map lands on
// and where that meter stands in the route and meter lists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hif/HifView.h"
#include "hif/MeterPlot.h"
#include "hif/ReadStats.h"

namespace hifx::shell {

// One line of the statistics panel: its caption and the figure for the
// whole file and for the route chosen.
struct StatLine {
  std::string caption;
  std::string file;
  std::string route;
  bool operator==(const StatLine&) const = default;
};

// The panel's lines in order, "Meters" to "Orphans"; the route's figures
// are empty without a route. Orphans belong to no route.
std::vector<StatLine> StatLines(const ReadStats& stats, const RouteReadStats* route);

// The counts of that route; none when the file holds no meter of it.
const RouteReadStats* RouteCounts(const ReadStats& stats, int32_t route);

// The skipped meters by the reason the file's skip list gives for each
// response code, a line a code: "Locked gate (LCK): 1". Empty when none.
std::string SkippedByReason(const RouteReadStats& counts, const std::vector<SkipCode>& codes);

// How far from a dot's middle, in pixels, a click still picks its meter.
inline constexpr double kDotReach = 6;

// The meter whose dot is nearest the point, if one is within reach.
std::optional<size_t> NearestMeter(const std::vector<std::optional<std::pair<double, double>>>& places, double x,
                                   double y, double reach = kDotReach);

// Where the viewer lists a meter: the row of its route in the route list
// and its row among that route's meter records, which the meter list shows
// in file order.
struct ListPlace {
  size_t routeRow = 0;
  size_t meterRow = 0;
  bool operator==(const ListPlace&) const = default;
};

// The list places of meters[index], the file's meter records in order;
// none when the file has no route record for its route.
std::optional<ListPlace> PlaceInLists(const TextTable& routes, const std::vector<PlotMeter>& meters, size_t index);

}  // namespace hifx::shell
