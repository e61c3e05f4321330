// Barcode patterns and their drawing in pixels. That real readers read the
// symbols is checked on rendered images in QtDeviceTest.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "reports/RecordingDevice.h"
#include "reports/clsDrawBarcode.h"

namespace hifx {
namespace {

TEST(Code128, Values) {
  struct Case {
    const char* text;
    std::vector<int32_t> values;
  };
  const Case cases[] = {
      // Two pairs are fewer than three: code set B throughout.
      {"AB12", {104, 102, 33, 34, 17, 18, 17, 106}},
      {"123456", {105, 102, 12, 34, 56, 42, 106}},
      // Into code set C for three pairs, back to B for the rest.
      {"AB123456C", {104, 102, 33, 34, 99, 12, 34, 56, 100, 35, 69, 106}},
      // An odd seventh digit goes in code set B.
      {"1234567", {105, 102, 12, 34, 56, 100, 23, 62, 106}},
      {"", {}},
  };
  for (const Case& c : cases) EXPECT_EQ(clsDrawBarcode::Array128(c.text), c.values) << c.text;
}

TEST(Code128, PatternsAreTheStandardWidths) {
  // Each symbol is eleven modules, the stop thirteen, and no two alike.
  std::set<std::string> seen;
  for (int32_t v = 0; v <= 106; ++v) {
    const std::string pattern = clsDrawBarcode::Char128({v});
    int modules = 0;
    for (const char c : pattern) modules += c - 'A' + 1;
    EXPECT_EQ(modules, v == 106 ? 13 : 11) << v;
    EXPECT_TRUE(seen.insert(pattern).second) << v;
  }
  EXPECT_EQ(clsDrawBarcode::Char128({104, 106}), "BAABADBCCAAAB");
}

TEST(UPC, CheckDigitAndHalves) {
  EXPECT_EQ(clsDrawBarcode::CheckUPC("03600029145"), "2");
  EXPECT_EQ(clsDrawBarcode::CheckUPC("12345678901"), "2");
  EXPECT_EQ(clsDrawBarcode::CheckUPC("00000000000"), "0");
  // Left digits rotated by one element; a 5 on the right is drawn as on the
  // left; "<" after the first digit and ">" before the last keep the guards
  // and those two digits full height.
  EXPECT_EQ(clsDrawBarcode::CharUPC("035000000455"),
            "1111" "022111<" "4111" "2311" "022111" "022111" "022111"     // guard, left half
            ">1111<" "3211" "3211" "3211" "1132" "2311" ">" "2311" "1111");  // centre, right half, guard
}

TEST(Interleaved2of5, PairsAndTheOddDigit) {
  // 1 gives the bars, 2 the spaces.
  EXPECT_EQ(clsDrawBarcode::Char2of5("12"), "NNNNWNNWNNNNWWWNNN");
  EXPECT_EQ(clsDrawBarcode::Char2of5("123"), clsDrawBarcode::Char2of5("12"));
  EXPECT_EQ(clsDrawBarcode::Char2of5("1A"), clsDrawBarcode::Char2of5("10"));
}

TEST(Code39, WideGapsAndUnknownCharacters) {
  EXPECT_EQ(clsDrawBarcode::Char39("*A*"), "NWNNWNWNN" "W" "WNNNNWNNW" "W" "NWNNWNWNN" "W");
  EXPECT_EQ(clsDrawBarcode::Char39("a"), "W");
}

// The fills drawn, in pixels: left, top, width, height.
std::vector<std::array<double, 4>> Bars(const RecordingDevice& device) {
  std::vector<std::array<double, 4>> bars;
  for (const auto& c : device.calls) {
    if (c.kind == RptCall::Fill) {
      bars.push_back({std::round(c.x1), std::round(c.y1), std::round(c.x2), std::round(c.y2)});
    }
  }
  return bars;
}

TEST(DrawElements, WidthsTurnsAndShortBars) {
  RecordingDevice device;  // 100 pixels an inch; "X" is 20 pixels high
  clsDrawBarcode barcode;
  // Bar N, space W (2 x 2.75 = 5.5, to 6), bar 0 (a turn, no ink), space N,
  // short bar N, space Q (keeps the last width), full bar N.
  const int32_t end = barcode.DrawElements("NW0N<NQ>N", device, 1.0f, 1.0f, 0.5f, 2);
  const std::vector<std::array<double, 4>> expected = {
      {100, 100, 2, 51}, {110, 100, 2, 31}, {114, 100, 2, 51}};
  EXPECT_EQ(Bars(device), expected);
  EXPECT_EQ(end, 116);
  EXPECT_EQ(device.ScaleMode(), kScaleInches);

  RecordingDevice thin;
  barcode.DrawElements("NNN", thin, 0, 0, 0.1f, 0);  // narrow 0 is one pixel
  EXPECT_EQ(Bars(thin), (std::vector<std::array<double, 4>>{{0, 0, 1, 11}, {2, 0, 1, 11}}));
}

TEST(DrawElements, UnknownSymbologyDrawsNothing) {
  RecordingDevice device;
  clsDrawBarcode().Draw(4, device, 0, 0, 1, 2, "123");
  EXPECT_TRUE(device.calls.empty());
}

}  // namespace
}  // namespace hifx
