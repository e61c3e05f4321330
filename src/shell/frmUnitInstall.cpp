#include "shell/frmUnitInstall.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "delivery/UnitInstall.h"
#include "shell/Dialogs.h"

namespace hifx::shell {

frmUnitInstall::frmUnitInstall(std::filesystem::path programFolder, std::filesystem::path syncRoot, IShell& shell,
                               QWidget* parent)
    : QDialog(parent),
      programFolder_(std::move(programFolder)),
      syncRoot_(std::move(syncRoot)),
      shell_(shell),
      List1_(new QListWidget),
      chkMeazura_(new QCheckBox("Also install the Meazura support files")),
      btnInstallUnit_(new QPushButton("&Install")) {
  setObjectName("frmUnitInstall");
  setWindowTitle("Install to Unit(s)");
  List1_->setObjectName("List1");
  chkMeazura_->setObjectName("chkMeazura");
  btnInstallUnit_->setObjectName("btnInstallUnit");
  btnInstallUnit_->setEnabled(false);
  auto* close = new QPushButton("&Close");
  close->setObjectName("btnAction");
  connect(List1_, &QListWidget::itemChanged, this, &frmUnitInstall::List1_ItemCheck);
  connect(btnInstallUnit_, &QPushButton::clicked, this, &frmUnitInstall::InstallUnits);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(btnInstallUnit_);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel("Check the units to install the handheld application on:"));
  layout->addWidget(List1_);
  layout->addWidget(chkMeazura_);
  layout->addLayout(buttons);
  resize(380, 300);
}

void frmUnitInstall::Display() {
  const clsInstaller installer(programFolder_, syncRoot_, shell_);
  const std::vector<std::string> units = UnitInstallList(installer, shell_);
  if (units.empty()) return;
  for (const std::string& unit : units) {
    auto* item = new QListWidgetItem(ToQt(unit), List1_);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
  }
  exec();
}

void frmUnitInstall::List1_ItemCheck() {
  bool any = false;
  for (int i = 0; i < List1_->count(); ++i) any = any || List1_->item(i)->checkState() == Qt::Checked;
  btnInstallUnit_->setEnabled(any);
}

void frmUnitInstall::InstallUnits() {
  std::vector<std::string> units;
  for (int i = 0; i < List1_->count(); ++i) {
    if (List1_->item(i)->checkState() == Qt::Checked) units.push_back(FromQt(List1_->item(i)->text()));
  }
  clsInstaller installer(programFolder_, syncRoot_, shell_);
  hifx::InstallUnits(installer, units, chkMeazura_->isChecked(), shell_);
  accept();
}

}  // namespace hifx::shell
