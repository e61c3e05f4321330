// What the main window does apart from drawing: the guard that keeps a
// second run out while one is under way, the window's least size, the
// progress bar's fill, the report choice after a reading conversion, and
// the distribution a load takes without asking.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "base/Shell.h"

namespace hifx::shell {

// While a conversion runs, the window still answers clicks: the progress
// steps let them through. Whatever would start another conversion, change
// the settings the running one reads, or close the window is turned away
// until it ends.
class RunGuard {
 public:
  bool Busy() const { return busy_; }
  // Runs work unless something runs already; false when turned away.
  bool Run(const std::function<void()>& work);

 private:
  bool busy_ = false;
};

struct Size {
  int width = 0;
  int height = 0;
};

// The least inner size of the main window: twice the log box's left edge
// wide, and down to half the last button's height below it.
Size MainLeastSize(int logLeft, int lastButtonTop, int lastButtonHeight);

// The log box fills the window right of the buttons, with its top edge as
// the margin on the right and twice it below.
Size LogBoxSize(Size inner, int logLeft, int logTop);

// The width of the bar's filled part inside a button of that inner width.
int ProgressFillWidth(int innerWidth, int32_t total, int32_t position);

// The report choice window: Display gives the mask of the reports chosen,
// with bit 1 for a preview; Unload closes it.
class IReportChoice {
 public:
  virtual ~IReportChoice() = default;
  virtual int32_t Display() = 0;
  virtual void Unload() = 0;
};

// Runs one report: preview on or off, the report's type bits, its title.
using ReportRun = std::function<void(bool preview, int32_t type, const std::string& title)>;

// Asks for reports until the person closes the window or prints: a preview
// returns to the choice, printing runs each chosen report once, in the
// order Exception, Reading, Orphan, Missed, and ends the choice.
void ChooseReports(IReportChoice& choice, IShell& shell, const ReportRun& run);

// The one distribution file of a folder, when it holds exactly one; else the
// person is asked.
std::optional<std::filesystem::path> SoleDistribution(const std::filesystem::path& folder);

}  // namespace hifx::shell
