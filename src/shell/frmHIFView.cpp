#include "shell/frmHIFView.h"

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "reports/qt/QtPlot.h"
#include "shell/Dialogs.h"
#include "shell/ViewerLogic.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtWidgets/QFrame>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <functional>

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

// The map's picture, telling where it was clicked in its own pixels.
class MapPicture final : public QLabel {
 public:
  std::function<void(double, double)> clicked;

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton && clicked) clicked(event->position().x(), event->position().y());
    QLabel::mousePressEvent(event);
  }
};

QLabel* Figure(const QString& name) {
  auto* label = new QLabel;
  label->setObjectName(name);
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

// "Route 7 NORTH": the route's number and initials from its row.
std::string RouteTitle(const std::vector<std::string>& row) {
  std::string title = "Route " + row.at(0);
  if (row.size() > 1 && !Trim(row[1]).empty()) title += " " + std::string(Trim(row[1]));
  return title;
}

// "lblStatNotRead" for "Not read".
QString StatName(const std::string& caption) {
  QString name = "lblStat";
  for (const QString& word : ToQt(caption).split(' ', Qt::SkipEmptyParts)) name += word.front().toUpper() + word.mid(1);
  return name;
}

QLabel* Heading(const QString& text, const char* name) {
  auto* label = new QLabel(text);
  label->setObjectName(name);
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  QFont bold = label->font();
  bold.setBold(true);
  label->setFont(bold);
  return label;
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
  auto* top = new QSplitter(Qt::Horizontal);
  top->addWidget(lstRoutes_);
  top->addWidget(StatsPanel());
  top->setStretchFactor(0, 1);
  top->setStretchFactor(1, 0);
  tabMeters_ = new QTabWidget;
  tabMeters_->setObjectName("tabMeters");
  tabMeters_->addTab(lstMeters_, "Meters");
  tabMeters_->addTab(MapView(), "Map");
  // The map is drawn the first time its tab is opened.
  connect(tabMeters_, &QTabWidget::currentChanged, this, [this](int tab) {
    if (tab == 1) DrawMap();
  });
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->addWidget(top);
  splitter->addWidget(tabMeters_);
  splitter->setSizes({330, 390});
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  connect(lstRoutes_, &QTableView::clicked, this, [this](const QModelIndex& index) { lstRoutes_Click(index.row()); });
  resize(1040, 720);
}

// The map's picture in a scroll area, the picture at its own size.
QWidget* frmHIFView::MapView() {
  auto* map = new QScrollArea;
  map->setObjectName("scrMap");
  map->setBackgroundRole(QPalette::Base);
  auto* picture = new MapPicture;
  picture->setObjectName("picMap");
  picture->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  picture->clicked = [this](double x, double y) { picMap_Click(x, y); };
  picMap_ = picture;
  map->setWidget(picMap_);
  return map;
}

// The counts' captions down the left, the whole file's figures and the
// route's beside them, and a note under them when the file can't be counted.
QWidget* frmHIFView::StatsPanel() {
  auto* frame = new QFrame;
  frame->setObjectName("fraStats");
  frame->setFrameShape(QFrame::StyledPanel);
  auto* grid = new QGridLayout(frame);
  grid->setVerticalSpacing(2);
  grid->setHorizontalSpacing(16);
  grid->addWidget(Heading("Whole file", "lblStatFile"), 0, 1);
  lblStatRoute_ = Heading("Route", "lblStatRoute");
  grid->addWidget(lblStatRoute_, 0, 2);
  int row = 1;
  for (const StatLine& line : StatLines(ReadStats{}, nullptr)) {
    grid->addWidget(new QLabel(ToQt(line.caption)), row, 0);
    statFigures_.emplace_back(Figure(StatName(line.caption)), Figure(StatName(line.caption) + "Route"));
    grid->addWidget(statFigures_.back().first, row, 1);
    grid->addWidget(statFigures_.back().second, row, 2);
    ++row;
  }
  lblStatNote_ = new QLabel;
  lblStatNote_->setObjectName("lblStatNote");
  lblStatNote_->setWordWrap(true);
  grid->addWidget(lblStatNote_, row, 0, 1, 3);
  grid->setRowStretch(row + 1, 1);
  grid->setColumnMinimumWidth(1, 130);
  grid->setColumnMinimumWidth(2, 130);
  return frame;
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
  file_ = fileName;
  plotted_.reset();
  routes_.SetTable(view_.Routes());
  TextTable meters;
  meters.columns = HifView::MeterColumns();
  meters_.SetTable(std::move(meters));
  CountFile(fileName);
  if (tabMeters_->currentIndex() == 1) DrawMap();
  show();
  return true;
}

void frmHIFView::CountFile(const std::filesystem::path& fileName) {
  try {
    // The skip list's records read as meter fields would say so in a box;
    // the counts pass over them, as hifx stats does.
    SilentShell quiet;
    stats_ = CountReadings(quiet, fileName);
    lblStatNote_->clear();
    lblStatNote_->setToolTip({});
  } catch (const Failure& failure) {
    // The lists still show what the file gives; only the counts are missing.
    stats_.reset();
    lblStatNote_->setText("No counts: the file is damaged.");
    lblStatNote_->setToolTip(ToQt(failure.Description()));
  }
  ShowCounts(nullptr, "Route");
}

void frmHIFView::ShowCounts(const RouteReadStats* route, const std::string& routeTitle) {
  lblStatRoute_->setText(ToQt(routeTitle));
  const auto lines = stats_ ? StatLines(*stats_, route) : std::vector<StatLine>{};
  for (size_t i = 0; i < statFigures_.size(); ++i) {
    statFigures_[i].first->setText(i < lines.size() ? ToQt(lines[i].file) : QString());
    statFigures_[i].second->setText(i < lines.size() ? ToQt(lines[i].route) : QString());
  }
  // The skipped figures tell their reasons when pointed at.
  const size_t skipped = 3;
  statFigures_[skipped].first->setToolTip(stats_ ? ToQt(SkippedByReason(stats_->total, stats_->skipCodes)) : QString());
  statFigures_[skipped].second->setToolTip(stats_ && route ? ToQt(SkippedByReason(*route, stats_->skipCodes)) : QString());
}

void frmHIFView::DrawMap() {
  if (plotted_ || file_.empty()) return;
  try {
    SilentShell quiet;
    plotted_ = ReadPlotMeters(quiet, file_);
    picMap_->setPixmap(QPixmap::fromImage(PlotImage(file_.filename().string(), *plotted_)));
  } catch (const Failure& failure) {
    plotted_.emplace();
    picMap_->setText("No map: the file is damaged.\n" + ToQt(failure.Description()));
  }
  picMap_->adjustSize();
}

void frmHIFView::picMap_Click(double x, double y) {
  if (!plotted_) return;
  if (const auto meter = NearestMeter(MeterPositions(*plotted_), x, y)) ShowMeter(*meter);
}

// The meter's route chosen as a click on it does, and the meter's row
// chosen in the meter list, which comes to the front.
void frmHIFView::ShowMeter(size_t index) {
  const auto place = PlaceInLists(routes_.Table(), *plotted_, index);
  if (!place) return;
  const int routeRow = static_cast<int>(place->routeRow);
  lstRoutes_->selectRow(routeRow);
  lstRoutes_->scrollTo(routes_.index(routeRow, 0));
  lstRoutes_Click(routeRow);
  const int meterRow = static_cast<int>(place->meterRow);
  if (meterRow >= meters_.rowCount()) return;
  tabMeters_->setCurrentIndex(0);
  lstMeters_->selectRow(meterRow);
  lstMeters_->scrollTo(meters_.index(meterRow, 0), QAbstractItemView::PositionAtCenter);
}

void frmHIFView::lstRoutes_Click(int row) {
  const auto& rows = routes_.Table().rows;
  if (row < 0 || static_cast<size_t>(row) >= rows.size()) return;
  const auto route = static_cast<int32_t>(NumericPrefix(rows[static_cast<size_t>(row)][0]));
  if (stats_) ShowCounts(RouteCounts(*stats_, route), RouteTitle(rows[static_cast<size_t>(row)]));
  try {
    meters_.SetTable(view_.Meters(route));
  } catch (const Failure& failure) {
    meters_.SetTable({HifView::MeterColumns(), {}});
    shell_.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
  }
}

}  // namespace hifx::shell
