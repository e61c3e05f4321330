#include "hif/MeterPlot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>

#include "base/Text.h"
#include "hif/ReadingOutcome.h"
#include "hif/clsHIF.h"

namespace hifx {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMetresPerDegree = 6371008.8 * kPi / 180.0;  // along a meridian of the mean earth
constexpr double kWidth = 1000;
constexpr double kMargin = 40;
constexpr double kLineHeight = 18;
constexpr double kLegendCharWidth = 6.5;  // about, at 12 pixels
constexpr uint32_t kInk = 0x202020;
constexpr uint32_t kRouteLine = 0x90A4AE;

struct StateLook {
  PlotState state;
  uint32_t rgb;
  const char* word;
};
constexpr std::array<StateLook, 4> kLooks = {{{PlotState::Read, 0x2E7D32, "Read"},
                                              {PlotState::Exception, 0xC62828, "Out of range or rollover"},
                                              {PlotState::Skipped, 0xEF6C00, "Skipped"},
                                              {PlotState::Unread, 0x9E9E9E, "Not read"}}};

uint32_t ColourOf(PlotState state) { return kLooks[static_cast<size_t>(state)].rgb; }

PlotState StateOf(const ReadingNumbers& n) {
  switch (FieldOutcomeOf(n)) {
    case ReadingOutcome::Missed: return PlotState::Unread;
    case ReadingOutcome::Skipped: return PlotState::Skipped;
    case ReadingOutcome::Low:
    case ReadingOutcome::High:
    case ReadingOutcome::Rollover: return PlotState::Exception;
    default: return PlotState::Read;
  }
}

// Where the placed meters fall: x east and y north in metres from the
// south-west corner, on a plane through the middle latitude.
struct Projection {
  double west = 0, south = 0, east = 0, north = 0, metresPerDegreeEast = kMetresPerDegree;
  double X(const PlotMeter& m) const { return (m.lng / 1e6 - west) * metresPerDegreeEast; }
  double Y(const PlotMeter& m) const { return (m.lat / 1e6 - south) * kMetresPerDegree; }
  double WidthMetres() const { return (east - west) * metresPerDegreeEast; }
  double HeightMetres() const { return (north - south) * kMetresPerDegree; }
};

Projection ProjectionOf(const std::vector<PlotMeter>& meters) {
  Projection p{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
               std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest()};
  for (const PlotMeter& m : meters) {
    if (!m.Placed()) continue;
    p.west = std::min(p.west, m.lng / 1e6);
    p.east = std::max(p.east, m.lng / 1e6);
    p.south = std::min(p.south, m.lat / 1e6);
    p.north = std::max(p.north, m.lat / 1e6);
  }
  p.metresPerDegreeEast = kMetresPerDegree * std::max(std::cos((p.south + p.north) / 2 * kPi / 180.0), 0.01);
  return p;
}

// The map's place on the picture and its metres a pixel: the meters' extent
// fitted to the width, its height following, within bounds; at least 100
// metres across so that one meter or one street still shows.
struct MapArea {
  double top = 0, height = 0, metresPerPixel = 1;
};

MapArea FitMap(const Projection& p, double top) {
  const double inner = kWidth - 2 * kMargin;
  const double across = std::max({p.WidthMetres(), p.HeightMetres() * inner / 800.0, 100.0});
  MapArea area{top, std::clamp(p.HeightMetres() * inner / across, 200.0, 800.0), across / inner};
  return area;
}

std::string Count(size_t n, const char* one, const char* many) { return std::to_string(n) + " " + (n == 1 ? one : many); }

constexpr double kMapTop = kMargin + 24;

MapArea AreaOf(const std::vector<PlotMeter>& meters, const Projection& projection) {
  const bool anyPlaced = std::any_of(meters.begin(), meters.end(), [](const PlotMeter& m) { return m.Placed(); });
  return anyPlaced ? FitMap(projection, kMapTop) : MapArea{kMapTop, 60, 1};
}

// Each meter's place on the map: centred in the map area, north up.
std::vector<std::optional<std::pair<double, double>>> Place(const std::vector<PlotMeter>& meters,
                                                            const Projection& p, const MapArea& area) {
  const double left = kMargin + ((kWidth - 2 * kMargin) - p.WidthMetres() / area.metresPerPixel) / 2;
  const double bottom = area.top + area.height - (area.height - p.HeightMetres() / area.metresPerPixel) / 2;
  std::vector<std::optional<std::pair<double, double>>> places(meters.size());
  for (size_t i = 0; i < meters.size(); ++i) {
    if (!meters[i].Placed()) continue;
    places[i] = std::pair(left + p.X(meters[i]) / area.metresPerPixel, bottom - p.Y(meters[i]) / area.metresPerPixel);
  }
  return places;
}

void DrawRoutes(const std::vector<PlotMeter>& meters, const Projection& p, const MapArea& area, PlotCanvas& canvas) {
  const auto places = Place(meters, p, area);
  std::map<int32_t, std::vector<size_t>> routes;
  size_t placed = 0;
  for (size_t i = 0; i < meters.size(); ++i) {
    if (!places[i]) continue;
    routes[meters[i].route].push_back(i);
    ++placed;
  }
  for (auto& [route, list] : routes) {
    std::stable_sort(list.begin(), list.end(), [&](size_t a, size_t b) { return meters[a].sequence < meters[b].sequence; });
    std::vector<std::pair<double, double>> line;
    for (const size_t i : list) line.push_back(*places[i]);
    if (line.size() > 1) canvas.Line(line, kRouteLine, 1);
  }
  const double radius = placed > 2000 ? 2 : 3.5;
  for (const auto& [route, list] : routes) {
    for (const size_t i : list) canvas.Dot(places[i]->first, places[i]->second, radius, ColourOf(meters[i].state));
  }
}

std::string DistanceText(double metres) {
  char text[32];
  if (metres >= 1000) {
    std::snprintf(text, sizeof text, "%g km", metres / 1000);
  } else {
    std::snprintf(text, sizeof text, "%g m", metres);
  }
  return text;
}

void DrawScaleBar(double metresPerPixel, double y, PlotCanvas& canvas) {
  const double metres = ScaleBarMetres(metresPerPixel);
  const double length = metres / metresPerPixel;
  canvas.Box(kMargin, y - 4, length, 4, kInk);
  canvas.Box(kMargin, y - 10, 1.5, 10, kInk);
  canvas.Box(kMargin + length - 1.5, y - 10, 1.5, 10, kInk);
  canvas.Text(kMargin + length + 8, y, DistanceText(metres), 12, kInk);
}

void DrawLegend(const std::vector<PlotMeter>& meters, double y, PlotCanvas& canvas) {
  std::array<size_t, 4> counts{};
  for (const PlotMeter& m : meters) ++counts[static_cast<size_t>(m.state)];
  double x = kMargin;
  for (const StateLook& look : kLooks) {
    canvas.Dot(x + 5, y - 4, 5, look.rgb);
    const std::string text = std::string(look.word) + " (" + std::to_string(counts[static_cast<size_t>(look.state)]) + ")";
    canvas.Text(x + 16, y, text, 12, kInk);
    x += 16 + kLegendCharWidth * static_cast<double>(text.size()) + 24;
  }
}

// The meters without a position, one line each, route and sequence first.
double DrawUnplaced(const std::vector<PlotMeter>& meters, double y, PlotCanvas& canvas) {
  std::vector<const PlotMeter*> unplaced;
  for (const PlotMeter& m : meters) {
    if (!m.Placed()) unplaced.push_back(&m);
  }
  if (unplaced.empty()) return y;
  canvas.Text(kMargin, y, "Meters without a position (" + std::to_string(unplaced.size()) + "):", 12, kInk);
  for (size_t i = 0; i < unplaced.size() && i < kUnplacedListed; ++i) {
    const PlotMeter& m = *unplaced[i];
    y += kLineHeight;
    canvas.Text(kMargin + 12, y,
                "route " + std::to_string(m.route) + ", sequence " + std::to_string(m.sequence) + ", meter " +
                    m.serial + ", account " + m.account,
                12, kInk);
  }
  if (unplaced.size() > kUnplacedListed) {
    y += kLineHeight;
    canvas.Text(kMargin + 12, y, "and " + std::to_string(unplaced.size() - kUnplacedListed) + " more", 12, kInk);
  }
  return y;
}

size_t RouteCount(const std::vector<PlotMeter>& meters) {
  std::vector<int32_t> routes;
  for (const PlotMeter& m : meters) routes.push_back(m.route);
  std::sort(routes.begin(), routes.end());
  return static_cast<size_t>(std::unique(routes.begin(), routes.end()) - routes.begin());
}

// SVG text: markup characters as entities, the file's bytes as the Latin-1
// characters of their codes in UTF-8, control characters as "?".
void AppendSvgText(std::string& out, const std::string& text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '&') out += "&amp;";
    else if (c == '<') out += "&lt;";
    else if (c == '>') out += "&gt;";
    else if (c == '"') out += "&quot;";
    else if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0)) out += '?';
    else if (byte >= 0xA0) {
      out += static_cast<char>(0xC0 | (byte >> 6));
      out += static_cast<char>(0x80 | (byte & 0x3F));
    } else {
      out += c;
    }
  }
}

