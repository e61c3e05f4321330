// "Login": the guard of the desktop program when the site uses login
// security. Only a supervisor gets through.
#pragma once

#include <QtWidgets/QDialog>

#include "config/clsAdvanced.h"

class QLineEdit;

namespace hifx::shell {

class frmLogin : public QDialog {
  Q_OBJECT

 public:
  frmLogin(clsAdvanced& advanced, QWidget* parent = nullptr);
  // True when a supervisor logged in; false for Cancel.
  bool Display();

 private:
  void cmdOK_Click();

  clsAdvanced& advanced_;
  QLineEdit* txtUserName_;
  QLineEdit* txtPassword_;
};

}  // namespace hifx::shell
