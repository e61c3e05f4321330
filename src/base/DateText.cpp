#include "base/DateText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cmath>
#include <cstdio>

#include "base/DateSerial.h"
#include "base/Numbers.h"

namespace hifx {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Up to `most` digits at `at`; -1 when there is none.
int ReadNumber(std::string_view text, size_t& at, size_t most, size_t& count) {
  int n = 0;
  count = 0;
  while (at < text.size() && IsDigit(text[at]) && count < most) {
    n = n * 10 + (text[at] - '0');
    ++at;
    ++count;
  }
  return count == 0 ? -1 : n;
}

bool IsRealDay(int year, int month, int day) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

// "m/d/y" or "y-m-d" from `at`; moves `at` past it.
bool ReadDatePart(std::string_view text, size_t& at, double& serial) {
  size_t count = 0;
  size_t p = at;
  const int first = ReadNumber(text, p, 4, count);
  if (first < 0 || p >= text.size() || (text[p] != '/' && text[p] != '-')) return false;
  const char separator = text[p];
  const size_t firstCount = count;
  ++p;
  const int second = ReadNumber(text, p, 2, count);
  if (second < 0 || p >= text.size() || text[p] != separator) return false;
  ++p;
  int third = ReadNumber(text, p, 4, count);
  if (third < 0) return false;
  int year = 0;
  int month = 0;
  int day = 0;
  if (separator == '-') {
    if (firstCount != 4) return false;
    year = first;
    month = second;
    day = third;
  } else {
    if (firstCount > 2) return false;
    if (count <= 2) third += third < 30 ? 2000 : 1900;
    year = third;
    month = first;
    day = second;
  }
  if (!IsRealDay(year, month, day)) return false;
  serial = DateSerial(year, month, day);
  at = p;
  return true;
}

bool ReadTimePart(std::string_view text, size_t& at, double& fraction) {
  size_t count = 0;
  size_t p = at;
  const int hour = ReadNumber(text, p, 2, count);
  if (hour < 0 || p >= text.size() || text[p] != ':') return false;
  ++p;
  const int minute = ReadNumber(text, p, 2, count);
  if (minute < 0) return false;
  int second = 0;
  if (p < text.size() && text[p] == ':') {
    ++p;
    second = ReadNumber(text, p, 2, count);
    if (second < 0) return false;
  }
  if (hour > 23 || minute > 59 || second > 59) return false;
  fraction = TimeSerial(hour, minute, second);
  at = p;
  return true;
}

void SkipBlanks(std::string_view text, size_t& at) {
  while (at < text.size() && text[at] == ' ') ++at;
}

}  // namespace

bool ReadDateText(std::string_view text, double& serial) {
  size_t at = 0;
  SkipBlanks(text, at);
  double day = 0.0;
  double time = 0.0;
  const bool hasDate = ReadDatePart(text, at, day);
  if (hasDate) SkipBlanks(text, at);
  const bool hasTime = ReadTimePart(text, at, time);
  SkipBlanks(text, at);
  if ((!hasDate && !hasTime) || at != text.size()) return false;
  serial = day + time;
  return true;
}

std::string FormatDateValue(double serial, std::string_view pattern) {
  const CivilTime t = FromDateValue(serial);
  std::string out;
  auto put = [&out](int value, int width) {
    char digits[12];
    int n = 0;
    for (unsigned v = static_cast<unsigned>(value < 0 ? 0 : value); n < width || v > 0; v /= 10) {
      digits[n++] = static_cast<char>('0' + v % 10);
      if (n == 11) break;
    }
    while (n > 0) out += digits[--n];
  };
  for (size_t i = 0; i < pattern.size();) {
    const std::string_view rest = pattern.substr(i);
    if (rest.substr(0, 4) == "yyyy") {
      put(t.year, 4);
      i += 4;
    } else if (rest.substr(0, 2) == "yy") {
      put(t.year % 100, 2);
      i += 2;
    } else if (rest.substr(0, 2) == "mm") {
      put(t.month, 2);
      i += 2;
    } else if (rest.substr(0, 2) == "dd") {
      put(t.day, 2);
      i += 2;
    } else if (rest.substr(0, 2) == "hh") {
      put(t.hour, 2);
      i += 2;
    } else if (rest.substr(0, 2) == "nn") {
      put(t.minute, 2);
      i += 2;
    } else if (rest.substr(0, 2) == "ss") {
      put(t.second, 2);
      i += 2;
    } else {
      out += pattern[i++];
    }
  }
  return out;
}

std::string FormatZeros(double value, int digits, int decimals) {
  if (!std::isfinite(value)) value = 0.0;
  decimals = std::max(decimals, 0);
  const double scale = PowerOfTen(decimals);
  const double scaled = std::round(std::fabs(value) * scale);  // halves away from zero
  const auto whole = static_cast<size_t>(std::max(digits, 0) + decimals);
  std::string body;
  if (scaled < 9e18 && whole < 40) {
    // Digits from the right, zeros up to the width, the point, the sign.
    char buf[64];
    char* at = buf + sizeof buf;
    auto n = static_cast<uint64_t>(scaled);
    size_t written = 0;
    do {
      if (decimals > 0 && written == static_cast<size_t>(decimals)) *--at = '.';
      *--at = static_cast<char>('0' + n % 10);
      n /= 10;
      ++written;
    } while (n > 0 || written < whole || (decimals > 0 && written <= static_cast<size_t>(decimals)));
    if (value < 0 && scaled != 0.0) *--at = '-';
    return std::string(at, buf + sizeof buf);
  }
  char buf[400];
  std::snprintf(buf, sizeof buf, "%.0f", scaled);
  body = buf;
  if (body.size() < whole) body.insert(0, whole - body.size(), '0');
  if (decimals > 0 && body.size() > static_cast<size_t>(decimals)) body.insert(body.size() - static_cast<size_t>(decimals), ".");
  if (value < 0 && scaled != 0.0) body.insert(0, "-");
  return body;
}

}  // namespace hifx
