#include "shell/frmFavorites.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include "shell/AdvancedLogic.h"
#include "shell/Dialogs.h"

namespace hifx::shell {

frmFavorites::frmFavorites(clsAdvanced& advanced, QWidget* parent)
    : QDialog(parent), List1_(new QTreeWidget), btnUse_(new QPushButton("Use")) {
  setObjectName("frmFavorites");
  setWindowTitle("Favorites");
  List1_->setObjectName("List1");
  List1_->setColumnCount(3);
  List1_->setHeaderHidden(true);
  List1_->setRootIsDecorated(false);
  List1_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  for (const FavoriteRow& row : FavoriteRows(advanced)) {
    new QTreeWidgetItem(List1_, {ToQt(row.unit), ToQt(row.date), ToQt(row.path)});
  }
  btnUse_->setObjectName("btnUse");
  btnUse_->setEnabled(false);
  btnUse_->setDefault(true);
  auto* close = new QPushButton("Close");
  close->setObjectName("btnClose");
  connect(List1_, &QTreeWidget::itemSelectionChanged, this, [this] { btnUse_->setEnabled(!SelectedPath().empty()); });
  const auto use = [this] {
    chosen_ = SelectedPath();
    if (!chosen_.empty()) accept();
  };
  connect(btnUse_, &QPushButton::clicked, this, use);
  connect(List1_, &QTreeWidget::itemDoubleClicked, this, use);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(btnUse_);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(List1_);
  layout->addLayout(buttons);
  resize(520, 300);
}

std::string frmFavorites::SelectedPath() const {
  const QList<QTreeWidgetItem*> rows = List1_->selectedItems();
  return rows.isEmpty() ? std::string() : FromQt(rows.first()->text(2));
}

std::string frmFavorites::Display() {
  chosen_.clear();
  if (exec() != QDialog::Accepted) return {};
  return chosen_;
}

}  // namespace hifx::shell
