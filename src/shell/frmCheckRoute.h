// The route file checked as its conversion would read it, from the Convert
// menu: the file, the map and the last readings to hold it against, every
// fault in a list that sorts by any column, the summary and the verdict the
// check command prints, and the faults saved as CSV. Nothing of the site's
// settings changes and the main window's log gets none of the check's lines.
#pragma once

#include <QtWidgets/QDialog>

#include <optional>

#include "app/Session.h"
#include "exchange/RouteCheck.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStandardItemModel;
class QTableView;

namespace hifx::shell {

class frmCheckRoute : public QDialog {
  Q_OBJECT

 public:
  explicit frmCheckRoute(app::Session& session, QWidget* parent = nullptr);

  // The check of the file, the map and the last readings shown.
  void cmdCheck_Click();
  void cmdSave_Click();

 private:
  QLayout* FileRow(QLineEdit*& box, const char* name, const char* title);
  QTableView* FaultList();
  void Show(const RouteCheck& check);

  app::Session& session_;
  std::optional<RouteCheck> check_;
  QLineEdit* txtRoute_ = nullptr;
  QComboBox* cboMap_ = nullptr;
  QLineEdit* txtSince_ = nullptr;
  QStandardItemModel* faults_ = nullptr;
  QLabel* lblSummary_ = nullptr;
  QLabel* lblVerdict_ = nullptr;
  QPlainTextEdit* txtChanges_ = nullptr;
  QPushButton* cmdSave_ = nullptr;
};

}  // namespace hifx::shell
