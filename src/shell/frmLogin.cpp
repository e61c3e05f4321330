#include "shell/frmLogin.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "shell/DialogLogic.h"
#include "delivery/UnitInstall.h"
#include "shell/Dialogs.h"

namespace hifx::shell {

frmLogin::frmLogin(clsAdvanced& advanced, QWidget* parent)
    : QDialog(parent), advanced_(advanced), txtUserName_(new QLineEdit), txtPassword_(new QLineEdit) {
  setObjectName("frmLogin");
  setWindowTitle("Login");
  txtUserName_->setObjectName("txtUserName");
  txtPassword_->setObjectName("txtPassword");
  txtPassword_->setEchoMode(QLineEdit::Password);
  auto* fields = new QFormLayout;
  fields->addRow("&User Name:", txtUserName_);
  fields->addRow("&Password:", txtPassword_);
  auto* ok = new QPushButton("OK");
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("cmdCancel");
  connect(ok, &QPushButton::clicked, this, &frmLogin::cmdOK_Click);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(fields);
  layout->addLayout(buttons);
  txtUserName_->setMinimumWidth(200);
}

bool frmLogin::Display() { return exec() == QDialog::Accepted; }

void frmLogin::cmdOK_Click() {
  const LoginResult result = CheckLogin(advanced_, FromQt(txtUserName_->text()), FromQt(txtPassword_->text()));
  if (result == LoginResult::Accepted) {
    accept();
    return;
  }
  const bool missing = result == LoginResult::NameMissing || result == LoginResult::PasswordMissing;
  QMessageBox box(QMessageBox::NoIcon, missing ? QString("Login") : ToQt(kProgramTitle),
                  ToQt(LoginMessage(result)), QMessageBox::Ok, this);
  box.setObjectName("messageBox");
  box.exec();
  if (result == LoginResult::NameMissing) {
    txtUserName_->setFocus();
    return;
  }
  txtPassword_->setFocus();
  if (result != LoginResult::PasswordMissing) txtPassword_->selectAll();
}

}  // namespace hifx::shell
