// The HIF viewer: the routes of a file in one list, beside it the read
// counts of the file and of the route clicked, and below the meters of that
// route or, on the map tab, every meter placed by its position; a click on
// a meter's dot finds it in the lists. The file is only read. The lists are
// views of a table model, so a route of tens of thousands of meters shows
// at once.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "base/Shell.h"
#include "hif/HifView.h"
#include "hif/MeterPlot.h"
#include "hif/ReadStats.h"

#include <QtCore/QAbstractTableModel>
#include <QtWidgets/QWidget>

class QLabel;
class QTabWidget;
class QTableView;

namespace hifx::shell {

class TextTableModel final : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;
  void SetTable(TextTable table);
  const TextTable& Table() const { return table_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  TextTable table_;
};

class frmHIFView : public QWidget {
  Q_OBJECT

 public:
  frmHIFView(IShell& shell, QWidget* parent = nullptr);
  // Reads the file and shows the window; false when it isn't a HIF.
  bool Display(const std::filesystem::path& fileName);
  // Fills the meter list with the meters of the route in that row.
  void lstRoutes_Click(int row);
  // Picks the meter whose dot is at that point of the map, if one is.
  void picMap_Click(double x, double y);

  const TextTableModel& Routes() const { return routes_; }
  const TextTableModel& Meters() const { return meters_; }

 private:
  QWidget* StatsPanel();
  QWidget* MapView();
  void CountFile(const std::filesystem::path& fileName);
  void ShowCounts(const RouteReadStats* route, const std::string& routeTitle);
  void DrawMap();
  void ShowMeter(size_t index);

  IShell& shell_;
  HifView view_;
  std::filesystem::path file_;
  std::optional<ReadStats> stats_;
  std::optional<std::vector<PlotMeter>> plotted_;
  TextTableModel routes_;
  TextTableModel meters_;
  QTableView* lstRoutes_;
  QTableView* lstMeters_;
  QTabWidget* tabMeters_ = nullptr;
  QLabel* picMap_ = nullptr;
  QLabel* lblStatNote_ = nullptr;
  QLabel* lblStatRoute_ = nullptr;
  std::vector<std::pair<QLabel*, QLabel*>> statFigures_;  // the file's and the route's, a line each
};

}  // namespace hifx::shell
