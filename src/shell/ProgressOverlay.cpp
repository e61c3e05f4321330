#include "shell/ProgressOverlay.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAbstractButton>

#include "shell/MainWindowLogic.h"

namespace hifx::shell {

ProgressOverlay::ProgressOverlay(QWidget* parent) : QWidget(parent) {
  setObjectName("picPlace");
  hide();
}

void ProgressOverlay::Cover(QAbstractButton& button) {
  caption_ = button.text().remove('&');
  setFont(button.font());
  setGeometry(button.geometry());
  fill_ = 0;
  raise();
  update();
}

void ProgressOverlay::SetProgress(int32_t total, int32_t position) {
  fill_ = std::min(ProgressFillWidth(width() - 2, total, position), width());
  update();
}

void ProgressOverlay::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect inner = rect().adjusted(0, 0, -1, -1);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  painter.setPen(palette().color(QPalette::Dark));
  painter.drawRect(inner);
  const QRect filled(1, 1, std::max(0, fill_ - 1), height() - 2);
  painter.fillRect(filled, palette().color(QPalette::Highlight).lighter(130));
  // The caption in black over the empty and the filled part alike.
  painter.setPen(Qt::black);
  painter.drawText(rect(), Qt::AlignCenter, caption_);
}

}  // namespace hifx::shell
