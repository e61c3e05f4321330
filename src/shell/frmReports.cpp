#include "shell/frmReports.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "base/Numbers.h"
#include "delivery/UnitInstall.h"

namespace hifx::shell {
namespace {

struct ReportBox {
  int32_t index;
  const char* caption;
};
constexpr std::array<ReportBox, 4> kBoxes = {{{2, "Exceptions"}, {4, "Readings"}, {8, "Orphans"}, {16, "Missed"}}};

}  // namespace

frmReports::frmReports(IUserSettings& settings, QWidget* parent) : QDialog(parent), settings_(settings) {
  setObjectName("frmReports");
  setWindowTitle("Reports");
  auto* heading = new QLabel("Select reports to print.  (Click name to preview)");
  auto* grid = new QGridLayout;
  for (size_t i = 0; i < kBoxes.size(); ++i) {
    const ReportBox& box = kBoxes[i];
    chkReports_[i] = new QCheckBox;
    chkReports_[i]->setObjectName(QString("chkReports%1").arg(box.index));
    auto* preview = new QPushButton(box.caption);
    preview->setObjectName(QString("btnPreview%1").arg(box.index));
    preview->setToolTip("Preview");
    connect(preview, &QPushButton::clicked, this, [this, index = box.index] { Finish(index + 1); });
    grid->addWidget(chkReports_[i], static_cast<int>(i), 0);
    grid->addWidget(preview, static_cast<int>(i), 1);
  }
  grid->setColumnStretch(2, 1);
  auto* proceed = new QPushButton("Conti&nue");
  proceed->setObjectName("btnActionCONTINUE");
  proceed->setDefault(true);
  auto* close = new QPushButton("&Close");
  close->setObjectName("btnActionCANCEL");
  // The printer button closes the window as Close does: there is no printer
  // dialog to show.
  auto* printer = new QPushButton("&Printer ...");
  printer->setObjectName("btnActionPRINTER");
  connect(proceed, &QPushButton::clicked, this, [this] {
    int32_t mask = 0;
    for (size_t i = 0; i < kBoxes.size(); ++i) {
      if (chkReports_[i]->isChecked()) mask += kBoxes[i].index;
    }
    settings_.SaveSetting(kProgramTitle, "Reports", "Options", std::to_string(mask));
    Finish(mask);
  });
  connect(close, &QPushButton::clicked, this, [this] { Finish(0); });
  connect(printer, &QPushButton::clicked, this, [this] { Finish(0); });
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(printer);
  buttons->addStretch();
  buttons->addWidget(proceed);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(heading);
  layout->addLayout(grid);
  layout->addLayout(buttons);
}

int32_t frmReports::Display() {
  const auto saved = static_cast<int32_t>(NumericPrefix(settings_.GetSetting(kProgramTitle, "Reports", "Options", "0")));
  for (size_t i = 0; i < kBoxes.size(); ++i) chkReports_[i]->setChecked((saved & kBoxes[i].index) != 0);
  mask_ = 0;
  exec();
  return mask_;
}

void frmReports::Finish(int32_t mask) {
  mask_ = mask;
  accept();
}

}  // namespace hifx::shell
