#include "shell/frmCheckRoute.h"

#include "app/UnloggedShell.h"
#include "base/AtomicFile.h"
#include "base/Failure.h"
#include "maps/clsExchMap.h"
#include "shell/Dialogs.h"
#include "shell/SetupLogic.h"

#include <QtCore/QSortFilterProxyModel>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace hifx::shell {
namespace {

// The list sorts by this role: the line as a number, the other columns as
// their text.
constexpr int kSortRole = Qt::UserRole;
const char* const kCsvFilter = "CSV Files (*.csv)|*.csv|All Files(*.*)|*.*";

QStandardItem* Cell(const QString& text, const QVariant& sortKey) {
  auto* item = new QStandardItem(text);
  item->setEditable(false);
  item->setData(sortKey, kSortRole);
  return item;
}

QList<QStandardItem*> Row(const RouteFault& fault) {
  // A fault of the file as a whole has no line.
  QList<QStandardItem*> row{Cell(fault.line == 0 ? QString() : QString::number(fault.line), fault.line)};
  for (const std::string* text : {&fault.field, &fault.value, &fault.kind, &fault.message}) {
    row << Cell(ToQt(*text), ToQt(*text));
  }
  return row;
}

}  // namespace

frmCheckRoute::frmCheckRoute(app::Session& session, QWidget* parent) : QDialog(parent), session_(session) {
  setObjectName("frmCheckRoute");
  setWindowTitle("Check Route File");
  const clsExchange& stored = session_.Exchange();
  auto* form = new QFormLayout;
  form->addRow("Route file:", FileRow(txtRoute_, "Route", "Route File"));
  txtRoute_->setText(ToQt(stored.RouteSource));
  cboMap_ = new QComboBox;
  cboMap_->setObjectName("cboMap");
  for (const std::string& name : MapChoices(stored.Environment().siteFolder, kUseRoute)) cboMap_->addItem(ToQt(name));
  cboMap_->setCurrentIndex(cboMap_->findText(ToQt(stored.RouteMap), Qt::MatchFixedString));
  form->addRow("Route map:", cboMap_);
  form->addRow("Last readings:", FileRow(txtSince_, "Since", "Last Readings"));
  txtSince_->setPlaceholderText("(optional) the reading file, for the meters changed out since");

  auto* checkButton = new QPushButton("Check");
  checkButton->setObjectName("cmdCheck");
  checkButton->setDefault(true);
  connect(checkButton, &QPushButton::clicked, this, &frmCheckRoute::cmdCheck_Click);
  auto* checkRow = new QHBoxLayout;
  checkRow->addWidget(checkButton);
  checkRow->addStretch();
  form->addRow(QString(), checkRow);

  lblSummary_ = new QLabel("Choose the route file and click Check.");
  lblSummary_->setObjectName("lblSummary");
  lblSummary_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblVerdict_ = new QLabel;
  lblVerdict_->setObjectName("lblVerdict");
  lblVerdict_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  QFont bold = lblVerdict_->font();
  bold.setBold(true);
  lblVerdict_->setFont(bold);
  txtChanges_ = new QPlainTextEdit;
  txtChanges_->setObjectName("txtChanges");
  txtChanges_->setReadOnly(true);
  txtChanges_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtChanges_->setMaximumHeight(110);
  txtChanges_->hide();

  cmdSave_ = new QPushButton("Save as CSV...");
  cmdSave_->setObjectName("cmdSave");
  cmdSave_->setEnabled(false);
  connect(cmdSave_, &QPushButton::clicked, this, &frmCheckRoute::cmdSave_Click);
  auto* closeButton = new QPushButton("Close");
  closeButton->setObjectName("cmdClose");
  connect(closeButton, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdSave_);
  buttons->addStretch();
  buttons->addWidget(closeButton);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(FaultList(), 1);
  layout->addWidget(lblSummary_);
  layout->addWidget(lblVerdict_);
  layout->addWidget(txtChanges_);
  layout->addLayout(buttons);
  resize(820, 520);
}

