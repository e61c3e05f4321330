// The map editor: one conversion map's header and, field by field, how each
// field of its catalogue is mapped. Every change goes into the map at once;
// the map saves and deletes its own file.
#pragma once

#include <QtWidgets/QDialog>

#include <cstdint>
#include <optional>
#include <string>

#include "base/Shell.h"
#include "maps/clsExchMap.h"
#include "shell/MapEditLogic.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace hifx::shell {

class frmMapEdit : public QDialog {
  Q_OBJECT

 public:
  // shell: asks "Save Changes?" and for the name of a map to save.
  explicit frmMapEdit(IShell& shell, QWidget* parent = nullptr);

  // Edits the map until a button closes the window: the saved map's name,
  // "{DELETED}", or empty when closed without a save.
  std::string Display(clsExchMap& map, bool isNew);

  // Escape and the window's own close button ask as Close does.
  void reject() override;

 private:
  void SetupForm(int32_t use);
  void SetupData();
  void SetupOptions(const std::string& fieldName);
  void ShowField();
  void EnableControls(bool flag);
  void ApplyTypeRules();
  void ApplyOptionRules();
  void Finish(const MapEditOutcome& outcome);

  // A change by the person: stored into the map unless the window itself is
  // filling its controls.
  template <typename Write>
  void Store(Write write);

  void cboMapType_Click();
  void cboMapOption_Click();
  void lstMapFields_Click();

  IShell& shell_;
  clsExchMap* map_ = nullptr;
  std::optional<MapEditActions> actions_;
  int32_t field_ = 0;  // the field shown, from 1
  bool filling_ = false;
  std::string result_;

  QComboBox* cboMapType_;
  QComboBox* cboMapFilter_;
  QComboBox* cboMapDelimiter_;
  QComboBox* cboMapQuote_;
  QLineEdit* txtMapLength_;
  QComboBox* cboMapTerminator_;
  QGroupBox* fraMVRS_;
  QCheckBox* chkMVRS1_;
  QLabel* lMVRS_;
  QListWidget* lstMapFields_;
  QComboBox* cboMapOption_;
  QLineEdit* txtMapPosition_;
  QLineEdit* txtMapWidth_;
  QLineEdit* txtMapConstant_;
  QComboBox* cboMapAlign_;
  QComboBox* cboMapPad_;
  QComboBox* cboMapFormat_;

  QLabel* lMapType_;
  QLabel* lMapFilter_;
  QLabel* lMapDelimiter_;
  QLabel* lMapQuote_;
  QLabel* lMapLength_;
  QLabel* lMapTerminator_;
  QLabel* lMapFields_;
  QLabel* lMapOption_;
  QLabel* lMapPosition_;
  QLabel* lMapWidth_;
  QLabel* lMapConstant_;
  QLabel* lMapAlign_;
  QLabel* lMapPad_;
  QLabel* lMapFormat_;
};

}  // namespace hifx::shell
