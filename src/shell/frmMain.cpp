#include "shell/frmMain.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryFile>
#include <QtGui/QCloseEvent>
#include <QtPrintSupport/QPrinterInfo>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolButton>

#include "base/Failure.h"
#include "config/clsDist.h"
#include "delivery/UnitInstall.h"
#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"
#include "hif/FileVersion.h"
#include "reports/clsReport.h"
#include "reports/qt/QtRptDevice.h"
#include "shell/Placement.h"
#include "shell/ProgressOverlay.h"
#include "shell/StartUp.h"
#include "shell/frmAdvanced.h"
#include "shell/frmCheckRoute.h"
#include "shell/frmFavorites.h"
#include "shell/frmHIFView.h"
#include "shell/frmOptions.h"
#include "shell/frmPreview.h"
#include "shell/frmReports.h"
#include "shell/frmUnitInstall.h"

namespace hifx::shell {
namespace {

// The column of buttons: left edge, width, height; the log box's corner.
constexpr int kButtonLeft = 10;
constexpr int kButtonWidth = 150;
constexpr int kButtonHeight = 36;
constexpr int kLogLeft = 206;
constexpr int kLogTop = 10;

const char* const kDistFilter = "Distribution Files (*.dst)|*.dst|All Files(*.*)|*.*";
const char* const kPdbFilter = "Palm Database Files (*.pdb)|*.pdb|All Files(*.*)|*.*";

WindowState StateOf(const QWidget& window) {
  if (window.isMinimized()) return WindowState::Minimized;
  if (window.isMaximized()) return WindowState::Maximized;
  return WindowState::Normal;
}

}  // namespace

frmMain::frmMain(app::Session& session, DesktopShell& shell, IUserSettings& settings, FileOpener opener,
                 QWidget* parent)
    : QMainWindow(parent), session_(session), shell_(shell), settings_(settings), opener_(std::move(opener)) {
  setObjectName("frmMain");
  setCentralWidget(new QWidget);
  cmdRoute_ = AddButton("cmdRoute", "Route File", "Create RouteHIF to send to handheld", 10);
  cmdRouteEdit_ = AddEditButton("cmdRouteEdit", "Edit File used to Create RouteHIF to send to handheld", *cmdRoute_);
  cmdReRead_ = AddButton("cmdReRead", "Re-Read File", {}, 52);
  cmdReReadEdit_ = AddEditButton("cmdReReadEdit", {}, *cmdReRead_);
  cmdReading_ = AddButton("cmdReading", "Reading File", "Receive Reading HIF from handheld", 94);
  btnClear_ = AddButton("btnClear", "Clear Log", "Clears previous results from log window", 150);
  btnLog_ = AddButton("btnLog", "Open Log", "Opens log using notepad for printing", 192);
  cmdSetup_ = AddButton("cmdSetup", "Setup", "Change conversion properties", 248);
  // The two tips below repeat the Reading File button's, as they always have.
  btnAdvanced_ = AddButton("btnAdvanced", "Advanced", "Receive Reading HIF from handheld", 290);
  btnInstall_ = AddButton("btnInstall", "Install to Unit(s)", "Receive Reading HIF from handheld", 332);
  txtLog_ = new QPlainTextEdit(centralWidget());
  txtLog_->setObjectName("txtLog");
  txtLog_->setReadOnly(true);
  txtLog_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtLog_->move(kLogLeft, kLogTop);
  picPlace_ = new ProgressOverlay(centralWidget());
  EnableLogButtons(false);

  connect(cmdRoute_, &QPushButton::clicked, this, [this] { Convert(*cmdRoute_, &clsExchange::ConvertRoute); });
  connect(cmdReRead_, &QPushButton::clicked, this, [this] { Convert(*cmdReRead_, &clsExchange::ConvertReRead); });
  connect(cmdReading_, &QPushButton::clicked, this, [this] { cmdReading_Click(); });
  connect(cmdRouteEdit_, &QToolButton::clicked, this, [this] { EditFile(session_.Exchange().RouteSource); });
  connect(cmdReReadEdit_, &QToolButton::clicked, this, [this] { EditFile(session_.Exchange().ReReadSource); });
  connect(btnClear_, &QPushButton::clicked, this, [this] { btnClear_Click(); });
  connect(btnLog_, &QPushButton::clicked, this, [this] { btnLog_Click(); });
  connect(btnInstall_, &QPushButton::clicked, this, [this] { Guarded([this] { btnInstall_Click(); }); });
  connect(btnAdvanced_, &QPushButton::clicked, this, [this] { Guarded([this] { btnAdvanced_Click(); }); });
  connect(cmdSetup_, &QPushButton::clicked, this, [this] { Guarded([this] { cmdSetup_Click(); }); });
  BuildMenus();

  const Size least = MainLeastSize(kLogLeft, btnInstall_->y(), btnInstall_->height());
  centralWidget()->setMinimumSize(least.width, least.height);
  resize(780, 470);
  shell_.SetLogView(this);
  shell_.SetParentWindow(this);
}

frmMain::~frmMain() {
  shell_.SetLogView(nullptr);
  shell_.SetParentWindow(nullptr);
}

QPushButton* frmMain::AddButton(const char* name, const QString& caption, const QString& tip, int top) {
  auto* button = new QPushButton(caption, centralWidget());
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setGeometry(kButtonLeft, top, kButtonWidth, kButtonHeight);
  return button;
}

QToolButton* frmMain::AddEditButton(const char* name, const QString& tip, const QPushButton& beside) {
  auto* button = new QToolButton(centralWidget());
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setIcon(QIcon::fromTheme("document-edit", style()->standardIcon(QStyle::SP_FileDialogDetailedView)));
  button->setGeometry(beside.x() + beside.width() + 4, beside.y(), kButtonHeight, kButtonHeight);
  return button;
}

void frmMain::BuildMenus() {
  QMenu* file = menuBar()->addMenu("File");
  file->setObjectName("mnuFile");
  QAction* viewer = file->addAction("Viewer...", this, [this] { mnuFViewer_Click(); });
  viewer->setObjectName("mnuFViewer");
  file->addSeparator();
  file->addAction("E&xit", this, &QWidget::close)->setObjectName("mnuFExit");

  QMenu* convert = menuBar()->addMenu("&Convert");
  convert->setObjectName("mnuConvert");
  convert->addAction("Make Route Download File", cmdRoute_, &QPushButton::click)->setObjectName("mnuCRoute");
  convert->addAction("Make ReRead Download File", cmdReRead_, &QPushButton::click)->setObjectName("mnuCReRead");
  convert->addAction("Process Readings File", cmdReading_, &QPushButton::click)->setObjectName("mnuCReadings");
  convert->addSeparator();
  convert->addAction("Check Route File...", this, [this] { Guarded([this] { mnuCCheck_Click(); }); })
      ->setObjectName("mnuCCheck");

  QMenu* setup = menuBar()->addMenu("&Setup");
  setup->setObjectName("mnuSetup");
  setup->addAction("Configure Interchange", cmdSetup_, &QPushButton::click)->setObjectName("mnuSUSetup");
  setup->addAction("Load Distribution", this, [this] { Guarded([this] { mnuSULoadDist_Click(); }); })
      ->setObjectName("mnuSULoadDist");
  setup->addAction("Create Distribution", this, [this] { mnuSUCreateDest_Click(); })->setObjectName("mnuSUCreateDest");

  QMenu* help = menuBar()->addMenu("&Help");
  help->setObjectName("mnuHelp");
  help->addAction("Usage")->setObjectName("mnuHUsage");
  help->addAction("Maps")->setObjectName("mnuHMaps");
  help->addAction("About", this, [this] {
        QMessageBox about(QMessageBox::Information, "About",
                          ToQt(std::string(kProgramTitle)) + "\n" +
                              ToQt(MainWindowTitle("", kProductDescription, kProgramMajor, kProgramMinor,
                                                   kVersionRevision)),
                          QMessageBox::Ok, this);
        about.setObjectName("frmAbout");
        about.exec();
      })->setObjectName("mnuHAbout");
}

void frmMain::Form_Load() {
  setWindowTitle(ToQt(MainWindowTitle(kProgramTitle, kProductDescription, kProgramMajor, kProgramMinor,
                                      kVersionRevision)));
  const PlacementPlan plan = LoadPlacement(settings_, "frmMain", false);
  if (plan.state == WindowState::Maximized) {
    setWindowState(Qt::WindowMaximized);
  } else if (plan.state == WindowState::Normal) {
    setWindowState(Qt::WindowNoState);
    move(plan.left.value_or(x()), plan.top.value_or(y()));
    resize(plan.width.value_or(width()), plan.height.value_or(height()));
  }
  OfferSetup(session_.Exchange(), shell_, [this] { mnuSULoadDist_Click(); });
}

void frmMain::closeEvent(QCloseEvent* event) {
  // The running conversion holds the window's objects: it ends first.
  if (guard_.Busy()) {
    event->ignore();
    return;
  }
  SavePlacement(settings_, "frmMain", StateOf(*this), {y(), x(), height(), width()});
  event->accept();
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  const QSize inner = centralWidget()->size();
  const Size log = LogBoxSize({inner.width(), inner.height()}, kLogLeft, kLogTop);
  txtLog_->resize(std::max(log.width, 0), std::max(log.height, 0));
}

void frmMain::AddLog(const std::string& text) {
  txtLog_->moveCursor(QTextCursor::End);
  txtLog_->insertPlainText(ToQt(text) + "\n");
  txtLog_->moveCursor(QTextCursor::End);
  txtLog_->ensureCursorVisible();
}

void frmMain::SetProgressButton(int32_t total, int32_t position) {
  picPlace_->SetProgress(total, position);
  QApplication::processEvents();
}

void frmMain::ProgressButton(QPushButton& button, bool on) {
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
  button.setEnabled(!on);
  picPlace_->Cover(button);
  picPlace_->setVisible(on);
  QApplication::processEvents();
  if (!on) button.setFocus();
}

void frmMain::Guarded(const std::function<void()>& work) {
  try {
    if (!guard_.Run(work)) QApplication::beep();
  } catch (const Failure& failure) {
    // What the engine raises past its own frames ends the click, not the
    // program.
    if (picPlace_->isVisible()) {
      QApplication::restoreOverrideCursor();
      picPlace_->hide();
      for (QPushButton* button : {cmdRoute_, cmdReRead_, cmdReading_}) button->setEnabled(true);
    }
    shell_.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
  }
}

void frmMain::Convert(QPushButton& button, bool (clsExchange::*convert)()) {
  Guarded([&] {
    ProgressButton(button, true);
    if (!(session_.Exchange().*convert)()) {
      shell_.MsgBox(std::string("Conversion Not Complete") + kLineBreak + "Check Log", "Error", MsgButtons::OK, MsgIcon::None);
    }
    EnableLogButtons(true);
    ProgressButton(button, false);
  });
}

void frmMain::ChooseReadingFavorite(bool& go) {
  clsExchange& exchange = session_.Exchange();
  go = true;
  if (!exchange.Advanced().UseFavorite()) return;
  frmFavorites favorites(exchange.Advanced(), this);
  const std::string file = favorites.Display();
  go = !file.empty();
  if (go) exchange.ReadingSource = file;
}

void frmMain::cmdReading_Click() {
  Guarded([this] {
    bool go = false;
    ChooseReadingFavorite(go);
    if (!go) return;
    ProgressButton(*cmdReading_, true);
    if (!session_.Exchange().ConvertReading()) {
      shell_.MsgBox(std::string("Conversion Not Complete") + kLineBreak + "Check Log", "Error", MsgButtons::OK, MsgIcon::None);
    } else {
      frmReports reports(settings_, this);
      ChooseReports(reports, shell_, [this](bool preview, int32_t type, const std::string& title) {
        RunReport(preview, type, title);
      });
    }
    EnableLogButtons(true);
    ProgressButton(*cmdReading_, false);
  });
}

void frmMain::RunReport(bool preview, int32_t type, const std::string& title) {
  const std::filesystem::path source = session_.Exchange().ReadingSource;
  // A desk without a printer keeps what it prints as a PDF of its choice,
  // asked for once the report is done.
  const bool printer = !QPrinterInfo::availablePrinterNames().isEmpty();
  std::unique_ptr<QtPrinters> printers = printer ? QtPrinters::ToDefaultPrinter() : QtPrinters::ToPdf({});
  clsReport report(shell_, session_.Clock(), *printers, settings_);
  report.SetPreviewWindow([this] { return std::make_unique<frmPreview>(this); });
  try {
    if (!report.Begin(preview, source, type, title) || !printers->Printed()) return;
    if (!printer) {
      const auto chosen = SaveFileDialog(
          this, {"Save " + ToQt(title.empty() ? ReportTitle(type) : title), "PDF Files (*.pdf)|*.pdf", "pdf",
                 PathToQt(std::filesystem::absolute(source).parent_path() /
                          ((title.empty() ? ReportTitle(type) : title) + ".pdf"))});
      if (!chosen) return;
      printers->SetPdfFile(*chosen);
      printers->SetPdfInfo({report.Engine().Title, ReportTitle(type), session_.SiteName(), session_.Clock().Now()});
    }
    printers->Finish();
  } catch (const Failure& failure) {
    shell_.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
  }
}

void frmMain::EnableLogButtons(bool on) {
  btnClear_->setEnabled(on);
  btnLog_->setEnabled(on);
}

void frmMain::btnClear_Click() {
  txtLog_->clear();
  EnableLogButtons(false);
}

void frmMain::btnLog_Click() {
  // The editor gets the log through a file of its own, which it may keep.
  QTemporaryFile file(QDir::tempPath() + "/hifx-log-XXXXXX.txt");
  file.setAutoRemove(false);
  const QByteArray text = txtLog_->toPlainText().toLatin1();
  if (!file.open() || file.write(text) != text.size() || !file.flush()) {
    shell_.MsgBox("Could not open " + FromQt(file.fileName()) + " for writing: " + FromQt(file.errorString()),
                  "Error", MsgButtons::OK, MsgIcon::Critical);
    return;
  }
  file.close();
  opener_(PathFromQt(file.fileName()));
}

void frmMain::EditFile(const std::string& file) { opener_(file); }

void frmMain::btnInstall_Click() {
  frmUnitInstall window(session_.SiteFolder(), session_.SyncRoot(), shell_, this);
  window.Display();
}

void frmMain::cmdSetup_Click() {
  const SyncFolders library(session_.SyncRoot());
  frmOptions window(session_.Exchange(), shell_, settings_, clsPalmUsers(library).UserNames(), this);
  window.exec();
}

void frmMain::btnAdvanced_Click() {
  clsExchange& exchange = session_.Exchange();
  {
    const SyncFolders library(session_.SyncRoot());
    frmAdvanced window(exchange.Advanced(), clsPalmUsers(library).UserNames(), this);
    window.exec();
  }
  // The conversions read the lists afresh from what the window saved.
  exchange.RenewAdvanced();
}

void frmMain::mnuSULoadDist_Click() {
  const std::filesystem::path site = session_.SiteFolder();
  std::optional<std::filesystem::path> file = SoleDistribution(site);
  if (!file) file = OpenFileDialog(this, {"Load Distribution", kDistFilter, "DST", PathToQt(site)});
  if (!file) return;
  clsDist dist(session_.Store(), shell_, site);
  if (dist.LoadDist(*file)) session_.Exchange().LoadSettings();
}

void frmMain::mnuSUCreateDest_Click() {
  const std::filesystem::path site = session_.SiteFolder();
  const auto file = SaveFileDialog(this, {"Save Distribution", kDistFilter, "DST", PathToQt(site)});
  if (!file) return;
  clsDist dist(session_.Store(), shell_, site);
  dist.WriteDist(*file);
}

void frmMain::mnuCCheck_Click() {
  frmCheckRoute window(session_, this);
  window.exec();
}

void frmMain::mnuFViewer_Click() {
  const std::string last = settings_.GetSetting(kProgramTitle, "RememberedUse", "ViewerFile", "");
  const auto file = OpenFileDialog(this, {"Exchange File", kPdbFilter, ".pdb", ToQt(last)});
  if (!file) return;
  settings_.SaveSetting(kProgramTitle, "RememberedUse", "ViewerFile", file->string());
  // The viewer is a window of its own that closes with the main window.
  auto viewer = std::make_unique<frmHIFView>(shell_, this);
  if (!viewer->Display(*file)) {
    viewer.reset();
    shell_.MsgBox("Unable to display file", {}, MsgButtons::OK, MsgIcon::None);
    return;
  }
  viewer.release();
}

}  // namespace hifx::shell
