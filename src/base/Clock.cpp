#include "base/Clock.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace hifx {

CivilTime LocalTimeOf(std::time_t seconds) {
  std::tm tm{};
#ifdef _WIN32
  localtime_s(&tm, &seconds);
#else
  localtime_r(&seconds, &tm);
#endif
  CivilTime t;
  t.year = tm.tm_year + 1900;
  t.month = tm.tm_mon + 1;
  t.day = tm.tm_mday;
  t.hour = tm.tm_hour;
  t.minute = tm.tm_min;
  t.second = tm.tm_sec;
  return t;
}

std::string ShortTime(const CivilTime& t) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d:%02d", t.hour, t.minute);
  return buf;
}

std::string ShortDate(const CivilTime& t) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "%d/%d/%04d", t.month, t.day, t.year);
  return buf;
}

int32_t DateNumber(const CivilTime& t) { return t.year * 10000 + t.month * 100 + t.day; }
int32_t TimeNumber(const CivilTime& t) { return t.hour * 100 + t.minute; }

CivilTime SystemClock::Now() const {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr && *epoch != '\0') {
    char* end = nullptr;
    const long long seconds = std::strtoll(epoch, &end, 10);
    if (end != nullptr && *end == '\0') return LocalTimeOf(static_cast<std::time_t>(seconds));
  }
  return LocalTimeOf(std::time(nullptr));
}

}  // namespace hifx