class SvgCanvas final : public PlotCanvas {
 public:
  std::string svg;

  void Begin(double width, double height) override {
    Append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" "
           "height=\"%g\" viewBox=\"0 0 %g %g\" font-family=\"Liberation Sans, Arial, sans-serif\">\n",
           width, height, width, height);
    Append("<rect width=\"%g\" height=\"%g\" fill=\"#ffffff\"/>\n", width, height);
  }
  void Line(const std::vector<std::pair<double, double>>& points, uint32_t rgb, double width) override {
    svg += "<polyline fill=\"none\" stroke=\"" + Colour(rgb) + "\" stroke-width=\"" + Number(width) + "\" points=\"";
    for (size_t i = 0; i < points.size(); ++i) {
      if (i > 0) svg += ' ';
      svg += Number(points[i].first) + "," + Number(points[i].second);
    }
    svg += "\"/>\n";
  }
  void Dot(double x, double y, double radius, uint32_t rgb) override {
    svg += "<circle cx=\"" + Number(x) + "\" cy=\"" + Number(y) + "\" r=\"" + Number(radius) + "\" fill=\"" +
           Colour(rgb) + "\"/>\n";
  }
  void Box(double x, double y, double width, double height, uint32_t rgb) override {
    svg += "<rect x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" width=\"" + Number(width) + "\" height=\"" +
           Number(height) + "\" fill=\"" + Colour(rgb) + "\"/>\n";
  }
  void Text(double x, double y, const std::string& text, double size, uint32_t rgb) override {
    svg += "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" font-size=\"" + Number(size) + "\" fill=\"" +
           Colour(rgb) + "\">";
    AppendSvgText(svg, text);
    svg += "</text>\n";
  }
  void End() override { svg += "</svg>\n"; }

 private:
  template <typename... Args>
  void Append(const char* format, Args... args) {
    char text[512];
    std::snprintf(text, sizeof text, format, args...);
    svg += text;
  }
  static std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    std::string s = text;
    if (s.size() > 2 && s.compare(s.size() - 2, 2, ".0") == 0) s.resize(s.size() - 2);
    return s == "-0" ? "0" : s;
  }
  static std::string Colour(uint32_t rgb) {
    char text[8];
    std::snprintf(text, sizeof text, "#%06x", static_cast<unsigned>(rgb & 0xFFFFFF));
    return text;
  }
};

}  // namespace

