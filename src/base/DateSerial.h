// Date values: a double count of days since 1899-12-30, the fraction being
// the time of day. The value 0 means no date.
#pragma once

#include <cstdint>

namespace hifx {

struct CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

double DateSerial(int year, int month, int day);
double TimeSerial(int hour, int minute, int second);
double ToDateValue(const CivilTime& t);
CivilTime FromDateValue(double value);

// Days from 1899-12-30 to 1904-01-01, the start of the handheld's clock.
inline constexpr double kPalmEpochSerial = 1462.0;

}  // namespace hifx
