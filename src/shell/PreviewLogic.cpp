#include "shell/PreviewLogic.h"

#include <algorithm>
#include <cmath>

namespace hifx::shell {

std::string PreviewAction(const std::string& chosen) { return chosen.empty() ? "CLOSE" : chosen; }

namespace {

void MoveTo(ScrollBar& bar, int value) { bar.value = std::clamp(value, 0, std::max(0, bar.maximum)); }

}  // namespace

bool MoveByKey(int keyCode, ScrollBar& horizontal, ScrollBar& vertical) {
  switch (keyCode) {
    case kKeyUp: MoveTo(vertical, vertical.value - vertical.smallChange); break;
    case kKeyDown: MoveTo(vertical, vertical.value + vertical.smallChange); break;
    case kKeyPageUp: MoveTo(vertical, vertical.value - vertical.largeChange); break;
    case kKeyPageDown: MoveTo(vertical, vertical.value + vertical.largeChange); break;
    case kKeyLeft: MoveTo(horizontal, horizontal.value - horizontal.smallChange); break;
    case kKeyRight: MoveTo(horizontal, horizontal.value + horizontal.smallChange); break;
    case kKeyHome: MoveTo(vertical, 0); break;
    case kKeyEnd: MoveTo(vertical, vertical.maximum); break;
    default: return false;
  }
  return true;
}

void MoveByDrag(int dx, int dy, ScrollBar& horizontal, ScrollBar& vertical) {
  MoveTo(horizontal, horizontal.value - dx);
  MoveTo(vertical, vertical.value - dy);
}

Size PageOnScreen(PreviewZoom zoom, double widthInches, double lengthInches, Size frame, double dotsPerInch) {
  const double width = widthInches * dotsPerInch;
  const double length = lengthInches * dotsPerInch;
  double scale = 1.0;
  if (zoom == PreviewZoom::FitWidth) {
    scale = frame.width / width;
  } else if (zoom == PreviewZoom::WholePage) {
    scale = std::min(frame.width / width, frame.height / length);
  }
  // Never smaller than an inch, whatever the frame.
  scale = std::max(scale, dotsPerInch / std::max(width, length));
  return {static_cast<int>(std::floor(width * scale)), static_cast<int>(std::floor(length * scale))};
}

}  // namespace hifx::shell
