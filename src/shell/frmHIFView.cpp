#include "shell/frmHIFView.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "shell/Dialogs.h"

namespace hifx::shell {

void TextTableModel::SetTable(TextTable table) {
  beginResetModel();
  table_ = std::move(table);
  endResetModel();
}

int TextTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.rows.size());
}

int TextTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.columns.size());
}

QVariant TextTableModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole || !index.isValid()) return {};
  const auto& row = table_.rows[static_cast<size_t>(index.row())];
  const auto column = static_cast<size_t>(index.column());
  return column < row.size() ? ToQt(row[column]) : QString();
}

QVariant TextTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  if (section < 0 || static_cast<size_t>(section) >= table_.columns.size()) return {};
  return ToQt(table_.columns[static_cast<size_t>(section)]);
}

namespace {

QTableView* ReportList(const char* name, QAbstractItemModel& model) {
  auto* list = new QTableView;
  list->setObjectName(name);
  list->setModel(&model);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setSelectionMode(QAbstractItemView::SingleSelection);
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list->verticalHeader()->hide();
  // Rows of one height: the list needn't measure tens of thousands of rows.
  list->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  list->verticalHeader()->setDefaultSectionSize(list->fontMetrics().height() + 6);
  list->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  list->horizontalHeader()->setDefaultSectionSize(96);
  return list;
}

}  // namespace

frmHIFView::frmHIFView(IShell& shell, QWidget* parent)
    : QWidget(parent, Qt::Window),
      shell_(shell),
      view_(shell),
      lstRoutes_(ReportList("lstRoutes", routes_)),
      lstMeters_(ReportList("lstMeters", meters_)) {
  setObjectName("frmHIFView");
  setAttribute(Qt::WA_DeleteOnClose);
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->addWidget(lstRoutes_);
  splitter->addWidget(lstMeters_);
  splitter->setStretchFactor(0, 1);
  splitter->setStretchFactor(1, 3);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  connect(lstRoutes_, &QTableView::clicked, this, [this](const QModelIndex& index) { lstRoutes_Click(index.row()); });
  resize(900, 600);
}

bool frmHIFView::Display(const std::filesystem::path& fileName) {
  try {
    if (!view_.Display(fileName)) return false;
  } catch (const Failure&) {
    // A file that opens but breaks off is no HIF either.
    shell_.WriteLog("Error: Could not read HIF file");
    return false;
  }
  setWindowTitle(PathToQt(fileName));
  routes_.SetTable(view_.Routes());
  TextTable meters;
  meters.columns = HifView::MeterColumns();
  meters_.SetTable(std::move(meters));
  show();
  return true;
}

void frmHIFView::lstRoutes_Click(int row) {
  const auto& rows = routes_.Table().rows;
  if (row < 0 || static_cast<size_t>(row) >= rows.size()) return;
  const auto route = static_cast<int32_t>(NumericPrefix(rows[static_cast<size_t>(row)][0]));
  try {
    meters_.SetTable(view_.Meters(route));
  } catch (const Failure& failure) {
    meters_.SetTable({HifView::MeterColumns(), {}});
    shell_.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
  }
}

}  // namespace hifx::shell
