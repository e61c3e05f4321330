// hifx-desktop: the desktop program. Splash, the login when the site asks
// for one, then the main window over the site folder (--site DIR, else the
// one the command line would use).
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QSplashScreen>

#include <memory>

#include "app/Session.h"
#include "base/Failure.h"
#include "delivery/UnitInstall.h"
#include "hif/FileVersion.h"
#include "reports/qt/QtRptDevice.h"
#include "shell/DesktopShell.h"
#include "shell/Dialogs.h"
#include "shell/StartUp.h"
#include "shell/frmLogin.h"
#include "shell/frmMain.h"

namespace hifx::shell {
namespace {

QPixmap SplashPicture() {
  QPixmap picture(420, 200);
  picture.fill(QColor(0x1f, 0x4e, 0x79));
  QPainter painter(&picture);
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPointSize(20);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(QRect(0, 40, 420, 50), Qt::AlignCenter, ToQt(kProgramTitle));
  font.setPointSize(10);
  font.setBold(false);
  painter.setFont(font);
  painter.drawText(QRect(0, 100, 420, 40), Qt::AlignCenter,
                   ToQt(MainWindowTitle("", kProductDescription, kProgramMajor, kProgramMinor, kVersionRevision)));
  return picture;
}

class StartUpViews final : public IStartUpViews {
 public:
  StartUpViews(app::Session& session, DesktopShell& shell, IUserSettings& settings)
      : session_(session), shell_(shell), settings_(settings) {}

  void ShowSplash() override {
    splash_ = std::make_unique<QSplashScreen>(SplashPicture());
    splash_->show();
    QApplication::processEvents();
  }
  bool RunLogin() override {
    frmLogin login(session_.Exchange().Advanced());
    return login.Display();
  }
  void ShowMain() override {
    main_ = std::make_unique<frmMain>(session_, shell_, settings_, OpenWithDesktop);
    main_->show();
    main_->Form_Load();
  }
  void HideSplash() override {
    if (splash_ && main_) splash_->finish(main_.get());
    splash_.reset();
  }

 private:
  app::Session& session_;
  DesktopShell& shell_;
  IUserSettings& settings_;
  std::unique_ptr<QSplashScreen> splash_;
  std::unique_ptr<frmMain> main_;
};

int Run(QApplication& application) {
  QStringList arguments = QApplication::arguments();
  std::filesystem::path site = app::DefaultSiteFolder();
  const qsizetype named = arguments.indexOf("--site");
  if (named > 0 && named + 1 < arguments.size()) site = PathFromQt(arguments[named + 1]);
  DesktopShell shell;
  app::Session session(shell, site);
  QtUserSettings settings;
  StartUpViews views(session, shell, settings);
  try {
    if (!StartUp(FromQt(arguments.mid(1).join(' ')), session.Exchange().Advanced().UseLoginSecurity(), views)) {
      return 0;
    }
  } catch (const Failure& failure) {
    shell.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
    return 1;
  }
  return application.exec();
}

}  // namespace
}  // namespace hifx::shell

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("hifExchange");
  return hifx::shell::Run(application);
}
