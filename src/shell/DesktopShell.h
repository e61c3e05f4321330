// The shell port in windows: log lines and progress into the main window,
// questions as message boxes, run-time prompts and the unit chooser as the
// program's own dialogs.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Shell.h"

class QWidget;

namespace hifx::shell {

// Where the log lines and the progress of a run go: the main window.
class ILogView {
 public:
  virtual ~ILogView() = default;
  virtual void AddLog(const std::string& text) = 0;
  virtual void SetProgressButton(int32_t total, int32_t position) = 0;
};

class ReportStatusWindow;

class DesktopShell final : public IShell {
 public:
  DesktopShell();
  ~DesktopShell() override;

  // The main window, once it exists; the lines logged before it are kept
  // and shown when it comes.
  void SetLogView(ILogView* view);
  // The window the dialogs belong to.
  void SetParentWindow(QWidget* parent) { parent_ = parent; }

  void WriteLog(std::string_view line) override;
  void SetProgressButton(int32_t total, int32_t position) override;
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons buttons, MsgIcon icon) override;
  bool PromptVariables(const std::vector<PromptField>& fields, std::vector<std::string>& values) override;
  std::string ChooseUnit(const std::vector<std::string>& units) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultValue) override;
  // The status window of a report run, with its Cancel button.
  bool ReportStatus(std::string_view text) override;

 private:
  ILogView* view_ = nullptr;
  QWidget* parent_ = nullptr;
  std::vector<std::string> early_;  // logged before the main window was made
  std::unique_ptr<ReportStatusWindow> status_;
};

}  // namespace hifx::shell
