// The progress bar of a conversion, drawn inside the button that started it:
// laid exactly over the button, the caption centred, the filled part growing
// from the left, the caption readable on both parts.
#pragma once

#include <QtWidgets/QWidget>

#include <cstdint>

class QAbstractButton;

namespace hifx::shell {

class ProgressOverlay final : public QWidget {
 public:
  explicit ProgressOverlay(QWidget* parent);

  // Covers the button with an empty bar bearing its caption.
  void Cover(QAbstractButton& button);
  void SetProgress(int32_t total, int32_t position);
  int FillWidth() const { return fill_; }
  const QString& Caption() const { return caption_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString caption_;
  int fill_ = 0;
};

}  // namespace hifx::shell
