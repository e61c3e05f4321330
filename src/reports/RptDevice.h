// The drawing surface of a report: a printer, a PDF file, an image or the
// preview's picture. The report engine and the barcodes draw through
// IRptDevice only; RptSurface keeps what every surface shares (the font, the
// current position, the scale units) so that a real surface only has to
// measure and paint in its own pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace hifx {

// The line break inside the texts of a report.
inline constexpr std::string_view kRptLineBreak = "\r\n";

// Scale units of a surface.
enum RptScaleMode : int16_t {
  kScaleTwips = 1,
  kScalePoints = 2,
  kScalePixels = 3,
  kScaleInches = 5,
  kScaleMillimeters = 6,
  kScaleCentimeters = 7,
};

// Draw modes of lines and filled rectangles.
enum RptDrawMode : int16_t {
  kDrawNotMergePen = 2,
  kDrawNotXorPen = 10,
  kDrawCopyPen = 13,
};

// A picture to paint: 32-bit pixels, 0xAARRGGBB, row by row from the top.
struct RptPicture {
  int32_t width = 0;
  int32_t height = 0;
  double dotsPerInch = 96.0;
  std::vector<uint32_t> pixels;
};

class IRptDevice {
 public:
  virtual ~IRptDevice() = default;

  virtual const std::string& FontName() const = 0;
  virtual void SetFontName(std::string name) = 0;
  virtual float FontSize() const = 0;
  virtual void SetFontSize(float points) = 0;
  virtual bool FontBold() const = 0;
  virtual void SetFontBold(bool on) = 0;
  virtual bool FontItalic() const = 0;
  virtual void SetFontItalic(bool on) = 0;
  virtual bool FontUnderline() const = 0;
  virtual void SetFontUnderline(bool on) = 0;

  // Every measure below is in the current scale units.
  virtual int16_t ScaleMode() const = 0;
  virtual void SetScaleMode(int16_t mode) = 0;
  // The drawable area: the page less what the surface can't reach.
  virtual double ScaleWidth() const = 0;
  virtual double ScaleHeight() const = 0;

  virtual double CurrentX() const = 0;
  virtual void SetCurrentX(double x) = 0;
  virtual double CurrentY() const = 0;
  virtual void SetCurrentY(double y) = 0;

  // Extent of a text in the current font; the height counts its lines.
  virtual double TextWidth(std::string_view text) const = 0;
  virtual double TextHeight(std::string_view text) const = 0;

  // Prints a one-line text with its top left at the current point; the
  // current X moves to the text's end, the current Y stays.
  virtual void Print(std::string_view text) = 0;
  // Both leave the current point at (x2, y2). A filled rectangle covers the
  // pixels of both corners.
  virtual void Line(double x1, double y1, double x2, double y2) = 0;
  virtual void FillRect(double x1, double y1, double x2, double y2) = 0;
  virtual void SetDrawMode(int16_t mode) = 0;
  // Stretched to width by height; at its natural size when either is not
  // positive.
  virtual void PaintPicture(const RptPicture& picture, double x, double y, double width,
                            double height) = 0;
  // The picture's pixels copied one for one, its top left at pixel (x, y).
  virtual void Blit(const RptPicture& picture, int32_t width, int32_t height, int32_t x,
                    int32_t y) = 0;

  // For a printer: the next sheet, and the end of the document.
  virtual void NewPage() = 0;
  virtual void EndDoc() = 0;
};

// The font a surface draws with.
struct RptFont {
  std::string name = "Arial";
  float size = 10.0f;
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool operator==(const RptFont&) const = default;
};

// What every surface shares. Positions are kept in the surface's pixels, so
// a change of scale units moves nothing.
class RptSurface : public IRptDevice {
 public:
  const std::string& FontName() const override { return font_.name; }
  void SetFontName(std::string name) override { font_.name = std::move(name); }
  float FontSize() const override { return font_.size; }
  void SetFontSize(float points) override { font_.size = points; }
  bool FontBold() const override { return font_.bold; }
  void SetFontBold(bool on) override { font_.bold = on; }
  bool FontItalic() const override { return font_.italic; }
  void SetFontItalic(bool on) override { font_.italic = on; }
  bool FontUnderline() const override { return font_.underline; }
  void SetFontUnderline(bool on) override { font_.underline = on; }

