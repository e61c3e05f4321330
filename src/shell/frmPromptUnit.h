// "Install To Unit": the handheld units of the desktop, one to be chosen for
// the route file just made.
#pragma once

#include <QtWidgets/QDialog>

#include <string>
#include <vector>

class QListWidget;
class QPushButton;

namespace hifx::shell {

class frmPromptUnit : public QDialog {
  Q_OBJECT

 public:
  frmPromptUnit(const std::vector<std::string>& units, QWidget* parent = nullptr);
  // The chosen unit's name; empty for Cancel.
  std::string Display();

 private:
  QListWidget* lstUnits_;
  QPushButton* install_;
};

}  // namespace hifx::shell
