// "Install to Unit(s)": the handheld application queued for the units
// checked, with the Meazura support files when asked for.
#pragma once

#include <QtWidgets/QDialog>

#include <filesystem>

#include "base/Shell.h"

class QCheckBox;
class QListWidget;
class QPushButton;

namespace hifx::shell {

class frmUnitInstall : public QDialog {
  Q_OBJECT

 public:
  frmUnitInstall(std::filesystem::path programFolder, std::filesystem::path syncRoot, IShell& shell,
                 QWidget* parent = nullptr);
  // Lists the units and runs the window; with no units it says so instead.
  void Display();

 private:
  void List1_ItemCheck();
  void InstallUnits();

  std::filesystem::path programFolder_;
  std::filesystem::path syncRoot_;
  IShell& shell_;
  QListWidget* List1_;
  QCheckBox* chkMeazura_;
  QPushButton* btnInstallUnit_;
};

}  // namespace hifx::shell
