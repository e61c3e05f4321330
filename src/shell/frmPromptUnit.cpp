#include "shell/frmPromptUnit.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "shell/Dialogs.h"

namespace hifx::shell {

frmPromptUnit::frmPromptUnit(const std::vector<std::string>& units, QWidget* parent)
    : QDialog(parent), lstUnits_(new QListWidget), install_(new QPushButton("&Install to Selected Unit")) {
  setObjectName("frmPromptUnit");
  setWindowTitle("Install To Unit");
  lstUnits_->setObjectName("lstUnits");
  for (const std::string& unit : units) lstUnits_->addItem(ToQt(unit));
  install_->setObjectName("btnInstall");
  install_->setEnabled(false);
  auto* cancel = new QPushButton("&Cancel");
  cancel->setObjectName("btnCancel");
  connect(lstUnits_, &QListWidget::itemSelectionChanged, this,
          [this] { install_->setEnabled(!lstUnits_->selectedItems().isEmpty()); });
  connect(lstUnits_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(install_, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(install_);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lstUnits_);
  layout->addLayout(buttons);
  resize(340, 260);
}

std::string frmPromptUnit::Display() {
  if (exec() != QDialog::Accepted || lstUnits_->selectedItems().isEmpty()) return {};
  return FromQt(lstUnits_->selectedItems().first()->text());
}

}  // namespace hifx::shell
