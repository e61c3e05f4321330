// The six record dialogs of the advanced window (frmAdvLogin,
// frmAdvMessage, frmAdvChangeout, frmAdvSkip, frmAdvToken, frmAdvFavorite):
// one window that takes its fields from the list it edits, adds, updates or
// deletes one record, and checks it before it goes.
#pragma once

#include <QtWidgets/QDialog>

#include <string>
#include <vector>

#include "shell/AdvancedLogic.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace hifx::shell {

class frmAdvRecord : public QDialog {
  Q_OBJECT

 public:
  frmAdvRecord(clsAdvanced& advanced, SiteList list, std::string type, QWidget* parent = nullptr);
  // Mode "Add" (with key, if any, as the new record's key) or "Edit" (on the
  // record of key); the store is changed by the result: "Save", "Delete" or
  // "Cancel".
  std::string Display(const std::string& key, const std::string& mode);

 private:
  void OKButton_Click();
  void DeleteButton_Click();
  void LoadRecord(const std::string& key);
  std::vector<std::string> Values() const;

  clsAdvanced& advanced_;
  SiteList list_;
  std::string type_;
  bool adding_ = true;
  std::string result_ = "Cancel";
  std::vector<QLineEdit*> fields_;
  QCheckBox* chkSupervisor_ = nullptr;
  QCheckBox* chkMessageAnyRoute_ = nullptr;
  QPushButton* DeleteButton_;
};

}  // namespace hifx::shell
