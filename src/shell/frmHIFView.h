// The HIF viewer: the routes of a file in one list and the meters of the
// route clicked in the other. The file is only read. The lists are views of
// a table model, so a route of tens of thousands of meters shows at once.
#pragma once

#include <QtCore/QAbstractTableModel>
#include <QtWidgets/QWidget>

#include <filesystem>

#include "base/Shell.h"
#include "hif/HifView.h"

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

  const TextTableModel& Routes() const { return routes_; }
  const TextTableModel& Meters() const { return meters_; }

 private:
  IShell& shell_;
  HifView view_;
  TextTableModel routes_;
  TextTableModel meters_;
  QTableView* lstRoutes_;
  QTableView* lstMeters_;
};

}  // namespace hifx::shell
