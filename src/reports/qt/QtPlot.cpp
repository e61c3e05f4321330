#include "reports/qt/QtPlot.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <cmath>
#include <memory>

#include "reports/qt/QtRptDevice.h"

namespace hifx {
namespace {

QColor ColourOf(uint32_t rgb) { return QColor::fromRgb(static_cast<QRgb>(rgb | 0xFF000000u)); }

// The file's bytes are Latin-1 text.
QString TextOf(const std::string& text) { return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())); }

class PainterCanvas final : public PlotCanvas {
 public:
  QImage image;

  void Begin(double width, double height) override {
    image = QImage(static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(height)), QImage::Format_RGB32);
    image.fill(Qt::white);
    painter_ = std::make_unique<QPainter>(&image);
    painter_->setRenderHint(QPainter::Antialiasing);
    painter_->setRenderHint(QPainter::TextAntialiasing);
  }
  void Line(const std::vector<std::pair<double, double>>& points, uint32_t rgb, double width) override {
    QPolygonF line;
    line.reserve(static_cast<qsizetype>(points.size()));
    for (const auto& [x, y] : points) line << QPointF(x, y);
    painter_->setPen(QPen(ColourOf(rgb), width));
    painter_->setBrush(Qt::NoBrush);
    painter_->drawPolyline(line);
  }
  void Dot(double x, double y, double radius, uint32_t rgb) override {
    painter_->setPen(Qt::NoPen);
    painter_->setBrush(ColourOf(rgb));
    painter_->drawEllipse(QPointF(x, y), radius, radius);
  }
  void Box(double x, double y, double width, double height, uint32_t rgb) override {
    painter_->fillRect(QRectF(x, y, width, height), ColourOf(rgb));
  }
  void Text(double x, double y, const std::string& text, double size, uint32_t rgb) override {
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(static_cast<int>(size));
    painter_->setFont(font);
    painter_->setPen(ColourOf(rgb));
    painter_->drawText(QPointF(x, y), TextOf(text));
  }
  void End() override { painter_.reset(); }

 private:
  std::unique_ptr<QPainter> painter_;
};

}  // namespace

QImage PlotImage(const std::string& title, const std::vector<PlotMeter>& meters) {
  PainterCanvas canvas;
  DrawPlot(title, meters, canvas);
  return canvas.image;
}

std::string PlotPng(const std::string& title, const std::vector<PlotMeter>& meters) {
  const QtReportSession session;  // the fonts
  return PngBytes(PlotImage(title, meters));
}

}  // namespace hifx
