// The meters of a route or reading file on a picture: placed by latitude and
// longitude, coloured by what the reading came to, joined in sequence order
// route by route, with a scale bar and a legend; the meters without a
// position listed under it. No map beneath: the picture needs no network.
//
// The picture is drawn on a PlotCanvas: SVG text here, pixels where a
// painter is at hand.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>
#include <string>
#include <vector>

#include "base/Shell.h"

namespace hifx {

enum class PlotState { Read, Exception, Skipped, Unread };

struct PlotMeter {
  int32_t route = 0;
  int32_t sequence = 0;
  int32_t lat = 0;  // millionths of a degree; 0 and 0 is no position
  int32_t lng = 0;
  PlotState state = PlotState::Unread;
  std::string account;
  std::string serial;
  bool Placed() const { return lat != 0 || lng != 0; }
};

// Every meter record of the file. Raises a failure of kind BadInput, naming
// the file, when it can't be read.
std::vector<PlotMeter> ReadPlotMeters(IShell& shell, const std::filesystem::path& file);

// What the picture is drawn with; colours as 0xRRGGBB, places in pixels
// from the top left, texts' places at the left end of their baseline.
class PlotCanvas {
 public:
  virtual ~PlotCanvas() = default;
  virtual void Begin(double width, double height) = 0;
  virtual void Line(const std::vector<std::pair<double, double>>& points, uint32_t rgb, double width) = 0;
  virtual void Dot(double x, double y, double radius, uint32_t rgb) = 0;
  virtual void Box(double x, double y, double width, double height, uint32_t rgb) = 0;
  virtual void Text(double x, double y, const std::string& text, double size, uint32_t rgb) = 0;
  virtual void End() = 0;
};

// The most meters listed by name under the picture; the rest are counted.
inline constexpr size_t kUnplacedListed = 100;

void DrawPlot(const std::string& title, const std::vector<PlotMeter>& meters, PlotCanvas& canvas);

// Where DrawPlot puts each meter's dot, in the picture's pixels; none for a
// meter without a position. For finding the meter under a click.
std::vector<std::optional<std::pair<double, double>>> MeterPositions(const std::vector<PlotMeter>& meters);

// The picture as an SVG document.
std::string PlotSvg(const std::string& title, const std::vector<PlotMeter>& meters);

// The scale bar's length in metres for a map of that many metres a pixel:
// 1, 2 or 5 times a power of ten, near 150 pixels long.
double ScaleBarMetres(double metresPerPixel);

}  // namespace hifx
