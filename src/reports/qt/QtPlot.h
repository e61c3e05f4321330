// The meters' picture drawn in pixels, one to a unit of the picture, on
// Qt's painter.
#pragma once

#include <QImage>

#include <string>
#include <vector>

#include "hif/MeterPlot.h"

namespace hifx {

// The picture as PNG bytes. Makes the application's fonts ready when no
// application runs.
std::string PlotPng(const std::string& title, const std::vector<PlotMeter>& meters);

// The picture in pixels, for a window of a running application: the
// meters' dots where MeterPositions says.
QImage PlotImage(const std::string& title, const std::vector<PlotMeter>& meters);

}  // namespace hifx
