// "Favorites": the reading file of each handheld unit, with the file's date,
// one to be chosen as the reading conversion's source.
#pragma once

#include <QtWidgets/QDialog>

#include <string>

#include "config/clsAdvanced.h"

class QPushButton;
class QTreeWidget;

namespace hifx::shell {

class frmFavorites : public QDialog {
  Q_OBJECT

 public:
  frmFavorites(clsAdvanced& advanced, QWidget* parent = nullptr);
  // The chosen reading file's path; empty for Close.
  std::string Display();

 private:
  std::string SelectedPath() const;

  QTreeWidget* List1_;
  QPushButton* btnUse_;
  std::string chosen_;
};

}  // namespace hifx::shell
