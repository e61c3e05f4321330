// The Qt report surfaces as a module the command line loads when a command
// draws: a session of the toolkit for as long as the surfaces live.
#include <exception>
#include <memory>

#include "reports/ReportSurfaces.h"
#include "reports/qt/QtPlot.h"
#include "reports/qt/QtRptDevice.h"

namespace hifx {
namespace {

class QtReportSurfaces final : public IReportSurfaces {
 public:
  std::unique_ptr<IReportPrinters> ToPdf(const std::filesystem::path& file) override { return QtPrinters::ToPdf(file); }
  std::unique_ptr<IReportPrinters> ToPictures(const std::filesystem::path& folder, const std::string& stem,
                                              double dotsPerInch) override {
    return QtPrinters::ToPictures(folder, stem, dotsPerInch);
  }
  std::unique_ptr<IReportPrinters> ToDefaultPrinter() override { return QtPrinters::ToDefaultPrinter(); }
  IUserSettings& UserSettings() override { return settings_; }
  std::string PlotPng(const std::string& title, const std::vector<PlotMeter>& meters) override {
    return hifx::PlotPng(title, meters);
  }

 private:
  QtReportSession session_;
  QtUserSettings settings_;
};

}  // namespace
}  // namespace hifx

extern "C" __attribute__((visibility("default"))) hifx::IReportSurfaces* hifx_open_report_surfaces() {
  try {
    return new hifx::QtReportSurfaces();
  } catch (const std::exception&) {
    return nullptr;
  }
}
