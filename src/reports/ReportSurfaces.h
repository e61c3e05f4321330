// What a program needs to put reports and pictures anywhere but a window:
// PDF files, the system's printers, PNG pictures, and the per-user report
// settings. The Qt build provides them; the command line loads that part
// only for the commands that draw, so that every other command starts
// without the toolkit.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/DateSerial.h"
#include "base/UserSettings.h"
#include "hif/MeterPlot.h"
#include "reports/RptDevice.h"

namespace hifx {

// What a report's PDF says of itself in its document information. The title
// and subject are in the report's code page, as its pages print them; the
// author, a file's name, is UTF-8.
struct PdfInfo {
  std::string title, subject, author;
  CivilTime created;  // local time, as the clock tells it
};

// The printers of one report run, and what happens once it is drawn.
class IReportPrinters : public IRptPrinters {
 public:
  // What the PDF says of itself; without it, only the toolkit's title-less
  // Info.
  virtual void SetPdfInfo(PdfInfo info) = 0;
  // Ends every document; a PDF is then written whole in place of the file
  // of its name. Raises, naming the file, when that fails.
  virtual void Finish() = 0;
};

class IReportSurfaces {
 public:
  virtual ~IReportSurfaces() = default;
  // The system printer is a PDF file.
  virtual std::unique_ptr<IReportPrinters> ToPdf(const std::filesystem::path& file) = 0;
  // Each page a PNG picture in the folder, STEM-00001.png and on.
  virtual std::unique_ptr<IReportPrinters> ToPictures(const std::filesystem::path& folder, const std::string& stem,
                                                      double dotsPerInch) = 0;
  // The system printer is the platform's default printer.
  virtual std::unique_ptr<IReportPrinters> ToDefaultPrinter() = 0;
  virtual IUserSettings& UserSettings() = 0;
  // The meters' picture as PNG bytes.
  virtual std::string PlotPng(const std::string& title, const std::vector<PlotMeter>& meters) = 0;
};

// The loadable part that provides them: a module of this name whose entry of
// this name, with no arguments, returns a new IReportSurfaces (nullptr when
// the toolkit can't start). The module starts the toolkit; deleting what it
// returned ends it.
inline constexpr const char* kReportModuleName = "hifx-qt.so";
inline constexpr const char* kReportModuleEntry = "hifx_open_report_surfaces";
using OpenReportSurfaces = IReportSurfaces* (*)();

}  // namespace hifx
