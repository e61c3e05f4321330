// A surface that paints nothing and keeps every drawing call, with simple
// fixed metrics: 100 pixels an inch, every character FontSize pixels wide and
// every line twice FontSize pixels high (10 points: 0.1 by 0.2 inches). It
// lays a report out exactly as any surface does, so it serves wherever the
// positions themselves are what matters, and where no drawing library is
// built in.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "reports/RptDevice.h"

namespace hifx {

struct RptCall {
  enum Kind { Text, Line, Fill, Picture, NewPage, EndDoc } kind;
  // Pixels: the text's top left, the line's ends, the fill's top left and
  // extent, the picture's top left and extent.
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  std::string text;
  RptFont font;
  int16_t drawMode = kDrawCopyPen;
};

class RecordingDevice final : public RptSurface {
 public:
  RecordingDevice(double pageWidthInches = 8.5, double pageHeightInches = 11.0)
      : pageWidth_(pageWidthInches), pageHeight_(pageHeightInches) {}

  void NewPage() override { calls.push_back({RptCall::NewPage, 0, 0, 0, 0, {}, Font(), DrawMode()}); }
  void EndDoc() override { calls.push_back({RptCall::EndDoc, 0, 0, 0, 0, {}, Font(), DrawMode()}); }

  // The texts printed, in order.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const RptCall& call : calls) {
      if (call.kind == RptCall::Text) texts.push_back(call.text);
    }
    return texts;
  }

  void Resize(double pageWidthInches, double pageHeightInches) {
    pageWidth_ = pageWidthInches;
    pageHeight_ = pageHeightInches;
  }

  std::vector<RptCall> calls;

 protected:
  double DotsPerInch() const override { return 100.0; }
  double PageWidthPixels() const override { return pageWidth_ * 100.0; }
  double PageHeightPixels() const override { return pageHeight_ * 100.0; }
  double MeasureText(std::string_view line) const override {
    return static_cast<double>(line.size()) * FontSize();
  }
  double LineHeightPixels() const override { return 2.0 * FontSize(); }
  void PaintText(double x, double y, std::string_view line) override {
    calls.push_back({RptCall::Text, x, y, 0, 0, std::string(line), Font(), DrawMode()});
  }
  void PaintLine(double x1, double y1, double x2, double y2) override {
    calls.push_back({RptCall::Line, x1, y1, x2, y2, {}, Font(), DrawMode()});
  }
  void PaintFill(double x, double y, double width, double height) override {
    calls.push_back({RptCall::Fill, x, y, width, height, {}, Font(), DrawMode()});
  }
  void PaintImage(const RptPicture&, double x, double y, double width, double height) override {
    calls.push_back({RptCall::Picture, x, y, width, height, {}, Font(), DrawMode()});
  }

 private:
  double pageWidth_;
  double pageHeight_;
};

// Installed printers that record: each one a RecordingDevice, the first the
// system printer until another is selected.
class RecordingPrinters final : public IRptPrinters {
 public:
  explicit RecordingPrinters(std::vector<std::string> names = {"Recording Printer"}) : names_(std::move(names)) {
    for (const auto& name : names_) devices_.try_emplace(name);
    current_ = names_.front();
  }

  IRptDevice& Printer() override { return devices_.at(current_); }
  std::string DeviceName() override { return current_; }
  std::vector<std::string> DeviceNames() override { return names_; }
  void Select(const std::string& deviceName) override {
    if (devices_.count(deviceName) != 0) current_ = deviceName;
  }
  void SetOrientation(int16_t value) override { orientation = value; }
  bool SetPaperBin(int32_t bin) override {
    paperBin = bin;
    return true;
  }

  RecordingDevice& Device(const std::string& name) { return devices_.at(name); }
  RecordingDevice& Current() { return devices_.at(current_); }

  int16_t orientation = 0;
  int32_t paperBin = -1;

 private:
  std::vector<std::string> names_;
  std::map<std::string, RecordingDevice> devices_;
  std::string current_;
};

// A preview window that answers each page with the next of its actions
// ("CLOSE" when they run out), keeping the captions it was shown and the
// texts painted on each page.
class RecordingPreview final : public IRptPreview {
 public:
  explicit RecordingPreview(std::vector<std::string> actions) : actions_(std::move(actions)) {}

  IRptDevice& Picture() override { return picture; }
  void SizePicture(double widthInches, double lengthInches) override { picture.Resize(widthInches, lengthInches); }
  void ClearPicture() override {
    picture.calls.clear();
    picture.ResetDrawing();
  }
  std::string Display(const std::string& caption) override {
    captions.push_back(caption);
    pages.push_back(picture.Texts());
    return next_ < actions_.size() ? actions_[next_++] : "CLOSE";
  }

  RecordingDevice picture;
  std::vector<std::string> captions;
  std::vector<std::vector<std::string>> pages;

 private:
  std::vector<std::string> actions_;
  size_t next_ = 0;
};

}  // namespace hifx
