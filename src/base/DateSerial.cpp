#include "base/DateSerial.h"

#include <cmath>

namespace hifx {
namespace {

// Days since 1970-01-01 of a proleptic Gregorian date.
int64_t DaysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, CivilTime& t) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t y = yoe + era * 400;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  const int64_t d = doy - (153 * mp + 2) / 5 + 1;
  const int64_t m = mp + (mp < 10 ? 3 : -9);
  t.year = static_cast<int>(y + (m <= 2));
  t.month = static_cast<int>(m);
  t.day = static_cast<int>(d);
}

const int64_t kSerialZeroDays = DaysFromCivil(1899, 12, 30);

}  // namespace

double DateSerial(int year, int month, int day) {
  // Months and days out of range roll over into the next ones.
  int64_t y = year + (month - 1) / 12;
  int64_t m = (month - 1) % 12;
  if (m < 0) {
    m += 12;
    --y;
  }
  return static_cast<double>(DaysFromCivil(y, m + 1, 1) + (day - 1) - kSerialZeroDays);
}

double TimeSerial(int hour, int minute, int second) {
  return (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
}

double ToDateValue(const CivilTime& t) {
  return DateSerial(t.year, t.month, t.day) + TimeSerial(t.hour, t.minute, t.second);
}

CivilTime FromDateValue(double value) {
  CivilTime t;
  if (!std::isfinite(value) || std::fabs(value) > 3.0e6) return t;
  const double days = std::floor(value);
  int64_t seconds = static_cast<int64_t>(std::llround((value - days) * 86400.0));
  int64_t whole = static_cast<int64_t>(days);
  if (seconds >= 86400) {
    seconds -= 86400;
    ++whole;
  }
  CivilFromDays(whole + kSerialZeroDays, t);
  t.hour = static_cast<int>(seconds / 3600);
  t.minute = static_cast<int>(seconds / 60 % 60);
  t.second = static_cast<int>(seconds % 60);
  return t;
}

}  // namespace hifx
