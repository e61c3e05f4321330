#include "reports/RptDevice.h"

#include <algorithm>
#include <cmath>

namespace hifx {
namespace {

// Calls fn for each line of the text.
template <typename Fn>
void ForEachLine(std::string_view text, Fn fn) {
  for (;;) {
    const size_t at = text.find(kRptLineBreak);
    if (at == std::string_view::npos) {
      fn(text);
      return;
    }
    fn(text.substr(0, at));
    text.remove_prefix(at + kRptLineBreak.size());
  }
}

}  // namespace

double RptSurface::PixelsPerUnit() const {
  switch (scaleMode_) {
    case kScaleTwips: return DotsPerInch() / 1440.0;
    case kScalePoints: return DotsPerInch() / 72.0;
    case kScalePixels: return 1.0;
    case kScaleMillimeters: return DotsPerInch() / 25.4;
    case kScaleCentimeters: return DotsPerInch() / 2.54;
    default: return DotsPerInch();
  }
}

void RptSurface::SetScaleMode(int16_t mode) {
  switch (mode) {
    case kScaleTwips:
    case kScalePoints:
    case kScalePixels:
    case kScaleInches:
    case kScaleMillimeters:
    case kScaleCentimeters: scaleMode_ = mode; break;
    default: break;  // user and character scales are not offered
  }
}

double RptSurface::TextWidth(std::string_view text) const {
  double widest = 0;
  ForEachLine(text, [&](std::string_view line) { widest = std::max(widest, MeasureText(line)); });
  return widest / PixelsPerUnit();
}

double RptSurface::TextHeight(std::string_view text) const {
  int lines = 0;
  ForEachLine(text, [&](std::string_view) { ++lines; });
  return lines * LineHeightPixels() / PixelsPerUnit();
}

void RptSurface::Print(std::string_view text) {
  PaintText(x_, y_, text);
  x_ += MeasureText(text);
}

void RptSurface::Line(double x1, double y1, double x2, double y2) {
  const double k = PixelsPerUnit();
  PaintLine(x1 * k, y1 * k, x2 * k, y2 * k);
  x_ = x2 * k;
  y_ = y2 * k;
}

void RptSurface::FillRect(double x1, double y1, double x2, double y2) {
  const double k = PixelsPerUnit();
  const double left = std::floor(std::min(x1, x2) * k);
  const double top = std::floor(std::min(y1, y2) * k);
  const double right = std::floor(std::max(x1, x2) * k);
  const double bottom = std::floor(std::max(y1, y2) * k);
  PaintFill(left, top, right - left + 1, bottom - top + 1);
  x_ = x2 * k;
  y_ = y2 * k;
}

void RptSurface::PaintPicture(const RptPicture& picture, double x, double y, double width,
                              double height) {
  const double k = PixelsPerUnit();
  double w = width * k;
  double h = height * k;
  if (width <= 0 || height <= 0) {
    // Natural size: the picture's own inches on this surface.
    const double scale = picture.dotsPerInch > 0 ? DotsPerInch() / picture.dotsPerInch : 1.0;
    w = picture.width * scale;
    h = picture.height * scale;
  }
  PaintImage(picture, x * k, y * k, w, h);
}

void RptSurface::Blit(const RptPicture& picture, int32_t width, int32_t height, int32_t x, int32_t y) {
  RptPicture part;
  part.width = std::clamp(width, 0, picture.width);
  part.height = std::clamp(height, 0, picture.height);
  part.dotsPerInch = picture.dotsPerInch;
  part.pixels.reserve(static_cast<size_t>(part.width) * static_cast<size_t>(part.height));
  for (int32_t row = 0; row < part.height; ++row) {
    const auto from = picture.pixels.begin() + static_cast<std::ptrdiff_t>(row) * picture.width;
    part.pixels.insert(part.pixels.end(), from, from + part.width);
  }
  PaintImage(part, x, y, part.width, part.height);
}

}  // namespace hifx
