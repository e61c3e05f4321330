#include "shell/MainWindowLogic.h"

#include <system_error>

#include "base/CaseBlind.h"
#include "reports/clsReport.h"

namespace hifx::shell {

bool RunGuard::Run(const std::function<void()>& work) {
  if (busy_) return false;
  busy_ = true;
  try {
    work();
  } catch (...) {
    busy_ = false;
    throw;
  }
  busy_ = false;
  return true;
}

Size MainLeastSize(int logLeft, int lastButtonTop, int lastButtonHeight) {
  return {2 * logLeft, lastButtonTop + lastButtonHeight * 3 / 2};
}

Size LogBoxSize(Size inner, int logLeft, int logTop) {
  return {inner.width - logLeft - logTop, inner.height - 2 * logTop};
}

int ProgressFillWidth(int innerWidth, int32_t total, int32_t position) {
  if (total <= 0) return 10;
  return static_cast<int>(static_cast<int64_t>(innerWidth) * position / total) + 10;
}

void ChooseReports(IReportChoice& choice, IShell& shell, const ReportRun& run) {
  for (;;) {
    const int32_t mask = choice.Display();
    if (mask == 0) break;
    if ((mask & kReportPreview) != 0) {
      // A word left in by the program's first developer; offices know it.
      shell.MsgBox("in r and roPreview");
      run(true, mask & ~kReportPreview, "");
      continue;
    }
    for (const int32_t type : {kReportException, kReportReading, kReportOrphan, kReportMissed}) {
      if ((mask & type) != 0) run(false, type, ReportTitle(type));
    }
    break;
  }
  choice.Unload();
}

std::optional<std::filesystem::path> SoleDistribution(const std::filesystem::path& folder) {
  std::optional<std::filesystem::path> found;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (UpperCase(it->path().extension().string()) != ".DST") continue;
    if (found) return std::nullopt;
    found = it->path();
  }
  return found;
}

}  // namespace hifx::shell
