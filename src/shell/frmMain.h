// The main window: a column of buttons that start the conversions and a log
// box in which they report. A conversion runs in the window's own thread and
// lets the window's events through at each step of its progress bar.
#pragma once

#include <QtWidgets/QMainWindow>

#include <cstdint>
#include <functional>
#include <string>

#include "app/Session.h"
#include "base/UserSettings.h"
#include "shell/DesktopShell.h"
#include "shell/Dialogs.h"
#include "shell/MainWindowLogic.h"

class QAction;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace hifx::shell {

class ProgressOverlay;

class frmMain : public QMainWindow, public ILogView {
  Q_OBJECT

 public:
  // opener shows a file to the person: the log, a route file to edit, a
  // report preview.
  frmMain(app::Session& session, DesktopShell& shell, IUserSettings& settings, FileOpener opener,
          QWidget* parent = nullptr);
  ~frmMain() override;

  // The window's load: title, saved placement, the site's settings, and the
  // offer of a distribution to a site never set up.
  void Form_Load();

  void AddLog(const std::string& text) override;
  void SetProgressButton(int32_t total, int32_t position) override;
  void ProgressButton(QPushButton& button, bool on);
  bool Busy() const { return guard_.Busy(); }

  // The menu's and the buttons' work, also for the windows that call them.
  void mnuSULoadDist_Click();
  void mnuSUCreateDest_Click();
  void mnuFViewer_Click();
  // The route file checked in a window of its own, away from the log.
  void mnuCCheck_Click();
  // Runs the report of the reading file: printed, or as a preview.
  void RunReport(bool preview, int32_t type, const std::string& title);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QPushButton* AddButton(const char* name, const QString& caption, const QString& tip, int top);
  QToolButton* AddEditButton(const char* name, const QString& tip, const QPushButton& beside);
  void BuildMenus();
  void Convert(QPushButton& button, bool (clsExchange::*convert)());
  void cmdReading_Click();
  void ChooseReadingFavorite(bool& go);
  void btnClear_Click();
  void btnLog_Click();
  void btnInstall_Click();
  void btnAdvanced_Click();
  void cmdSetup_Click();
  void EditFile(const std::string& file);
  void EnableLogButtons(bool on);
  // Runs work unless a conversion is under way.
  void Guarded(const std::function<void()>& work);

  app::Session& session_;
  DesktopShell& shell_;
  IUserSettings& settings_;
  FileOpener opener_;
  RunGuard guard_;

  QPushButton* cmdRoute_;
  QToolButton* cmdRouteEdit_;
  QPushButton* cmdReRead_;
  QToolButton* cmdReReadEdit_;
  QPushButton* cmdReading_;
  QPushButton* btnClear_;
  QPushButton* btnLog_;
  QPushButton* cmdSetup_;
  QPushButton* btnAdvanced_;
  QPushButton* btnInstall_;
  QPlainTextEdit* txtLog_;
  ProgressOverlay* picPlace_;
};

}  // namespace hifx::shell