double ScaleBarMetres(double metresPerPixel) {
  const double target = std::max(150.0 * metresPerPixel, 1e-3);
  const double power = std::pow(10.0, std::floor(std::log10(target)));
  for (const double step : {5.0, 2.0, 1.0}) {
    if (step * power <= target) return step * power;
  }
  return power;
}

std::vector<PlotMeter> ReadPlotMeters(IShell& shell, const std::filesystem::path& file) {
  clsHIF hif(shell);
  OpenToRead(hif, file);
  std::vector<PlotMeter> meters;
  while (hif.ReadData()) {
    if (NumberOf(hif.Item("RecType")) != kRecMeter) continue;
    const auto number = [&](const char* name) { return NumberOf(hif.Item(name)); };
    const ReadingNumbers n{number("Status"),      number("ReadType"),   WholeReading(number("CurReading"), number("Decimals")),
                           number("ReadingDate"), number("MinReading"), number("MaxReading"),
                           number("PrvReading"),  number("ResponseCode")};
    meters.push_back({number("RouteNbr"), number("Sequence"), number("Lat"), number("Lng"), StateOf(n),
                      std::string(Trim(TextOf(hif.Item("ServiceUniqueID")))),
                      std::string(Trim(TextOf(hif.Item("MeterSerialNbr"))))});
  }
  return meters;
}

void DrawPlot(const std::string& title, const std::vector<PlotMeter>& meters, PlotCanvas& canvas) {
  const size_t placed = static_cast<size_t>(std::count_if(meters.begin(), meters.end(), [](auto& m) { return m.Placed(); }));
  const size_t unplaced = meters.size() - placed;
  const size_t listed = std::min(unplaced, kUnplacedListed) + (unplaced > kUnplacedListed ? 1 : 0);
  const Projection projection = ProjectionOf(meters);
  const MapArea area = AreaOf(meters, projection);
  const double below = area.top + area.height + 36;
  const double height = below + 2 * kLineHeight + 8 + (unplaced > 0 ? (static_cast<double>(listed) + 1) * kLineHeight : 0) + kMargin / 2;

  canvas.Begin(kWidth, height);
  canvas.Text(kMargin, kMargin, title + ": " + Count(meters.size(), "meter", "meters") + " on " +
                                    Count(RouteCount(meters), "route", "routes"),
              14, kInk);
  if (placed > 0) {
    DrawRoutes(meters, projection, area, canvas);
    DrawScaleBar(area.metresPerPixel, below, canvas);
  } else {
    canvas.Text(kMargin, area.top + 30, "No meter has a position.", 12, kInk);
  }
  DrawLegend(meters, below + kLineHeight + 8, canvas);
  DrawUnplaced(meters, below + 2 * kLineHeight + 8 + kLineHeight, canvas);
  canvas.End();
}

std::vector<std::optional<std::pair<double, double>>> MeterPositions(const std::vector<PlotMeter>& meters) {
  const Projection projection = ProjectionOf(meters);
  return Place(meters, projection, AreaOf(meters, projection));
}

std::string PlotSvg(const std::string& title, const std::vector<PlotMeter>& meters) {
  SvgCanvas canvas;
  DrawPlot(title, meters, canvas);
  return std::move(canvas.svg);
}

}  // namespace hifx
