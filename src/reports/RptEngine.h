// A small banded page-layout engine. Its client builds arrays of print
// elements and prints them from the engine's print event; the engine keeps
// the vertical position, breaks pages, numbers them and owns the device.
//
// Events (code, level, section height by reference): 0 report open, 1 report
// header, 2 page header, 4 detail (a negative height ends the data),
// 6 page footer, 7 report footer, 8 report close. A height left above 0 is
// added to the position when the handler returns.
//
// Every page is laid out on every run; only the painting is limited to the
// pages asked for, so a preview of page n runs the whole report again.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Clock.h"
#include "base/Shell.h"
#include "reports/RptDevice.h"
#include "reports/clsDrawBarcode.h"
#include "reports/clsPrintElement.h"

namespace hifx {

// OutputDevice: the system printer, a picture box, or the name of a printer
// to print on.
struct RptSystemPrinter {};
using RptOutputDevice = std::variant<RptSystemPrinter, IRptDevice*, std::string>;

struct RptGroup {
  int16_t level = 0;
  std::string fields;  // upper-cased, joined by "|"
  std::string lastValue;
  float height = 0;
};

class RptEngine {
 public:
  // A tray number that leaves the printer on its own paper bin.
  static constexpr int32_t kPrinterOwnBin = 65535;
  using PrintEvent = std::function<void(int16_t code, int16_t level, float& height)>;

  RptEngine(IShell& shell, const IClock& clock, IRptPrinters& printers);

  void SetPrintEvent(PrintEvent handler) { printEvent_ = std::move(handler); }

  int16_t ScaleMode = kScaleInches;
  float PageWidth = 8.5f;
  float MarginTop = 0.5f;
  float MarginLeft = 0.5f;
  float MarginRight = 0.5f;
  float OverFlowThreshold = 10.5f;
  std::string Company = "{Replace with Company Name}";
  std::string Title = "{Replace with Report Title}";
  std::string ReportName = "Replace w/Report Name}";
  std::string SubTitle = "{Replace with Report Subtitle}";
  std::string BaseFontName = "Arial";
  int16_t BaseFontSize = 10;
  int32_t BaseFontStyle = kStylePlain;
  std::string DBName;
  std::string SQLSource;
  int16_t ErrorCode = 0;
  RptOutputDevice OutputDevice;

  // Setting either recomputes the overflow threshold.
  float PageLength() const { return pageLength_; }
  void SetPageLength(float length);
  float MarginBottom() const { return marginBottom_; }
  void SetMarginBottom(float margin);
  void DefaultOverflowThreshhold() { OverFlowThreshold = pageLength_ - marginBottom_; }

  float CurrentYPos() const { return currentYPos_; }
  int16_t PageNo() const { return pageNo_; }
  // The device's text height of "X" in its current font.
  float LineHeight() const;
  float PrintWidth() const { return PageWidth - MarginLeft - MarginRight; }

  // Stores the seven numbers as they are, in inches; the threshold is not
  // recomputed.
  void PageSetup(float pageWidth, float pageLength, float marginLeft, float marginRight,
                 float marginTop, float marginBottom, float overflowThreshold);

  // Prints pages FromPage to ToPage (0 to 0: all) on the OutputDevice; the
  // result is true when the run was cancelled. TotalPages, when given and 0,
  // receives the number of pages.
  bool PrintReport(int16_t FromPage, int16_t ToPage, int32_t Tray, int16_t* TotalPages = nullptr);
  // Shows the report a page at a time in the preview window, laying the
  // whole report out again for every page shown; "PRINT" prints every page
  // on the OutputDevice with the tray given. True when cancelled.
  bool PreviewReport(IRptPreview& preview, int32_t Tray = kPrinterOwnBin);
  // Runs the report on the device in use; true when cancelled.
  bool Begin(int16_t FromPage, int16_t ToPage, int16_t* TotalPages = nullptr);

  // For the print event. Returns the height used (0 for Absolute).
  float PrintElements(RptElements& elements, bool Absolute);
  // Without a height: adds the section height to the position and clears
  // it. With one (its value is not used): adds it, keeps it, and tests for
  // overflow.
  void AddSectionHeight(std::optional<float> height = std::nullopt);
  void NewPage(int16_t level);
  bool TestOverflow();
  std::string WraptoWidth(std::string_view text, float width) const;
  static void Blit(const RptPicture& source, int32_t width, int32_t height, IRptDevice& destination,
                   int32_t x, int32_t y);

  bool CreateGroup(int16_t level, float height, const std::vector<std::string>& fields);
  const std::vector<RptGroup>& Groups() const { return groups_; }
  // Makes the first installed printer whose name holds `name` (case aside)
  // the system printer.
  bool SetPrinter(const std::string& name);

 private:
  void ThrowEvent(int16_t code, int16_t level);
  void Raise(int16_t code, int16_t level);
  void UpdateStatus();
  void ClearStatus();
  bool Painting() const;
  void ApplyBaseFont();
  void Draw(const clsPrintElement& element, bool Absolute);
  void DrawText(const clsPrintElement& element, std::string text, bool Absolute);
  std::string ElementText(const Value& value, const std::string& format) const;

  IShell& shell_;
  const IClock& clock_;
  IRptPrinters& printers_;
  PrintEvent printEvent_;
  float pageLength_ = 11.0f;
  float marginBottom_ = 0.5f;
  float currentYPos_ = 0;
  int16_t pageNo_ = 0;
  int16_t fromPage_ = 0;
  int16_t toPage_ = 0;
  float sectionHeight_ = 0;
  int16_t outputMode_ = 0;  // 1 picture box, 2 printer
  int32_t rowsProcessed_ = 0;
  bool cancel_ = false;
  bool painting_ = true;
  IRptDevice* device_ = nullptr;
  std::optional<clsDrawBarcode> barcode_;
  std::vector<RptGroup> groups_;
};

}  // namespace hifx
