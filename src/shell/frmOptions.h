// "Setup": where each conversion reads and writes, with which map and in
// which form, and how a route file reaches the handheld. It edits the
// settings of the run's exchange object and saves them to the settings
// store on Apply and OK.
#pragma once

#include <QtWidgets/QDialog>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "base/UserSettings.h"
#include "exchange/clsExchange.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace hifx::shell {

class frmOptions : public QDialog {
  Q_OBJECT

 public:
  // units: the desktop's handheld units.
  frmOptions(clsExchange& exchange, IShell& shell, IUserSettings& settings, std::vector<std::string> units,
             QWidget* parent = nullptr);

 protected:
  void done(int result) override;

 private:
  // One conversion's files and map: route, re-read, reading, orphans.
  struct Panel {
    int16_t use;
    QLineEdit* source = nullptr;
    QLineEdit* destination = nullptr;
    QComboBox* mapping = nullptr;
    QComboBox* hifType = nullptr;
  };

  QWidget* RoutePanel(Panel& panel, const char* sourceLabel);
  QWidget* ReadingTab();
  QWidget* InstallTab();
  QLineEdit* FileRow(Panel& panel, bool destination, const char* label, QFormLayout* form);
  void MappingRow(Panel& panel, QFormLayout* form);
  void Form_Load();
  void ReloadChoices(Panel& panel, const std::string& wanted);
  void PickFile(Panel& panel, bool destination);
  void EditMap(Panel& panel, bool isNew);
  void chkOrphanConvert_Click();
  void optInstallPRC_Click();
  void cmdApply_Click();

  clsExchange& exchange_;
  IShell& shell_;
  IUserSettings& settings_;
  std::vector<std::string> units_;
  bool loading_ = true;
  QTabWidget* tbsOptions_;
  std::array<Panel, 4> panels_;
  QCheckBox* chkAutoReread_ = nullptr;
  QGroupBox* fraOrphans_ = nullptr;
  QCheckBox* chkOrphanConvert_ = nullptr;
  QButtonGroup* optOrphanReplace_ = nullptr;
  QButtonGroup* optInstallPRC_ = nullptr;
  QListWidget* lstUnits_ = nullptr;
  QCheckBox* chkPrompt_ = nullptr;
  QCheckBox* chkLeave_ = nullptr;
  QPushButton* cmdApply_ = nullptr;
};

}  // namespace hifx::shell
