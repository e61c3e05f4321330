// "Reports": which reports to print after a reading conversion, or one to
// preview. The boxes start from the choice saved last time.
#pragma once

#include <QtWidgets/QDialog>

#include <array>
#include <cstdint>

#include "base/UserSettings.h"
#include "shell/MainWindowLogic.h"

class QCheckBox;

namespace hifx::shell {

class frmReports : public QDialog, public IReportChoice {
  Q_OBJECT

 public:
  explicit frmReports(IUserSettings& settings, QWidget* parent = nullptr);

  // The report bits chosen, with 1 added for a preview; 0 for Close.
  int32_t Display() override;
  void Unload() override { hide(); }

 private:
  void Finish(int32_t mask);

  IUserSettings& settings_;
  std::array<QCheckBox*, 4> chkReports_{};
  int32_t mask_ = 0;
};

}  // namespace hifx::shell
