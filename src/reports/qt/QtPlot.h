// The meters' picture drawn in pixels, one to a unit of the picture, on
// Qt's painter.
#pragma once

#include <string>
#include <vector>

#include "hif/MeterPlot.h"

namespace hifx {

// The picture as PNG bytes.
std::string PlotPng(const std::string& title, const std::vector<PlotMeter>& meters);

}  // namespace hifx