  int16_t ScaleMode() const override { return scaleMode_; }
  void SetScaleMode(int16_t mode) override;
  double ScaleWidth() const override { return PageWidthPixels() / PixelsPerUnit(); }
  double ScaleHeight() const override { return PageHeightPixels() / PixelsPerUnit(); }

  double CurrentX() const override { return x_ / PixelsPerUnit(); }
  void SetCurrentX(double x) override { x_ = x * PixelsPerUnit(); }
  double CurrentY() const override { return y_ / PixelsPerUnit(); }
  void SetCurrentY(double y) override { y_ = y * PixelsPerUnit(); }

  double TextWidth(std::string_view text) const override;
  double TextHeight(std::string_view text) const override;

  void Print(std::string_view text) override;
  void Line(double x1, double y1, double x2, double y2) override;
  void FillRect(double x1, double y1, double x2, double y2) override;
  void SetDrawMode(int16_t mode) override { drawMode_ = mode; }
  void PaintPicture(const RptPicture& picture, double x, double y, double width,
                    double height) override;
  void Blit(const RptPicture& picture, int32_t width, int32_t height, int32_t x, int32_t y) override;

  // Drawn on as a new surface again: the first font, pen and position.
  void ResetDrawing() {
    font_ = RptFont{};
    drawMode_ = kDrawCopyPen;
    x_ = 0;
    y_ = 0;
  }
  const RptFont& Font() const { return font_; }
  int16_t DrawMode() const { return drawMode_; }
  double PixelsPerUnit() const;

 protected:
  // The surface's own part, all in its pixels.
  virtual double DotsPerInch() const = 0;
  virtual double PageWidthPixels() const = 0;
  virtual double PageHeightPixels() const = 0;
  virtual double MeasureText(std::string_view line) const = 0;  // width of one line
  virtual double LineHeightPixels() const = 0;                  // of the current font
  virtual void PaintText(double x, double y, std::string_view line) = 0;
  virtual void PaintLine(double x1, double y1, double x2, double y2) = 0;
  // Covers [x, x + width) by [y, y + height).
  virtual void PaintFill(double x, double y, double width, double height) = 0;
  virtual void PaintImage(const RptPicture& picture, double x, double y, double width,
                          double height) = 0;

 private:
  RptFont font_;
  int16_t scaleMode_ = kScaleInches;
  int16_t drawMode_ = kDrawCopyPen;
  double x_ = 0;
  double y_ = 0;
};

// The preview window as the engine sees it: a picture for one page, and the
// person's answer to it.
class IRptPreview {
 public:
  virtual ~IRptPreview() = default;
  // The surface the page is drawn on.
  virtual IRptDevice& Picture() = 0;
  // Sizes the picture to a page of width by length inches, so that the
  // report's inches map onto it.
  virtual void SizePicture(double widthInches, double lengthInches) = 0;
  // White again and drawn on as a new surface (font, position), so that
  // every page shown is laid out as the printer lays it out.
  virtual void ClearPicture() = 0;
  // Shows the page under the caption and returns what the person chose:
  // "FIRST", "PREV", "NEXT", "LAST", "CLOSE" or "PRINT".
  virtual std::string Display(const std::string& caption) = 0;
};

// The printers of the system: the one in use, the installed ones by name.
class IRptPrinters {
 public:
  virtual ~IRptPrinters() = default;
  // The system printer as a drawing surface.
  virtual IRptDevice& Printer() = 0;
  virtual std::string DeviceName() = 0;
  // The installed printers' device names, first to last.
  virtual std::vector<std::string> DeviceNames() = 0;
  // Makes the installed printer of that device name the system printer.
  virtual void Select(const std::string& deviceName) = 0;
  // 1 portrait, 2 landscape; before anything is drawn.
  virtual void SetOrientation(int16_t orientation) = 0;
  // The paper bin; false when the printer refuses it.
  virtual bool SetPaperBin(int32_t bin) = 0;
};

}  // namespace hifx
