// The four meter reports of a reading file: Reading, Exception, Missed and
// Orphan. One layout and one pass over the file; the report type says which
// rows print, and several types can be printed together as their sum.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "base/Clock.h"
#include "base/Shell.h"
#include "base/UserSettings.h"
#include "base/Value.h"
#include "hif/clsHIF.h"
#include "reports/RptEngine.h"

namespace hifx {

// Report type bits; bit 1 asks for a preview.
enum ReportType : int32_t {
  kReportPreview = 1,
  kReportException = 2,
  kReportReading = 4,
  kReportOrphan = 8,
  kReportMissed = 16,
};

// The report's name as the main window titles it: "Reading Report", ...
std::string ReportTitle(int32_t reportType);

struct ReportRow;

class clsReport {
 public:
  clsReport(IShell& shell, const IClock& clock, IRptPrinters& printers, IUserSettings& settings);
  ~clsReport();
  clsReport(const clsReport&) = delete;
  clsReport& operator=(const clsReport&) = delete;

  // Makes the preview window of a run with preview on; a report without one
  // has nothing to preview on.
  using PreviewMaker = std::function<std::unique_ptr<IRptPreview>()>;
  void SetPreviewWindow(PreviewMaker maker) { makePreview_ = std::move(maker); }

  void Init(RptOutputDevice Device) { engine_.OutputDevice = std::move(Device); }
  std::string Tray() const { return std::to_string(tray_); }
  void SetTray(std::string_view tray);

  // Prints the report of the reading file; false when the file can't be
  // read (and said so in the log) or the run was cancelled.
  bool Begin(bool Preview, const std::filesystem::path& HIFPath, int32_t ReportType,
             const std::string& Title);

  RptEngine& Engine() { return engine_; }
  // Read from the per-user settings at each Begin; nothing moves by them.
  double AdjustX = 0;
  double AdjustY = 0;

 private:
  void p_PrintEvent(int16_t code, int16_t level, float& height);
  void BuildArrays();
  // The detail event: one record of the file, printed when it is a meter or
  // an orphan of the report's types; height -1 at the end of the file.
  void PrintRow(float& height);
  // The unit record: the unit ID, a fresh list of initials, and the unit
  // header due at the next row.
  void TakeUnitRecord(const ReportRow& values);
  // A route record: its reader's initials.
  void TakeRouteRecord(const ReportRow& values);
  // Prints the unit header with the row's reader; height is the detail
  // event's.
  void PrintUnitHeader(const ReportRow& values, float& height);
  // A register with decimals reads in whole dial units, in the record too,
  // so the tests of the row see the same number.
  void ScaleReading(ReportRow& values);

  IShell& shell_;
  const IClock& clock_;
  IUserSettings& settings_;
  IRptPrinters& printers_;
  RptEngine engine_;
  PreviewMaker makePreview_;
  int16_t tray_ = 0;
  int32_t reportType_ = 0;
  std::unique_ptr<clsHIF> hif_;
  std::unique_ptr<ReportRow> row_;  // the record being printed
  float lineHeight_ = 0;
  RptElements pageHeader_;
  RptElements pageFooter_;
  RptElements unitHeader_;
  RptElements detail_;
  // Readers' initials by route number; routes outside 1 to routeCount_ are
  // not kept.
  std::unordered_map<int32_t, std::string> initials_;
  int32_t routeCount_ = 0;
  bool unitHeaderDue_ = false;
};

}  // namespace hifx