QLayout* frmCheckRoute::FileRow(QLineEdit*& box, const char* name, const char* title) {
  box = new QLineEdit;
  box->setObjectName(QString("txt") + name);
  auto* browse = new QToolButton;
  browse->setObjectName(QString("btn") + name);
  browse->setText("...");
  connect(browse, &QToolButton::clicked, this, [this, box, title] {
    const auto file = OpenFileDialog(this, {title, kAnyFileFilter, {}, box->text()});
    if (file) box->setText(PathToQt(*file));
  });
  auto* row = new QHBoxLayout;
  row->addWidget(box);
  row->addWidget(browse);
  return row;
}

QTableView* frmCheckRoute::FaultList() {
  faults_ = new QStandardItemModel(0, 5, this);
  faults_->setHorizontalHeaderLabels({"Line", "Field", "Value", "Kind", "Message"});
  auto* sorted = new QSortFilterProxyModel(this);
  sorted->setSourceModel(faults_);
  sorted->setSortRole(kSortRole);
  auto* list = new QTableView;
  list->setObjectName("lstFaults");
  list->setModel(sorted);
  list->setSortingEnabled(true);
  list->sortByColumn(-1, Qt::AscendingOrder);  // the file's order until a header is clicked
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setAlternatingRowColors(true);
  list->verticalHeader()->hide();
  list->horizontalHeader()->setStretchLastSection(true);
  const int widths[] = {60, 130, 130, 110};  // the message takes the rest
  for (int column = 0; column < 4; ++column) list->setColumnWidth(column, widths[column]);
  return list;
}

void frmCheckRoute::cmdCheck_Click() {
  const ExchangeEnvironment environment = session_.Environment();
  app::UnloggedShell shell(session_.Shell());
  clsExchange exchange({environment.store, shell, environment.clock, environment.siteFolder, environment.syncRoot});
  exchange.LoadSettings();
  exchange.RouteSource = FromQt(txtRoute_->text().trimmed());
  exchange.RouteMap = FromQt(cboMap_->currentText());
  RouteCheck check;
  check.since = PathFromQt(txtSince_->text().trimmed());
  QApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    exchange.CheckRoute(check);
  } catch (const Failure& failure) {
    QApplication::restoreOverrideCursor();
    session_.Shell().MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
    return;
  }
  QApplication::restoreOverrideCursor();
  Show(check);
  check_ = std::move(check);
  cmdSave_->setEnabled(true);
}

void frmCheckRoute::Show(const RouteCheck& check) {
  faults_->removeRows(0, faults_->rowCount());
  for (const RouteFault& fault : check.faults) faults_->appendRow(Row(fault));
  lblSummary_->setText(ToQt(CheckSummary(check)));
  lblVerdict_->setText(ToQt(CheckVerdict(check)));
  // The changes are there only when the route would convert.
  const bool changes = !check.since.empty() && check.Converts();
  txtChanges_->setVisible(changes);
  txtChanges_->clear();
  if (!changes) return;
  const auto plain = [](std::string& line, const std::string& text) { line += text; };
  for (const MeterDifference& d : check.changes) txtChanges_->appendPlainText(ToQt(ChangeLine(d, plain)));
  txtChanges_->appendPlainText(ToQt(ChangesSummary(check)));
}

void frmCheckRoute::cmdSave_Click() {
  if (!check_) return;
  std::filesystem::path start = PathFromQt(txtRoute_->text().trimmed());
  if (!start.empty()) start = std::filesystem::absolute(start).replace_extension(".csv");
  const auto file = SaveFileDialog(this, {"Save Faults", kCsvFilter, "csv", PathToQt(start)});
  if (!file) return;
  try {
    ReplaceFile(*file, FaultsCsv(*check_));
  } catch (const Failure& failure) {
    session_.Shell().MsgBox("Could not save " + file->string() + ": " + failure.Description(), "Error",
                            MsgButtons::OK, MsgIcon::Critical);
  }
}

}  // namespace hifx::shell
