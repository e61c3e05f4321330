// Linear barcodes drawn as filled bars on a report surface. A symbol is first
// turned into a pattern, one letter an element, bars and spaces taking turns
// from a bar:
//   N narrow, W wide (2.75 narrow, to a whole pixel), 0 no width but a turn,
//   A/1 B/2 C/3 D/4 one to four narrow,
//   < from here bars are short, leaving a text line under them,
//   > from here bars are full height (neither is an element).
// There are no quiet zones and no human-readable digits: the caller leaves
// the room and writes the text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reports/RptDevice.h"

namespace hifx {

enum BarcodeSymbology : int16_t {
  kCode39 = 0,
  kCode128 = 1,
  kInterleaved2of5 = 2,
  kUPCA = 3,
};

class clsDrawBarcode {
 public:
  // Other symbologies draw nothing. X, Y and Height in the device's units,
  // Narrow in its pixels (0 counts as 1).
  void Draw(int16_t Symbology, IRptDevice& Device, float X, float Y, float Height, int32_t Narrow,
            std::string_view Text);
  // Draws the pattern; returns the X after it, in pixels.
  int32_t DrawElements(std::string_view Pattern, IRptDevice& Device, float X, float Y, float Height,
                       int32_t Narrow);

  static std::string Char39(std::string_view text);
  // The symbol values: start, FNC1, data with its code set switches, check
  // value, stop.
  static std::vector<int32_t> Array128(std::string_view text);
  static std::string Char128(const std::vector<int32_t>& values);
  static std::string CheckUPC(std::string_view text);
  static std::string CharUPC(std::string_view text);
  static std::string Char2of5(std::string_view text);
};

}  // namespace hifx
