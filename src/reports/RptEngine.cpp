#include "reports/RptEngine.h"

#include <algorithm>

#include "base/CaseBlind.h"
#include "base/DateText.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"

namespace hifx {

clsPrintElement MakeElement(float X, float Y, ElementValue Value, int16_t Justification, int32_t Style,
                            std::string NullText, int16_t FontSize, float Width, std::string Format) {
  clsPrintElement e;
  e.X = X;
  e.Y = Y;
  e.Value = std::move(Value);
  e.Justification = Justification;
  e.Style = Style;
  e.NullText = std::move(NullText);
  e.FontSize = FontSize;
  e.Width = Width;
  e.Format = std::move(Format);
  return e;
}

namespace {

clsPrintElement MakeShape(int32_t style, float X, float Y, float Width, float Height) {
  clsPrintElement e = MakeElement(X, Y, Value(), kJustifyLeft, style);
  e.Height = Height;
  e.Width = Width;
  return e;
}

// Font bits of a style: 1 plain, else 4 italic only, else 2 bold only; none
// of them leaves the font alone, so 6 is italic.
void ApplyFontBits(IRptDevice& device, int32_t style) {
  if ((style & kStylePlain) != 0) {
    device.SetFontBold(false);
    device.SetFontItalic(false);
    device.SetFontUnderline(false);
  } else if ((style & kStyleItalic) != 0) {
    device.SetFontBold(false);
    device.SetFontItalic(true);
    device.SetFontUnderline(false);
  } else if ((style & kStyleBold) != 0) {
    device.SetFontBold(true);
    device.SetFontItalic(false);
    device.SetFontUnderline(false);
  }
}

bool IsTextValue(const Value& value) { return !value.IsEmpty() && !value.IsNull(); }

// A number through a pattern of zeros: "000.00" pads to three digits with
// two decimals.
std::string FormatNumber(double number, std::string_view format) {
  const size_t point = format.find('.');
  const std::string_view whole = format.substr(0, point);
  const std::string_view fraction = point == std::string_view::npos ? "" : format.substr(point + 1);
  const auto digits = std::count(whole.begin(), whole.end(), '0');
  const auto decimals = std::count_if(fraction.begin(), fraction.end(), [](char c) { return c == '0' || c == '#'; });
  return FormatZeros(number, static_cast<int>(digits), static_cast<int>(decimals));
}

}  // namespace

clsPrintElement MakeLine(float X, float Y, float Width, float Height) {
  return MakeShape(kStyleLine, X, Y, Width, Height);
}
clsPrintElement MakeBox(float X, float Y, float Width, float Height) {
  return MakeShape(kStyleBox, X, Y, Width, Height);
}
clsPrintElement MakeSolid(float X, float Y, float Width, float Height) {
  return MakeShape(kStyleSolid, X, Y, Width, Height);
}

RptEngine::RptEngine(IShell& shell, const IClock& clock, IRptPrinters& printers)
    : shell_(shell), clock_(clock), printers_(printers) {}

void RptEngine::SetPageLength(float length) {
  pageLength_ = length;
  DefaultOverflowThreshhold();
}

void RptEngine::SetMarginBottom(float margin) {
  marginBottom_ = margin;
  DefaultOverflowThreshhold();
}

float RptEngine::LineHeight() const {
  return device_ == nullptr ? 0.0f : static_cast<float>(device_->TextHeight("X"));
}

void RptEngine::PageSetup(float pageWidth, float pageLength, float marginLeft, float marginRight,
                          float marginTop, float marginBottom, float overflowThreshold) {
  ScaleMode = kScaleInches;
  PageWidth = pageWidth;
  pageLength_ = pageLength;
  MarginLeft = marginLeft;
  MarginRight = marginRight;
  MarginTop = marginTop;
  marginBottom_ = marginBottom;
  OverFlowThreshold = overflowThreshold;
}

bool RptEngine::SetPrinter(const std::string& name) {
  if (name.empty()) return false;
  const std::string wanted = UpperCase(name);
  for (const std::string& device : printers_.DeviceNames()) {
    if (UpperCase(device).find(wanted) != std::string::npos) {
      printers_.Select(device);
      return true;
    }
  }
  return false;
}

bool RptEngine::PrintReport(int16_t FromPage, int16_t ToPage, int32_t Tray, int16_t* TotalPages) {
  std::optional<std::string> previousPrinter;
  if (const auto* name = std::get_if<std::string>(&OutputDevice)) {
    previousPrinter = printers_.DeviceName();
    SetPrinter(*name);
  }
  if (auto* const* box = std::get_if<IRptDevice*>(&OutputDevice); box != nullptr && *box != nullptr) {
    device_ = *box;
    outputMode_ = 1;
  } else {
    device_ = &printers_.Printer();
    outputMode_ = 2;
    // A printer without that bin prints from its own.
    if (Tray < kPrinterOwnBin) printers_.SetPaperBin(Tray);
  }
  device_->SetScaleMode(ScaleMode);
  const bool cancelled = Begin(FromPage, ToPage, TotalPages);
  ClearStatus();
  if (previousPrinter) printers_.Select(*previousPrinter);
  return cancelled;
}

namespace {

// The page an action of the preview leads to; nullopt leaves the preview.
std::optional<int16_t> PreviewPage(const std::string& action, int16_t page, int16_t total) {
  if (action == "FIRST") return int16_t{1};
  if (action == "PREV") return static_cast<int16_t>(std::max(1, page - 1));
  if (action == "NEXT") return static_cast<int16_t>(std::min<int>(total, page + 1));
  if (action == "LAST") return total;
  if (action == "CLOSE" || action == "PRINT") return std::nullopt;
  return page;
}

}  // namespace

bool RptEngine::PreviewReport(IRptPreview& preview, int32_t Tray) {
  // The picture takes the page's orientation and its inches.
  preview.SizePicture(PageWidth, pageLength_);
  IRptDevice& picture = preview.Picture();
  int16_t page = 1;
  for (;;) {
    device_ = &picture;
    outputMode_ = 1;
    device_->SetScaleMode(ScaleMode);
    preview.ClearPicture();
    int16_t total = 0;
    if (Begin(page, page, &total)) {
      device_ = nullptr;
      return true;
    }
    const std::string action =
        preview.Display(Title + " Page " + std::to_string(page) + " of " + std::to_string(total));
    const std::optional<int16_t> next = PreviewPage(action, page, total);
    if (!next) {
      device_ = nullptr;
      return action == "PRINT" && PrintReport(0, 0, Tray);
    }
    page = *next;
  }
}

bool RptEngine::Begin(int16_t FromPage, int16_t ToPage, int16_t* TotalPages) {
  if (device_ == nullptr) {
    device_ = &printers_.Printer();
    outputMode_ = 2;
  }
  fromPage_ = FromPage;
  toPage_ = ToPage;
  cancel_ = false;
  rowsProcessed_ = 0;
  shell_.ReportStatus(Title + kLineBreak + "Retrieving data");
  ThrowEvent(0, 0);
  currentYPos_ = MarginTop;
  pageNo_ = 1;
  painting_ = Painting();
  ThrowEvent(2, 0);
  ThrowEvent(1, 0);
  // A data source by SQL was never wired up: such a report has no detail.
  if (SQLSource.empty()) {
    do {
      TestOverflow();
      ThrowEvent(4, 0);
    } while (!(sectionHeight_ < 0));
  }
  TestOverflow();
  ThrowEvent(7, 0);
  TestOverflow();
  ThrowEvent(6, 0);
  ThrowEvent(8, 0);
  if (TotalPages != nullptr && *TotalPages == 0) *TotalPages = pageNo_;
  ClearStatus();
  if (outputMode_ == 2) device_->EndDoc();
  return cancel_;
}

void RptEngine::Raise(int16_t code, int16_t level) {
  if (printEvent_) printEvent_(code, level, sectionHeight_);
}

void RptEngine::ThrowEvent(int16_t code, int16_t level) {
  sectionHeight_ = 0;
  Raise(code, level);
  if (sectionHeight_ > 0) AddSectionHeight();
}

void RptEngine::AddSectionHeight(std::optional<float> height) {
  currentYPos_ += sectionHeight_;
  if (!height) {
    sectionHeight_ = 0;
    return;
  }
  TestOverflow();
}

bool RptEngine::TestOverflow() {
  if (currentYPos_ < OverFlowThreshold) return false;
  NewPage(0);
  return true;
}

void RptEngine::NewPage(int16_t level) {
  Raise(6, 0);
  // A cancelled run starts no more sheets: the pages after it would be blank.
  if (outputMode_ == 2 && !cancel_) device_->NewPage();
  ++pageNo_;
  currentYPos_ = MarginTop;
  sectionHeight_ = 0;
  painting_ = Painting();
  UpdateStatus();
  Raise(2, level);
  AddSectionHeight();
}

void RptEngine::UpdateStatus() {
  const std::string text = Title + kLineBreak + "Formatting page " + std::to_string(pageNo_) + kLineBreak +
                           "Rows processed: " + std::to_string(rowsProcessed_);
  if (shell_.ReportStatus(text)) cancel_ = true;
}

void RptEngine::ClearStatus() { shell_.ReportStatus({}); }

bool RptEngine::Painting() const {
  if (fromPage_ > pageNo_) return false;
  return !(toPage_ >= 1 && toPage_ < pageNo_);
}

void RptEngine::ApplyBaseFont() {
  if (!BaseFontName.empty()) device_->SetFontName(BaseFontName);
  ApplyFontBits(*device_, BaseFontStyle);
  if (BaseFontSize != 0) device_->SetFontSize(BaseFontSize);
}

float RptEngine::PrintElements(RptElements& elements, bool Absolute) {
  if (cancel_ || device_ == nullptr) return 0;
  IRptDevice& device = *device_;
  ApplyBaseFont();
  painting_ = Painting();
  float largest = 0;
  std::optional<double> previousY;
  for (const clsPrintElement& element : elements) {
    if ((element.Style & kStyleHidden) != 0) continue;
    if (Absolute) {
      device.SetCurrentY(element.Y);
      device.SetCurrentX(element.X);
    } else {
      if (element.Y >= 0) {
        device.SetCurrentY(element.Y + currentYPos_);
      } else if (previousY) {
        device.SetCurrentY(*previousY);
      }
      if (element.X >= 0) device.SetCurrentX(element.X + MarginLeft);
    }
    previousY = device.CurrentY();
    if (!element.FontName.empty()) device.SetFontName(element.FontName);
    if (element.FontSize != 0) {
      device.SetFontSize(element.FontSize);
    } else if (BaseFontSize != 0) {
      device.SetFontSize(BaseFontSize);
    }
    ApplyFontBits(device, element.Style);
    Draw(element, Absolute);
    painting_ = Painting();
    if (!Absolute) largest = std::max(largest, static_cast<float>(device.CurrentY() - currentYPos_));
  }
  return largest;
}

void RptEngine::Draw(const clsPrintElement& e, bool Absolute) {
  IRptDevice& device = *device_;
  const double x = device.CurrentX();
  const double y = device.CurrentY();
  const double x2 = x + e.Width;
  const double y2 = y + e.Height;
  // Pages that aren't painted are still measured: the point moves as the
  // drawing would have moved it.
  const auto skip = [&] {
    device.SetCurrentX(x2);
    device.SetCurrentY(y2);
  };
  if ((e.Style & kStyleLine) != 0) {
    if (!painting_) return skip();
    device.Line(x, y, x2, y2);
  } else if ((e.Style & kStyleBox) != 0) {
    if (!painting_) return skip();
    device.Line(x, y, x2, y);
    device.Line(x, y, x, y2);
    device.Line(x2, y, x2, y2);
    device.Line(x, y2, x2, y2);
  } else if ((e.Style & kStyleSolid) != 0) {
    if (!painting_) return skip();
    device.SetDrawMode(kDrawNotMergePen);
    device.FillRect(x, y, x2, y2);
    device.SetDrawMode(kDrawCopyPen);
    device.SetDrawMode(kDrawNotXorPen);
  } else if ((e.Style & kStyleBarcode) != 0) {
    const auto* value = std::get_if<Value>(&e.Value);
    if (!painting_) return device.SetCurrentY(y2);
    if (!barcode_) barcode_.emplace();
    barcode_->Draw(kCode128, device, static_cast<float>(x), static_cast<float>(y), e.Height, 14,
                   value == nullptr ? std::string() : TextOf(*value));
  } else if (const auto* picture = std::get_if<std::shared_ptr<const RptPicture>>(&e.Value)) {
    if (painting_ && *picture) device.PaintPicture(**picture, x, y, e.Width, e.Height);
  } else if (const auto* box = std::get_if<std::shared_ptr<const RptPictureBox>>(&e.Value)) {
    if (!painting_ || !*box) return;
    if (e.Width > 0 && e.Height > 0) {
      device.PaintPicture((*box)->image, x, y, e.Width, e.Height);
      return;
    }
    const int16_t mode = device.ScaleMode();
    device.SetScaleMode(kScalePixels);
    const int32_t px = ToInt32(device.CurrentX());
    const int32_t py = ToInt32(device.CurrentY());
    device.SetScaleMode(mode);
    Blit((*box)->image, (*box)->image.width, (*box)->image.height, device, px, py);
  } else if (const auto& value = std::get<Value>(e.Value); IsTextValue(value)) {
    DrawText(e, ElementText(value, e.Format), Absolute);
  }
}

std::string RptEngine::ElementText(const Value& value, const std::string& format) const {
  if (value.Kind() == ValueKind::Date) {
    const double serial = value.ToDouble();
    return format.empty() ? ShortDate(FromDateValue(serial)) : FormatDateValue(serial, format);
  }
  if (format.empty() || value.IsText()) return TextOf(value);
  return FormatNumber(value.ToDouble(), format);
}

void RptEngine::DrawText(const clsPrintElement& e, std::string text, bool Absolute) {
  IRptDevice& device = *device_;
  if (text.find('%') != std::string::npos) {
    ReplaceAll(text, "%p", std::to_string(pageNo_));
    ReplaceAll(text, "%c", Company);
    ReplaceAll(text, "%t", Title);
    ReplaceAll(text, "%s", SubTitle);
    if (text.find("%d") != std::string::npos) ReplaceAll(text, "%d", ShortDate(clock_.Now()));
  }
  if (e.Width != 0) text = WraptoWidth(text, e.Width);

  const bool broken = text.find(kRptLineBreak) != std::string::npos;
  const double anchor = device.CurrentX();
  size_t at = 0;
  while (at < text.size()) {
    if (!Absolute && TestOverflow()) painting_ = Painting();
    // A segment runs to the next line break or, with none left, to the next
    // markup tag.
    size_t end = text.find(kRptLineBreak, at);
    size_t next = end + kRptLineBreak.size();
    if (end == std::string::npos) {
      end = text.find('<', at + 1);
      if (end == std::string::npos) end = text.size();
      next = end;
    }
    std::string_view segment(text.data() + at, end - at);
    at = next;

    bool tagged = false;
    if (segment.size() >= 2 && segment[0] == '<') {
      tagged = true;
      switch (segment[1]) {
        case 'i':
        case 'I': device.SetFontItalic(true); break;
        case 'b':
        case 'B': device.SetFontBold(true); break;
        case 'u':
        case 'U': device.SetFontUnderline(true); break;
        case '/':
          device.SetFontBold(false);
          device.SetFontItalic(false);
          device.SetFontUnderline(false);
          break;
        default: tagged = false; break;
      }
      if (tagged) segment.remove_prefix(std::min<size_t>(segment[1] == '/' ? 4 : 3, segment.size()));
    }

    const double width = device.TextWidth(segment);
    const double left = e.Justification == kJustifyRight    ? anchor - width
                        : e.Justification == kJustifyCenter ? anchor - width / 2
                                                            : anchor;
    if (painting_ && (e.Style & (kStyleRule | kStyleDoubleRule)) != 0) {
      const double px = device.CurrentX();
      const double py = device.CurrentY();
      if ((e.Style & kStyleDoubleRule) != 0) device.Line(left, py - 0.05, left + width, py - 0.05);
      device.Line(left, py, left + width, py);
      device.SetCurrentX(px);
      device.SetCurrentY(py);
    }
    // A segment behind a tag goes on where the text before it ended.
    if (!tagged) device.SetCurrentX(left);
    if (painting_) {
      device.Print(segment);
    } else {
      device.SetCurrentX(device.CurrentX() + width);
    }
    if (broken) device.SetCurrentY(device.CurrentY() + device.TextHeight(segment));
  }
  if (!broken) device.SetCurrentY(device.CurrentY() + device.TextHeight(text));
}

std::string RptEngine::WraptoWidth(std::string_view source, float width) const {
  const IRptDevice& device = *device_;
  std::string result;
  std::string text(Trim(source));
  const auto fits = [&](size_t n) { return device.TextWidth(std::string_view(text).substr(0, n)) <= width; };
  while (!text.empty()) {
    if (text.starts_with(kRptLineBreak)) text.erase(0, kRptLineBreak.size());
    size_t n = text.size();
    // Halving first spares measuring every length of a long text.
    while (n >= 11 && device.TextWidth(std::string_view(text).substr(0, n)) > 2.0 * width) {
      n = static_cast<size_t>(RoundHalfEven(static_cast<double>(n) / 2.0));
    }
    while (n > 0 && !fits(n)) --n;
    if (n < text.size() && text.substr(0, n).find_first_of(" ,") != std::string::npos) {
      while (n > 0 && static_cast<unsigned char>(text[n - 1]) > ' ' && text[n - 1] != ',') --n;
    }
    const size_t lineBreak = text.find(kRptLineBreak);
    if (lineBreak != std::string::npos && lineBreak < n) n = lineBreak;
    if (!result.empty()) result += kRptLineBreak;
    // Nothing fits, or two line breaks in a row: the rest is dropped.
    if (n == 0) break;
    result += text.substr(0, n);
    text = std::string(Trim(std::string_view(text).substr(n)));
  }
  return result;
}

void RptEngine::Blit(const RptPicture& source, int32_t width, int32_t height, IRptDevice& destination,
                     int32_t x, int32_t y) {
  destination.Blit(source, width, height, x, y);
}

bool RptEngine::CreateGroup(int16_t level, float height, const std::vector<std::string>& fields) {
  if (level == 0) level = static_cast<int16_t>(groups_.size() + 1);
  if (level < 0 || level > 9) {
    shell_.MsgBox("Attempted to create group level: " + std::to_string(level) + ".  Only levels 1-9 allowed.");
    return false;
  }
  if (groups_.size() < static_cast<size_t>(level)) groups_.resize(static_cast<size_t>(level));
  RptGroup& group = groups_[static_cast<size_t>(level) - 1];
  group.level = level;
  group.fields.clear();
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) group.fields += "|";
    group.fields += UpperCase(fields[i]);
  }
  group.lastValue.clear();
  group.height = height;
  return true;
}

}  // namespace hifx
