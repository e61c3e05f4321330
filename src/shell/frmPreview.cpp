#include "shell/frmPreview.h"

#include <QtGui/QActionGroup>
#include <QtGui/QIcon>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <array>
#include <utility>

#include "reports/qt/QtRptDevice.h"
#include "shell/Dialogs.h"

namespace hifx::shell {
namespace {

// The page is drawn at twice the screen's resolution, so that it stays
// sharp up to twice its actual size and scales down smoothly.
constexpr double kPictureSharpness = 2.0;

// The desktop theme's icon of an action, else the style's like one; print
// has none in the style, and goes by its caption alone there.
QIcon IconOf(const QStyle& style, std::string_view key) {
  struct Icon {
    std::string_view key;
    const char* theme;
    QStyle::StandardPixmap fallback;
  };
  static constexpr std::array<Icon, 6> kIcons = {{{"FIRST", "go-first", QStyle::SP_MediaSkipBackward},
                                                  {"PREV", "go-previous", QStyle::SP_ArrowBack},
                                                  {"NEXT", "go-next", QStyle::SP_ArrowForward},
                                                  {"LAST", "go-last", QStyle::SP_MediaSkipForward},
                                                  {"PRINT", "document-print", QStyle::SP_CustomBase},
                                                  {"CLOSE", "window-close", QStyle::SP_DialogCloseButton}}};
  for (const Icon& icon : kIcons) {
    if (icon.key != key) continue;
    const QIcon fallback = icon.fallback == QStyle::SP_CustomBase ? QIcon() : style.standardIcon(icon.fallback);
    return QIcon::fromTheme(icon.theme, fallback);
  }
  return {};
}

// The grey around the page on screen, in pixels.
constexpr int kPageGap = 12;

// Qt's keys and the preview's key codes.
constexpr std::array<std::pair<int, int>, 8> kKeys = {{{Qt::Key_PageUp, kKeyPageUp},
                                                       {Qt::Key_PageDown, kKeyPageDown},
                                                       {Qt::Key_End, kKeyEnd},
                                                       {Qt::Key_Home, kKeyHome},
                                                       {Qt::Key_Left, kKeyLeft},
                                                       {Qt::Key_Up, kKeyUp},
                                                       {Qt::Key_Right, kKeyRight},
                                                       {Qt::Key_Down, kKeyDown}}};

ScrollBar BarOf(const QScrollBar& bar) { return {bar.value(), bar.maximum(), bar.singleStep(), bar.pageStep()}; }

}  // namespace

frmPreview::frmPreview(QWidget* parent)
    : QDialog(parent),
      Toolbar1_(new QToolBar),
      Picture1_(new QScrollArea),
      Preview_(new QLabel),
      pictureDotsPerInch_(logicalDpiX() * devicePixelRatioF() * kPictureSharpness) {
  setObjectName("frmPreview");
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  Toolbar1_->setObjectName("Toolbar1");
  Toolbar1_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  for (const PreviewButton& button : kPreviewButtons) {
    if (std::string_view(button.key) == "PRINT" || std::string_view(button.key) == "CLOSE") {
      Toolbar1_->addSeparator();
    }
    QAction* action = Toolbar1_->addAction(IconOf(*style(), button.key), button.caption);
    action->setObjectName(QString("btn") + button.key);
    action->setToolTip(button.tip);
    connect(action, &QAction::triggered, this, [this, key = button.key] { Choose(key); });
  }
  AddZoomButtons();

  Picture1_->setObjectName("Picture1");
  Picture1_->setAlignment(Qt::AlignCenter);
  Picture1_->setBackgroundRole(QPalette::Dark);
  Picture1_->horizontalScrollBar()->setObjectName("HScroll1");
  Picture1_->verticalScrollBar()->setObjectName("VScroll1");
  Preview_->setObjectName("Preview");
  Preview_->setCursor(Qt::OpenHandCursor);
  Preview_->installEventFilter(this);
  // The page lies on a sheet a little larger than itself, the grey showing
  // round it.
  auto* sheet = new QWidget;
  sheet->setObjectName("Sheet");
  auto* sheetLayout = new QVBoxLayout(sheet);
  sheetLayout->setContentsMargins(kPageGap, kPageGap, kPageGap, kPageGap);
  sheetLayout->addWidget(Preview_);
  sheetLayout->setSizeConstraint(QLayout::SetFixedSize);
  Picture1_->setWidget(sheet);
  // The keys move the page, whatever has the focus.
  Picture1_->setFocusPolicy(Qt::NoFocus);
  Toolbar1_->setFocusPolicy(Qt::NoFocus);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(Toolbar1_);
  layout->addWidget(Picture1_, 1);
  picture_ = std::make_unique<QtImageDevice>(widthInches_, lengthInches_, pictureDotsPerInch_);
  resize(1000, 720);
}

frmPreview::~frmPreview() = default;

void frmPreview::AddZoomButtons() {
  Toolbar1_->addSeparator();
  auto* group = new QActionGroup(this);
  const std::array<std::tuple<PreviewZoom, const char*, const char*, const char*>, 3> zooms = {{
      {PreviewZoom::FitWidth, "btnZoomWidth", "Page Width", "Fit the page to the window's width"},
      {PreviewZoom::WholePage, "btnZoomPage", "Whole Page", "Show the whole page"},
      {PreviewZoom::ActualSize, "btnZoomActual", "100%", "Show the page at its printed size"},
  }};
  for (const auto& [zoom, name, caption, tip] : zooms) {
    QAction* action = Toolbar1_->addAction(caption);
    action->setObjectName(name);
    action->setToolTip(tip);
    action->setCheckable(true);
    action->setChecked(zoom == zoom_);
    group->addAction(action);
    connect(action, &QAction::triggered, this, [this, zoom = zoom] { SetZoom(zoom); });
  }
}

IRptDevice& frmPreview::Picture() { return *picture_; }

void frmPreview::SizePicture(double widthInches, double lengthInches) {
  widthInches_ = widthInches;
  lengthInches_ = lengthInches;
  picture_->Resize(widthInches, lengthInches);
}

void frmPreview::ClearPicture() { picture_->Clear(); }

std::string frmPreview::Display(const std::string& caption) {
  setWindowTitle(ToQt(caption));
  action_.clear();
  ShowPage();
  exec();
  const std::string action = PreviewAction(action_);
  // The window is kept for the next page: hidden, its picture cleared, and
  // the events let through before the page is drawn.
  if (action != "CLOSE") {
    ClearPicture();
    QApplication::processEvents();
  }
  return action;
}

void frmPreview::Choose(const char* key) {
  action_ = key;
  hide();
}

void frmPreview::SetZoom(PreviewZoom zoom) {
  zoom_ = zoom;
  ShowPage();
}

void frmPreview::ShowPage() {
  const QImage& page = picture_->Image();
  const double screenDpi = logicalDpiX();
  const QSize frame = Picture1_->maximumViewportSize();
  // Room for the bar that fitting to the width may need.
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const Size frameRoom{frame.width() - (zoom_ == PreviewZoom::FitWidth ? bar : 0) - 2 * kPageGap,
                       frame.height() - 2 * kPageGap};
  const Size shown = PageOnScreen(zoom_, widthInches_, lengthInches_, frameRoom, screenDpi);
  const double ratio = devicePixelRatioF();
  QPixmap pixmap = QPixmap::fromImage(page.scaled(static_cast<int>(shown.width * ratio), static_cast<int>(shown.height * ratio),
                                                  Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  pixmap.setDevicePixelRatio(ratio);
  Preview_->setPixmap(pixmap);
  Preview_->setFixedSize(shown.width, shown.height);
  Picture1_->widget()->adjustSize();
}

void frmPreview::keyPressEvent(QKeyEvent* event) {
  for (const auto& [qtKey, code] : kKeys) {
    if (event->key() != qtKey) continue;
    QScrollBar& h = *Picture1_->horizontalScrollBar();
    QScrollBar& v = *Picture1_->verticalScrollBar();
    ScrollBar horizontal = BarOf(h), vertical = BarOf(v);
    MoveByKey(code, horizontal, vertical);
    h.setValue(horizontal.value);
    v.setValue(vertical.value);
    return;
  }
  QDialog::keyPressEvent(event);
}

void frmPreview::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (zoom_ != PreviewZoom::ActualSize) ShowPage();
}

bool frmPreview::eventFilter(QObject* watched, QEvent* event) {
  if (watched != Preview_) return QDialog::eventFilter(watched, event);
  if (event->type() == QEvent::MouseButtonPress) {
    dragFrom_ = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
    Preview_->setCursor(Qt::ClosedHandCursor);
    return true;
  }
  if (event->type() == QEvent::MouseMove && static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton) {
    const QPoint at = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
    QScrollBar& h = *Picture1_->horizontalScrollBar();
    QScrollBar& v = *Picture1_->verticalScrollBar();
    ScrollBar horizontal = BarOf(h), vertical = BarOf(v);
    MoveByDrag(at.x() - dragFrom_.x(), at.y() - dragFrom_.y(), horizontal, vertical);
    h.setValue(horizontal.value);
    v.setValue(vertical.value);
    dragFrom_ = at;
    return true;
  }
  if (event->type() == QEvent::MouseButtonRelease) Preview_->setCursor(Qt::OpenHandCursor);
  return QDialog::eventFilter(watched, event);
}

}  // namespace hifx::shell
