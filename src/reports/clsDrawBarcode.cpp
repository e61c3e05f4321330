#include "reports/clsDrawBarcode.h"

#include <array>

#include "base/Numbers.h"

namespace hifx {
namespace {

constexpr std::string_view kCode39Chars = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%*";
// Bar, space, bar, ... of each character above; 1 is a wide element.
constexpr std::array<std::string_view, 44> kCode39Bits = {
    "000110100", "100100001", "001100001", "101100000", "000110001", "100110000", "001110000",
    "000100101", "100100100", "001100100", "100001001", "001001001", "101001000", "000011001",
    "100011000", "001011000", "000001101", "100001100", "001001100", "000011100", "100000011",
    "001000011", "101000010", "000010011", "100010010", "001010010", "000000111", "100000110",
    "001000110", "000010110", "110000001", "011000001", "111000000", "010010001", "110010000",
    "011010000", "010000101", "110000100", "011000100", "010101000", "010100010", "010001010",
    "000101010", "010010100"};

// Widths of the Code 128 symbols 0 to 105 and the stop (106), in modules.
constexpr std::array<std::string_view, 107> kCode128Widths = {
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312", "132212",
    "221213", "221312", "231212", "112232", "122132", "122231", "113222", "123122", "123221",
    "223211", "221132", "221231", "213212", "223112", "312131", "311222", "321122", "321221",
    "312212", "322112", "322211", "212123", "212321", "232121", "111323", "131123", "131321",
    "112313", "132113", "132311", "211313", "231113", "231311", "112133", "112331", "132131",
    "113123", "113321", "133121", "313121", "211331", "231131", "213113", "213311", "213131",
    "311123", "311321", "331121", "312113", "312311", "332111", "314111", "221411", "431111",
    "111224", "111422", "121124", "121421", "141122", "141221", "112214", "112412", "122114",
    "122411", "142112", "142211", "241211", "221114", "413111", "241112", "134111", "111242",
    "121142", "121241", "114212", "124112", "124211", "411212", "421112", "421211", "212141",
    "214121", "412121", "111143", "111341", "131141", "114113", "114311", "411113", "411311",
    "113141", "114131", "311141", "411131", "211412", "211214", "211232", "2331112"};

constexpr int32_t kCodeC = 99;
constexpr int32_t kCodeB = 100;
constexpr int32_t kFNC1 = 102;
constexpr int32_t kStartB = 104;
constexpr int32_t kStartC = 105;
constexpr int32_t kStop = 106;

// The left digits are rotated by one element: each counts on the one-wide
// space that ends the guard or the digit before it.
constexpr std::array<std::string_view, 10> kUPCLeft = {"022111", "012211", "011221", "4111", "1321",
                                                       "2311",   "1141",   "3121",   "2131", "021121"};
// Digit 5 is "2311", as on the left: the symbols printed so far have it so.
constexpr std::array<std::string_view, 10> kUPCRight = {"3211", "2221", "2122", "1411", "1132",
                                                        "2311", "1114", "1312", "1213", "3112"};

constexpr std::array<std::string_view, 10> k2of5 = {"NNWWN", "WNNNW", "NWNNW", "WWNNN", "NNWNW",
                                                    "WNWNN", "NWWNN", "NNNWW", "WNNWN", "NWNWN"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
int DigitOf(char c) { return IsDigit(c) ? c - '0' : 0; }

}  // namespace

void clsDrawBarcode::Draw(int16_t Symbology, IRptDevice& Device, float X, float Y, float Height,
                          int32_t Narrow, std::string_view Text) {
  std::string text(Text);
  switch (Symbology) {
    case kCode39: DrawElements(Char39("*" + text + "*"), Device, X, Y, Height, Narrow); break;
    case kCode128:
      if (text.size() == 19) text += CheckUPC(text);
      DrawElements(Char128(Array128(text)), Device, X, Y, Height, Narrow);
      break;
    case kInterleaved2of5: DrawElements(Char2of5(text), Device, X, Y, Height, Narrow); break;
    case kUPCA: DrawElements(CharUPC(text + CheckUPC(text)), Device, X, Y, Height, Narrow); break;
    default: break;
  }
}

int32_t clsDrawBarcode::DrawElements(std::string_view Pattern, IRptDevice& Device, float X, float Y,
                                     float Height, int32_t Narrow) {
  const double unitsWide = Device.ScaleWidth();
  const int16_t mode = Device.ScaleMode();
  Device.SetScaleMode(kScalePixels);
  const double perUnit = unitsWide > 0 ? Device.ScaleWidth() / unitsWide : 1.0;
  const double fullHeight = Height * perUnit;
  const double shortHeight = fullHeight - Device.TextHeight("X");
  double x = X * perUnit;
  const double y = Y * perUnit;
  const int32_t narrow = Narrow == 0 ? 1 : Narrow;
  const int32_t wide = ToInt32(narrow * 2.75);

  double barHeight = fullHeight;
  bool bar = true;
  int32_t width = 0;
  for (const char letter : Pattern) {
    switch (letter) {
      case '<': barHeight = shortHeight; continue;
      case '>': barHeight = fullHeight; continue;
      case 'N':
      case 'A':
      case '1': width = narrow; break;
      case 'W': width = wide; break;
      case '0': width = 0; break;
      case 'B':
      case '2': width = 2 * narrow; break;
      case 'C':
      case '3': width = 3 * narrow; break;
      case 'D':
      case '4': width = 4 * narrow; break;
      default: break;  // keeps the last element's width for this turn
    }
    if (bar && width >= 1) Device.FillRect(x, y, x + width - 1, y + barHeight);
    x += width;
    bar = !bar;
  }
  Device.SetScaleMode(mode);
  return ToInt32(x);
}

std::string clsDrawBarcode::Char39(std::string_view text) {
  std::string pattern;
  for (const char c : text) {
    const size_t at = c == '\0' ? std::string_view::npos : kCode39Chars.find(c);
    if (at != std::string_view::npos) {
      for (const char bit : kCode39Bits[at]) pattern.push_back(bit == '1' ? 'W' : 'N');
    }
    // The gap between characters is wide, and ends the pattern too.
    pattern.push_back('W');
  }
  return pattern;
}

std::vector<int32_t> clsDrawBarcode::Array128(std::string_view text) {
  std::vector<int32_t> codes;
  size_t i = 0;
  while (i < text.size()) {
    size_t digits = 0;
    while (i + digits < text.size() && IsDigit(text[i + digits])) ++digits;
    const size_t pairs = digits / 2;
    if (pairs < 3) {
      if (codes.empty()) codes.insert(codes.end(), {kStartB, kFNC1});
      const auto c = static_cast<unsigned char>(text[i]);
      if (c >= ' ' && c <= '~') codes.push_back(c - ' ');
      ++i;
      continue;
    }
    if (codes.empty()) {
      codes.insert(codes.end(), {kStartC, kFNC1});
    } else {
      codes.push_back(kCodeC);
    }
    for (size_t p = 0; p < pairs; ++p, i += 2) codes.push_back(DigitOf(text[i]) * 10 + DigitOf(text[i + 1]));
    if (i < text.size()) codes.push_back(kCodeB);
  }
  if (codes.empty()) return codes;
  int64_t sum = codes[0];
  for (size_t k = 1; k < codes.size(); ++k) sum += static_cast<int64_t>(codes[k]) * static_cast<int64_t>(k);
  codes.push_back(static_cast<int32_t>(sum % 103));
  codes.push_back(kStop);
  return codes;
}

std::string clsDrawBarcode::Char128(const std::vector<int32_t>& values) {
  std::string pattern;
  for (const int32_t value : values) {
    if (value < 0 || value > kStop) continue;
    for (const char module : kCode128Widths[static_cast<size_t>(value)]) {
      pattern.push_back(static_cast<char>('A' + (module - '1')));
    }
  }
  return pattern;
}

std::string clsDrawBarcode::CheckUPC(std::string_view text) {
  int odd = 0;
  int even = 0;
  int position = 0;
  for (size_t i = text.size(); i-- > 0;) {
    if (++position % 2 == 1) {
      odd += DigitOf(text[i]);
    } else {
      even += DigitOf(text[i]);
    }
  }
  return std::to_string((10 - (3 * odd + even) % 10) % 10);
}

std::string clsDrawBarcode::CharUPC(std::string_view text) {
  const size_t half = text.size() / 2;
  std::string pattern = "1111";
  for (size_t i = 0; i < half; ++i) {
    pattern += kUPCLeft[static_cast<size_t>(DigitOf(text[i]))];
    if (i == 0) pattern += "<";
  }
  pattern += ">1111<";
  for (size_t i = half; i < text.size(); ++i) {
    if (i + 1 == text.size()) pattern += ">";
    pattern += kUPCRight[static_cast<size_t>(DigitOf(text[i]))];
  }
  return pattern + "1111";
}

std::string clsDrawBarcode::Char2of5(std::string_view text) {
  std::string pattern = "NNNN";
  // An odd last digit never finds its pair and is left out.
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    const std::string_view bars = k2of5[static_cast<size_t>(DigitOf(text[i]))];
    const std::string_view spaces = k2of5[static_cast<size_t>(DigitOf(text[i + 1]))];
    for (size_t k = 0; k < 5; ++k) {
      pattern.push_back(bars[k]);
      pattern.push_back(spaces[k]);
    }
  }
  return pattern + "WNNN";
}

}  // namespace hifx
