#include "shell/frmAdvRecord.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include "base/CaseBlind.h"
#include "delivery/UnitInstall.h"
#include "shell/Dialogs.h"

namespace hifx::shell {

frmAdvRecord::frmAdvRecord(clsAdvanced& advanced, SiteList list, std::string type, QWidget* parent)
    : QDialog(parent), advanced_(advanced), list_(list), type_(std::move(type)), DeleteButton_(new QPushButton("Delete")) {
  const RecordDialog& dialog = RecordDialogOf(list_);
  setObjectName(ToQt(dialog.window));
  setWindowTitle(ToQt(dialog.caption));
  auto* form = new QFormLayout;
  for (const RecordField& field : dialog.fields) {
    auto* box = new QLineEdit;
    box->setObjectName(ToQt(field.name));
    box->setMinimumWidth(260);
    std::string label = field.label;
    if (field.name == "cMeterID") label = MessageIdLabel(type_) + ":";
    if (field.name == "cPassword") box->setEchoMode(QLineEdit::PasswordEchoOnEdit);
    if (field.name == "cPathName" && list_ == SiteList::Favorites) {
      // The path of a reading file, picked in a file dialog or typed.
      auto* row = new QHBoxLayout;
      auto* browse = new QToolButton;
      browse->setObjectName("btnBrowse");
      browse->setText("...");
      connect(browse, &QToolButton::clicked, this, [this, box] {
        const auto file = OpenFileDialog(this, {"Readings File", "Palm Database Files (*.pdb)|*.pdb|All Files(*.*)|*.*",
                                                ".pdb", box->text()});
        if (file) box->setText(PathToQt(*file));
      });
      row->addWidget(box);
      row->addWidget(browse);
      form->addRow(ToQt(label), row);
    } else {
      form->addRow(ToQt(label), box);
    }
    fields_.push_back(box);
    if (field.name == "cRouteNbr") {
      chkMessageAnyRoute_ = new QCheckBox("Any route (ANY)");
      chkMessageAnyRoute_->setObjectName("chkMessageAnyRoute");
      connect(chkMessageAnyRoute_, &QCheckBox::toggled, box, [box](bool any) { box->setEnabled(!any); });
      form->addRow(QString(), chkMessageAnyRoute_);
    }
  }
  if (list_ == SiteList::Logins) {
    chkSupervisor_ = new QCheckBox("Is Supervisor");
    chkSupervisor_->setObjectName("chkSupervisor");
    form->addRow(QString(), chkSupervisor_);
  }
  auto* ok = new QPushButton("OK");
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("CancelButton");
  DeleteButton_->setObjectName("DeleteButton");
  connect(ok, &QPushButton::clicked, this, &frmAdvRecord::OKButton_Click);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(DeleteButton_, &QPushButton::clicked, this, &frmAdvRecord::DeleteButton_Click);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(DeleteButton_);
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(buttons);
}

std::string frmAdvRecord::Display(const std::string& key, const std::string& mode) {
  adding_ = mode == "Add";
  result_ = "Cancel";
  DeleteButton_->setVisible(!adding_);
  if (adding_) {
    for (QLineEdit* box : fields_) box->clear();
    // A favourite is added for a unit the desktop already knows.
    fields_.front()->setText(ToQt(key));
  } else {
    LoadRecord(key);
  }
  exec();
  ApplyRecord(advanced_, list_, type_, result_, adding_, Values());
  return result_;
}

void frmAdvRecord::LoadRecord(const std::string& key) {
  std::vector<std::string> values = RecordValues(advanced_, list_, type_, key);
  for (size_t i = 0; i < fields_.size() && i < values.size(); ++i) fields_[i]->setText(ToQt(values[i]));
  // The key can't change: an update finds the record by it.
  fields_.front()->setEnabled(false);
  if (list_ == SiteList::Messages) {
    fields_[1]->setEnabled(false);
    chkMessageAnyRoute_->setChecked(values[0] == "ANY" || values[0] == "*");
    chkMessageAnyRoute_->setEnabled(false);
  }
  if (chkSupervisor_ != nullptr) chkSupervisor_->setChecked(values.at(2).find('S') != std::string::npos);
}

std::vector<std::string> frmAdvRecord::Values() const {
  std::vector<std::string> values;
  for (const QLineEdit* box : fields_) values.push_back(FromQt(box->text()));
  if (chkMessageAnyRoute_ != nullptr && chkMessageAnyRoute_->isChecked()) values[0] = "ANY";
  if (chkSupervisor_ != nullptr) values.emplace_back(chkSupervisor_->isChecked() ? "S" : "");
  return values;
}

void frmAdvRecord::OKButton_Click() {
  if (const auto problem = CheckRecord(advanced_, list_, type_, Values(), adding_)) {
    QMessageBox box(QMessageBox::NoIcon, ToQt(kProgramTitle), ToQt(problem->message), QMessageBox::Ok, this);
    box.setObjectName("messageBox");
    box.exec();
    fields_.at(problem->field)->setFocus();
    return;
  }
  result_ = "Save";
  accept();
}

void frmAdvRecord::DeleteButton_Click() {
  QMessageBox box(QMessageBox::Question, ToQt(RecordDialogOf(list_).deleteCaption), "Are you sure?",
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setObjectName("messageBox");
  if (box.exec() != QMessageBox::Yes) return;
  result_ = "Delete";
  accept();
}

}  // namespace hifx::shell
