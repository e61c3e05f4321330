// One thing a report prints: a text, a number or a date, a line, a box, a
// solid rectangle, a picture or a barcode, with its place, font and style.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "base/Value.h"
#include "reports/RptDevice.h"

namespace hifx {

// Style bits. Of the font bits, 1 turns bold, italic and underline off, else
// 4 gives italic only, else 2 bold only; without any of them the font stays
// as the element before left it.
enum RptStyle : int32_t {
  kStylePlain = 1,
  kStyleBold = 2,
  kStyleItalic = 4,
  kStyleLine = 8,
  kStyleBox = 16,
  kStyleSolid = 32,
  kStyleRule = 64,
  kStyleDoubleRule = 128,
  kStyleHidden = 256,
  kStyleBarcode = 512,
};

enum RptJustification : int16_t { kJustifyLeft = 0, kJustifyRight = 1, kJustifyCenter = 2 };

// A picture surface of a window; painted as a picture when the element gives
// it a size, else copied pixel for pixel.
struct RptPictureBox {
  RptPicture image;
};

// A text, number or date; or a picture; or a picture box. Pictures are held
// by reference.
using ElementValue =
    std::variant<Value, std::shared_ptr<const RptPicture>, std::shared_ptr<const RptPictureBox>>;

struct clsPrintElement {
  float X = 0;  // negative: the device's current X
  float Y = 0;  // negative: the Y of the element before
  int16_t Justification = kJustifyLeft;
  ElementValue Value;
  std::string FontName;  // empty: as it is
  int16_t FontSize = 0;  // 0: the engine's BaseFontSize
  int32_t Style = 0;
  float Width = 0;   // wrap width of a text; extent of the other kinds
  float Height = 0;  // extent; bar height of a barcode
  std::string Format;
  std::string NullText;  // kept, never printed
};

using RptElements = std::vector<clsPrintElement>;

clsPrintElement MakeElement(float X, float Y, ElementValue Value, int16_t Justification = kJustifyLeft,
                            int32_t Style = 0, std::string NullText = {}, int16_t FontSize = 0,
                            float Width = 0, std::string Format = {});
clsPrintElement MakeLine(float X, float Y, float Width, float Height);
clsPrintElement MakeBox(float X, float Y, float Width, float Height);
clsPrintElement MakeSolid(float X, float Y, float Width, float Height);
inline void MakeArray(RptElements& target, std::initializer_list<clsPrintElement> elements) {
  target.assign(elements);
}

}  // namespace hifx
