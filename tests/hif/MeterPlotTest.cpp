// The meters' picture as SVG: every placed meter a dot of its state's
// colour, each route one line in sequence order, the scale bar's length,
// the meters without a position listed, the file's text made safe.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <regex>

#include "hif/MeterPlot.h"

namespace hifx::test {
namespace {

size_t Occurrences(const std::string& text, const std::string& part) {
  size_t n = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

PlotMeter At(int32_t route, int32_t sequence, int32_t lat, int32_t lng, PlotState state = PlotState::Read) {
  return {route, sequence, lat, lng, state, "AC" + std::to_string(route * 100 + sequence), "SN" + std::to_string(sequence)};
}

TEST(MeterPlot, DotsLinesAndLegend) {
  // Route 1 along a street eastward, listed out of order; route 2 a block
  // north; one meter of each state.
  const std::vector<PlotMeter> meters = {
      At(1, 30, 45000000, 7002000, PlotState::Exception), At(1, 10, 45000000, 7000000),
      At(1, 20, 45000000, 7001000, PlotState::Skipped),   At(2, 10, 45001000, 7000000, PlotState::Unread),
      At(2, 20, 45001000, 7001000)};
  const std::string svg = PlotSvg("route.pdb", meters);
  EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
  EXPECT_NE(svg.find(">route.pdb: 5 meters on 2 routes</text>"), std::string::npos);
  // Five meters and four legend dots, by colour.
  EXPECT_EQ(Occurrences(svg, "<circle"), 9u);
  EXPECT_EQ(Occurrences(svg, "fill=\"#2e7d32\"/>"), 3u);  // read: two and the legend's
  for (const char* colour : {"#c62828", "#ef6c00", "#9e9e9e"}) {
    EXPECT_EQ(Occurrences(svg, std::string("fill=\"") + colour + "\"/>"), 2u) << colour;
  }
  EXPECT_NE(svg.find(">Read (2)</text>"), std::string::npos);
  EXPECT_NE(svg.find(">Out of range or rollover (1)</text>"), std::string::npos);

  // One line a route; route 1's points from west to east, as its sequence.
  EXPECT_EQ(Occurrences(svg, "<polyline"), 2u);
  std::smatch line;
  ASSERT_TRUE(std::regex_search(svg, line, std::regex("points=\"([-0-9.]+),[-0-9.]+ ([-0-9.]+),[-0-9.]+ ([-0-9.]+),")));
  EXPECT_LT(std::stod(line[1]), std::stod(line[2]));
  EXPECT_LT(std::stod(line[2]), std::stod(line[3]));
  // The town is 157 m across, fitted to 920 pixels: a 20 m bar.
  EXPECT_NE(svg.find(">20 m</text>"), std::string::npos);
  EXPECT_EQ(svg.find("without a position"), std::string::npos);

  // The places for a click are where the dots are drawn.
  const auto places = MeterPositions(meters);
  for (size_t i = 0; i < meters.size(); ++i) {
    ASSERT_TRUE(places[i].has_value());
    char dot[64];
    std::snprintf(dot, sizeof dot, "<circle cx=\"%g\" cy=\"%g\"", std::round(places[i]->first * 10) / 10,
                  std::round(places[i]->second * 10) / 10);
    EXPECT_NE(svg.find(dot), std::string::npos) << dot;
  }
  EXPECT_FALSE(MeterPositions({At(1, 1, 0, 0)})[0].has_value());
}

TEST(MeterPlot, MetersWithoutAPositionAreListedAndTheirTextMadeSafe) {
  std::vector<PlotMeter> meters;
  for (int32_t i = 1; i <= 103; ++i) meters.push_back(At(1, i, 0, 0));
  meters[0].serial = "A&B<1>\x01\xE9";
  const std::string svg = PlotSvg("r\"1\".pdb", meters);
  EXPECT_NE(svg.find(">No meter has a position.</text>"), std::string::npos);
  EXPECT_NE(svg.find(">Meters without a position (103):</text>"), std::string::npos);
  EXPECT_NE(svg.find(">route 1, sequence 1, meter A&amp;B&lt;1&gt;?\xC3\xA9, account AC101</text>"), std::string::npos);
  EXPECT_NE(svg.find(">route 1, sequence 100, "), std::string::npos);
  EXPECT_EQ(svg.find(">route 1, sequence 101, "), std::string::npos);
  EXPECT_NE(svg.find(">and 3 more</text>"), std::string::npos);
  EXPECT_NE(svg.find(">r&quot;1&quot;.pdb: 103 meters on 1 route</text>"), std::string::npos);
}

TEST(MeterPlot, TheScaleBarIsOneTwoOrFiveTimesAPowerOfTen) {
  const std::pair<double, double> cases[] = {{1.0, 100}, {0.5, 50}, {13.3, 1000}, {0.01, 1}, {2.0, 200}, {4.0, 500}};
  for (const auto& [metresPerPixel, metres] : cases) {
    EXPECT_DOUBLE_EQ(ScaleBarMetres(metresPerPixel), metres) << metresPerPixel;
  }
}

}  // namespace
}  // namespace hifx::test
