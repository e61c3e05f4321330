// "Runtime Variables": one row for each prompt field of the map, a text box
// for a text field and a number box for a number field, with OK and Cancel.
#pragma once

#include <QtWidgets/QDialog>

#include <string>
#include <vector>

#include "base/Shell.h"

class QLineEdit;

namespace hifx::shell {

class frmPromptVariables : public QDialog {
  Q_OBJECT

 public:
  frmPromptVariables(const std::vector<PromptField>& fields, QWidget* parent = nullptr);
  // What was typed, one value a field, in the fields' order.
  std::vector<std::string> Values() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void btnAction_Click(bool ok);

  std::vector<PromptField> fields_;
  std::vector<QLineEdit*> boxes_;
};

}  // namespace hifx::shell
