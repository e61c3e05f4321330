// Report surfaces on Qt's painter: a PDF file, a printer of the system
// (CUPS off Windows), or an image; the system's printers by name; and the
// per-user settings in Qt's settings store. Runs without a display: with no
// application of its own, a session starts Qt on the offscreen platform.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/UserSettings.h"
#include "reports/ReportSurfaces.h"

class QGuiApplication;
class QImage;
class QPaintDevice;
class QPagedPaintDevice;

namespace hifx {

// Qt for the length of a report run: a GUI application on the offscreen
// platform unless the program has one already or names another platform.
class QtReportSession {
 public:
  QtReportSession();
  ~QtReportSession();
  QtReportSession(const QtReportSession&) = delete;
  QtReportSession& operator=(const QtReportSession&) = delete;

 private:
  std::unique_ptr<QGuiApplication> app_;
};

// A surface on any paint device. Texts are the system's 8-bit code page
// (Windows-1252).
class QtSurface : public RptSurface {
 public:
  // `paged`, when given, is the same device as `device`, able to start new
  // sheets.
  // With `drawsPdf`, the device only measures and the pages are drawn into
  // a PDF file of the surface's own.
  QtSurface(QPaintDevice& device, QPagedPaintDevice* paged, bool drawsPdf = false);
  ~QtSurface() override;
  // The PDF drawn, its document ended; empty for a surface that draws none.
  std::string TakePdf();

  void NewPage() override;
  void EndDoc() override;

 protected:
  // Ends the painting so far; the next drawing starts it again.
  void PausePainting();
  double DotsPerInch() const override;
  double PageWidthPixels() const override;
  double PageHeightPixels() const override;
  double MeasureText(std::string_view line) const override;
  double LineHeightPixels() const override;
  void PaintText(double x, double y, std::string_view line) override;
  void PaintLine(double x1, double y1, double x2, double y2) override;
  void PaintFill(double x, double y, double width, double height) override;
  void PaintImage(const RptPicture& picture, double x, double y, double width, double height) override;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// A surface on an image of the given size in inches, white to start with:
// the preview's picture, or a report's pages as pictures.
class QtImageDevice final : public QtSurface {
 public:
  using PageSink = std::function<void(const QImage& page)>;

  QtImageDevice(double widthInches, double heightInches, double dotsPerInch);
  ~QtImageDevice() override;
  // A new white page of that size, at the same resolution.
  void Resize(double widthInches, double heightInches);
  // A fresh page: white, and drawn on as a new surface.
  void Clear();
  // The page as painted so far.
  const QImage& Image();
  // Writes the image as a PNG file in place of the file of that name;
  // raises, naming the file, when it can't.
  void SavePng(const std::filesystem::path& path);
  // With a sink, each finished page (at a new page and at the end of the
  // document) is handed to it and the next one starts white.
  void SetPageSink(PageSink sink) { sink_ = std::move(sink); }

  void NewPage() override;
  void EndDoc() override;

 private:
  explicit QtImageDevice(std::unique_ptr<QImage> image);
  std::unique_ptr<QImage> image_;
  PageSink sink_;
  bool done_ = false;
};

// A picture's bytes as a PNG file.
std::string PngBytes(const QImage& image);

// The PDF with this information: an update appended to it (the way a PDF
// editor saves a change) whose Info dictionary carries the four, and "hifx"
// as Creator and Producer. A PDF whose last trailer can't be read comes back
// as it was.
std::string WithPdfInfo(std::string pdf, const PdfInfo& info);

// The system printer and the installed printers. The system printer is a
// PDF file, or the platform's default printer.
class QtPrinters final : public IReportPrinters {
 public:
  static std::unique_ptr<QtPrinters> ToPdf(const std::filesystem::path& file);
  static std::unique_ptr<QtPrinters> ToDefaultPrinter();
  // Each page a PNG picture in the folder, named STEM-00001.png and on, at
  // the resolution given.
  static std::unique_ptr<QtPrinters> ToPictures(const std::filesystem::path& folder, const std::string& stem,
                                                double dotsPerInch);
  ~QtPrinters() override;

  IRptDevice& Printer() override;
  std::string DeviceName() override { return current_; }
  std::vector<std::string> DeviceNames() override;
  void Select(const std::string& deviceName) override;
  void SetOrientation(int16_t orientation) override;
  bool SetPaperBin(int32_t bin) override;
  // Whether anything was printed: a preview closed without printing prints
  // nothing.
  bool Printed() const;
  // Where the PDF goes, when the file is chosen once the report is done.
  void SetPdfFile(const std::filesystem::path& file) { pdfFile_ = file; }
  void SetPdfInfo(PdfInfo info) override { pdfInfo_ = std::move(info); }
  void Finish() override;

 private:
  struct Target;
  QtPrinters();
  Target& Current();

  std::map<std::string, std::unique_ptr<Target>> targets_;
  std::string current_;
  std::filesystem::path pdfFile_;  // where the PDF goes, when it is one
  std::optional<PdfInfo> pdfInfo_;
  int16_t orientation_ = 1;
};

// Per-user settings in Qt's settings store: an INI file under the user's
// configuration folder ($XDG_CONFIG_HOME/hifexchange/APPNAME.ini off Windows).
class QtUserSettings final : public IUserSettings {
 public:
  std::string GetSetting(std::string_view appName, std::string_view section, std::string_view key,
                         std::string_view defaultValue) override;
  void SaveSetting(std::string_view appName, std::string_view section, std::string_view key,
                   std::string_view value) override;
};

}  // namespace hifx
