// The page preview: one page of a report at a time, a toolbar to move
// through the pages or print them, and the page scrolled by the bars, the
// keys or a drag. The report engine draws on its picture and asks it for
// the person's choice; the window stays in being from page to page.
#pragma once

#include <QtCore/QPoint>
#include <QtWidgets/QDialog>

#include <memory>
#include <string>

#include "reports/RptDevice.h"
#include "shell/PreviewLogic.h"

class QLabel;
class QScrollArea;
class QToolBar;

namespace hifx {
class QtImageDevice;
}

namespace hifx::shell {

class frmPreview : public QDialog, public IRptPreview {
  Q_OBJECT

 public:
  explicit frmPreview(QWidget* parent = nullptr);
  ~frmPreview() override;

  IRptDevice& Picture() override;
  void SizePicture(double widthInches, double lengthInches) override;
  void ClearPicture() override;
  // Shows the page under the caption until a button is chosen or the window
  // is closed; the action word.
  std::string Display(const std::string& caption) override;

  PreviewZoom Zoom() const { return zoom_; }
  void SetZoom(PreviewZoom zoom);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Choose(const char* key);
  void AddZoomButtons();
  // Scales the picture to the zoom and the frame.
  void ShowPage();

  QToolBar* Toolbar1_;
  QScrollArea* Picture1_;
  QLabel* Preview_;
  std::unique_ptr<QtImageDevice> picture_;
  double pictureDotsPerInch_;
  double widthInches_ = 8.5;
  double lengthInches_ = 11.0;
  std::string action_;
  PreviewZoom zoom_ = PreviewZoom::FitWidth;
  QPoint dragFrom_;
};

}  // namespace hifx::shell
