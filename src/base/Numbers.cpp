#include "base/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/Failure.h"

namespace hifx {

double PowerOfTen(int n) {
  static constexpr double kExact[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                      1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (n >= 0 && n <= 22) return kExact[n];
  if (n < 0 && n >= -22) return 1.0 / kExact[-n];
  return std::pow(10.0, n);
}

double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double diff = value - floor;
  if (diff > 0.5) return floor + 1.0;
  if (diff < 0.5) return floor;
  return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

int16_t ToInt16(double value) {
  if (std::isnan(value)) throw Failure(fail::kOverflow);
  const double r = RoundHalfEven(value);
  if (r < -32768.0 || r > 32767.0) throw Failure(fail::kOverflow);
  return static_cast<int16_t>(r);
}

int32_t ToInt32(double value) {
  if (value >= -2147483648.0 && value <= 2147483647.0 && value == static_cast<double>(static_cast<int32_t>(value))) {
    return static_cast<int32_t>(value);  // already whole: nothing to round
  }
  if (std::isnan(value)) throw Failure(fail::kOverflow);
  const double r = RoundHalfEven(value);
  if (r < -2147483648.0 || r > 2147483647.0) throw Failure(fail::kOverflow);
  return static_cast<int32_t>(r);
}

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Scans the longest number at the start of text (no leading blanks);
// returns the count of characters used, 0 when there is no number.
size_t ScanNumber(std::string_view text, double& out) {
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  double mantissa = 0.0;
  int digits = 0;
  int fractionDigits = 0;
  while (i < text.size() && IsDigit(text[i])) {
    mantissa = mantissa * 10.0 + (text[i] - '0');
    ++i;
    ++digits;
  }
  if (i < text.size() && text[i] == '.') {
    size_t j = i + 1;
    while (j < text.size() && IsDigit(text[j])) {
      mantissa = mantissa * 10.0 + (text[j] - '0');
      ++j;
      ++fractionDigits;
    }
    if (digits + fractionDigits > 0) i = j;
  }
  if (digits + fractionDigits == 0) return 0;
  int exponent = 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    size_t j = i + 1;
    bool expNegative = false;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
      expNegative = text[j] == '-';
      ++j;
    }
    if (j < text.size() && IsDigit(text[j])) {
      while (j < text.size() && IsDigit(text[j])) {
        if (exponent < 10000) exponent = exponent * 10 + (text[j] - '0');
        ++j;
      }
      if (expNegative) exponent = -exponent;
      i = j;
    }
  }
  const int scale = exponent - fractionDigits;
  // Dividing by an exact power of ten rounds once, as reading the text does.
  double value = mantissa;
  if (scale > 0) value = mantissa * PowerOfTen(scale);
  else if (scale >= -22) value = mantissa / PowerOfTen(-scale);
  else value = mantissa * std::pow(10.0, scale);
  if (std::isinf(value)) value = std::numeric_limits<double>::max();
  out = negative ? -value : value;
  return i;
}

}  // namespace

double NumericPrefix(std::string_view text) {
  size_t start = 0;
  while (start < text.size() && IsBlank(text[start])) ++start;
  // Digits alone to the end, as most number columns hold them, are read
  // here: up to fifteen of them the sum is exact, as the scan's is.
  const std::string_view digits = text.substr(start);
  if (digits.size() <= 15) {
    uint64_t number = 0;
    size_t i = 0;
    for (; i < digits.size() && IsDigit(digits[i]); ++i) number = number * 10 + static_cast<uint64_t>(digits[i] - '0');
    if (i == digits.size()) return static_cast<double>(number);
  }
  double value = 0.0;
  if (ScanNumber(text.substr(start), value) == 0) return 0.0;
  return value;
}

bool LeadingNumberIsShort(std::string_view text, size_t digits) {
  size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  while (i < text.size() && text[i] == '0') ++i;
  const size_t first = i;
  while (i < text.size() && IsDigit(text[i])) ++i;
  if (i - first > digits) return false;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && IsDigit(text[i])) ++i;
  }
  return i == text.size() || (text[i] != 'e' && text[i] != 'E');
}

bool ParseWholeNumber(std::string_view text, double& out) {
  size_t start = 0;
  while (start < text.size() && IsBlank(text[start])) ++start;
  size_t end = text.size();
  while (end > start && IsBlank(text[end - 1])) --end;
  const std::string_view core = text.substr(start, end - start);
  double value = 0.0;
  const size_t used = ScanNumber(core, value);
  if (used == 0 || used != core.size()) return false;
  out = value;
  return true;
}

}  // namespace hifx
