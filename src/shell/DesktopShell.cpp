#include "shell/DesktopShell.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "delivery/UnitInstall.h"
#include "shell/Dialogs.h"
#include "shell/frmPromptUnit.h"
#include "shell/frmPromptVariables.h"

namespace hifx::shell {

// Shown, not waited on, while a report is laid out and printed; its button
// asks the run to stop at the next page.
class ReportStatusWindow final : public QDialog {
 public:
  explicit ReportStatusWindow(QWidget* parent)
      : QDialog(parent), lReport_(new QLabel), btnAbort_(new QPushButton("&Cancel...")) {
    setObjectName("Dialog");
    setWindowTitle(ToQt(kProgramTitle));
    lReport_->setObjectName("lReport");
    lReport_->setMinimumWidth(260);
    btnAbort_->setObjectName("btnAbort");
    connect(btnAbort_, &QPushButton::clicked, this, [this] {
      aborted_ = true;
      btnAbort_->setEnabled(false);
      lReport_->setText("Cancelling...");
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lReport_);
    layout->addWidget(btnAbort_, 0, Qt::AlignRight);
  }
  bool Status(const QString& text) {
    lReport_->setText(text);
    if (!isVisible()) show();
    QApplication::processEvents();
    return aborted_;
  }

 private:
  QLabel* lReport_;
  QPushButton* btnAbort_;
  bool aborted_ = false;
};

namespace {

struct ButtonSet {
  MsgButtons buttons;
  std::vector<std::pair<QMessageBox::StandardButton, MsgAnswer>> answers;  // the first is the default
};

const ButtonSet& ButtonsOf(MsgButtons buttons) {
  static const std::vector<ButtonSet> sets = {
      {MsgButtons::OK, {{QMessageBox::Ok, MsgAnswer::OK}}},
      {MsgButtons::OKCancel, {{QMessageBox::Ok, MsgAnswer::OK}, {QMessageBox::Cancel, MsgAnswer::Cancel}}},
      {MsgButtons::YesNo, {{QMessageBox::Yes, MsgAnswer::Yes}, {QMessageBox::No, MsgAnswer::No}}},
      {MsgButtons::YesNoCancel,
       {{QMessageBox::Yes, MsgAnswer::Yes}, {QMessageBox::No, MsgAnswer::No}, {QMessageBox::Cancel, MsgAnswer::Cancel}}},
      {MsgButtons::AbortRetryIgnore,
       {{QMessageBox::Abort, MsgAnswer::Abort},
        {QMessageBox::Retry, MsgAnswer::Retry},
        {QMessageBox::Ignore, MsgAnswer::Ignore}}},
  };
  for (const ButtonSet& set : sets) {
    if (set.buttons == buttons) return set;
  }
  return sets.front();
}

QMessageBox::Icon IconOf(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::Critical:
      return QMessageBox::Critical;
    case MsgIcon::Question:
      return QMessageBox::Question;
    case MsgIcon::Exclamation:
      return QMessageBox::Warning;
    case MsgIcon::Information:
      return QMessageBox::Information;
    case MsgIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// A message box without a title of its own bears the program's.
QString TitleOf(std::string_view title) { return ToQt(title.empty() ? kProgramTitle : title); }

}  // namespace

DesktopShell::DesktopShell() = default;
DesktopShell::~DesktopShell() = default;

bool DesktopShell::ReportStatus(std::string_view text) {
  if (text.empty()) {
    status_.reset();
    return false;
  }
  // A window of its own: it may outlive none of the others.
  if (!status_) status_ = std::make_unique<ReportStatusWindow>(nullptr);
  QString shown = ToQt(text);
  shown.replace("\r\n", "\n");
  return status_->Status(shown);
}

void DesktopShell::SetLogView(ILogView* view) {
  view_ = view;
  if (view_ == nullptr) return;
  for (const std::string& line : early_) view_->AddLog(line);
  early_.clear();
}

void DesktopShell::WriteLog(std::string_view line) {
  if (view_ == nullptr) {
    early_.emplace_back(line);
    return;
  }
  view_->AddLog(std::string(line));
}

void DesktopShell::SetProgressButton(int32_t total, int32_t position) {
  if (view_ != nullptr) view_->SetProgressButton(total, position);
}

MsgAnswer DesktopShell::MsgBox(std::string_view text, std::string_view title, MsgButtons buttons, MsgIcon icon) {
  QString body = ToQt(text);
  body.replace("\r\n", "\n");
  QMessageBox box(IconOf(icon), TitleOf(title), body, QMessageBox::NoButton, parent_);
  box.setObjectName("messageBox");
  const ButtonSet& set = ButtonsOf(buttons);
  for (const auto& [button, answer] : set.answers) box.addButton(button);
  box.setDefaultButton(set.answers.front().first);
  box.setEscapeButton(set.answers.back().first);
  const auto chosen = static_cast<QMessageBox::StandardButton>(box.exec());
  for (const auto& [button, answer] : set.answers) {
    if (button == chosen) return answer;
  }
  return DefaultAnswer(buttons);
}

bool DesktopShell::PromptVariables(const std::vector<PromptField>& fields, std::vector<std::string>& values) {
  frmPromptVariables window(fields, parent_);
  if (window.exec() != QDialog::Accepted) return false;
  values = window.Values();
  return true;
}

std::string DesktopShell::ChooseUnit(const std::vector<std::string>& units) {
  frmPromptUnit window(units, parent_);
  return window.Display();
}

std::optional<std::string> DesktopShell::InputBox(std::string_view prompt, std::string_view title,
                                                  std::string_view defaultValue) {
  QInputDialog dialog(parent_);
  dialog.setObjectName("inputBox");
  dialog.setWindowTitle(TitleOf(title));
  dialog.setLabelText(ToQt(prompt));
  dialog.setTextValue(ToQt(defaultValue));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(dialog.textValue());
}

}  // namespace hifx::shell
