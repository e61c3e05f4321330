#include "shell/frmPromptVariables.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "shell/DialogLogic.h"
#include "shell/Dialogs.h"
#include "delivery/UnitInstall.h"

namespace hifx::shell {

frmPromptVariables::frmPromptVariables(const std::vector<PromptField>& fields, QWidget* parent)
    : QDialog(parent), fields_(fields) {
  setObjectName("frmPromptVariables");
  setWindowTitle("Runtime Variables");
  auto* rows = new QGridLayout;
  int row = 0;
  for (const PromptField& field : fields_) {
    auto* label = new QLabel(ToQt(field.name));
    label->setObjectName("lPrompt");
    auto* box = new QLineEdit;
    box->setMinimumWidth(220);
    if (field.dataType == 0) {
      box->setObjectName("cPrompt");
    } else {
      box->setObjectName("nPrompt");
      box->setMaxLength(NumberPromptLength(field.dataType));
      box->installEventFilter(this);
    }
    label->setBuddy(box);
    rows->addWidget(label, row, 0);
    rows->addWidget(box, row, 1);
    boxes_.push_back(box);
    ++row;
  }
  auto* ok = new QPushButton("OK");
  ok->setObjectName("btnActionOK");
  ok->setDefault(true);
  auto* cancel = new QPushButton("&Cancel");
  cancel->setObjectName("btnActionCancel");
  connect(ok, &QPushButton::clicked, this, [this] { btnAction_Click(true); });
  connect(cancel, &QPushButton::clicked, this, [this] { btnAction_Click(false); });
  auto* footer = new QHBoxLayout;
  footer->setObjectName("picFooter");
  footer->addStretch();
  footer->addWidget(ok);
  footer->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(rows);
  layout->addStretch();
  layout->addLayout(footer);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

std::vector<std::string> frmPromptVariables::Values() const {
  std::vector<std::string> values;
  for (const QLineEdit* box : boxes_) values.push_back(FromQt(box->text()));
  return values;
}

bool frmPromptVariables::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const QString text = key->text();
    // Keys that type a character are sifted; moving and editing keys pass.
    if (text.size() == 1 && text[0].isPrint() && !IsNumberPromptKey(text[0].toLatin1())) return true;
  }
  return QDialog::eventFilter(watched, event);
}

void frmPromptVariables::btnAction_Click(bool ok) {
  if (!ok) {
    reject();
    return;
  }
  const std::vector<std::string> values = Values();
  if (const auto missing = MissingPrompt(fields_, values)) {
    QMessageBox box(QMessageBox::NoIcon, ToQt(kProgramTitle), ToQt(*missing + " Required"), QMessageBox::Ok, this);
    box.setObjectName("messageBox");
    box.exec();
    return;
  }
  accept();
}

}  // namespace hifx::shell
