#include "shell/ViewerLogic.h"

#include <algorithm>

#include "base/Numbers.h"

namespace hifx::shell {
namespace {

std::vector<std::pair<const char*, std::string>> Figures(const RouteReadStats& s) {
  const auto n = [](int32_t count) { return std::to_string(count); };
  return {{"Meters", n(s.meters)},
          {"Read", n(s.read)},
          {"Not read", n(s.unread)},
          {"Skipped", n(s.skipped)},
          {"By radio", n(s.radio)},
          {"By hand", n(s.manual)},
          {"By probe", n(s.probe)},
          {"Below range", n(s.low)},
          {"Above range", n(s.high)},
          {"Rollover", n(s.rollover)},
          {"Tamper", n(s.tamper)},
          {"First reading", ReadingTimeText(s.first)},
          {"Last reading", ReadingTimeText(s.last)},
          {"Time taken", s.first ? SpanText(s.SpanSeconds()) : "-"}};
}

}  // namespace

std::vector<StatLine> StatLines(const ReadStats& stats, const RouteReadStats* route) {
  std::vector<StatLine> lines;
  const auto file = Figures(stats.total);
  const auto chosen = route ? Figures(*route) : decltype(file){};
  for (size_t i = 0; i < file.size(); ++i) {
    lines.push_back({file[i].first, file[i].second, route ? chosen[i].second : std::string()});
  }
  lines.push_back({"Orphans", std::to_string(stats.orphans), {}});
  return lines;
}

const RouteReadStats* RouteCounts(const ReadStats& stats, int32_t route) {
  const auto found = std::find_if(stats.routes.begin(), stats.routes.end(),
                                  [route](const RouteReadStats& r) { return r.route == route; });
  return found == stats.routes.end() ? nullptr : &*found;
}

std::string SkippedByReason(const RouteReadStats& counts, const std::vector<SkipCode>& codes) {
  std::string text;
  for (const auto& [code, meters] : counts.skippedByCode) {
    if (!text.empty()) text += '\n';
    if (code >= 1 && static_cast<size_t>(code) <= codes.size()) {
      const SkipCode& skip = codes[static_cast<size_t>(code) - 1];
      text += skip.reason + " (" + skip.code + ")";
    } else if (code == 0) {
      text += "No skip code";
    } else {
      text += "Skip code " + std::to_string(code);
    }
    text += ": " + std::to_string(meters);
  }
  return text;
}

std::optional<size_t> NearestMeter(const std::vector<std::optional<std::pair<double, double>>>& places, double x,
                                   double y, double reach) {
  std::optional<size_t> nearest;
  double best = reach * reach;
  for (size_t i = 0; i < places.size(); ++i) {
    if (!places[i]) continue;
    const double dx = places[i]->first - x;
    const double dy = places[i]->second - y;
    const double distance = dx * dx + dy * dy;
    if (distance <= best) {
      best = distance;
      nearest = i;
    }
  }
  return nearest;
}

std::optional<ListPlace> PlaceInLists(const TextTable& routes, const std::vector<PlotMeter>& meters, size_t index) {
  if (index >= meters.size()) return std::nullopt;
  const int32_t route = meters[index].route;
  const auto row = std::find_if(routes.rows.begin(), routes.rows.end(), [route](const auto& r) {
    return !r.empty() && static_cast<int32_t>(NumericPrefix(r[0])) == route;
  });
  if (row == routes.rows.end()) return std::nullopt;
  const auto before = std::count_if(meters.begin(), meters.begin() + static_cast<std::ptrdiff_t>(index),
                                    [route](const PlotMeter& m) { return m.route == route; });
  return ListPlace{static_cast<size_t>(row - routes.rows.begin()), static_cast<size_t>(before)};
}

}  // namespace hifx::shell
