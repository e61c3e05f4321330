#include "base/Clock.h"

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

CivilTime SystemClock::Now() const {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr && *epoch != '\0') {
    char* end = nullptr;
    const long long seconds = std::strtoll(epoch, &end, 10);
    if (end != nullptr && *end == '\0') return LocalTimeOf(static_cast<std::time_t>(seconds));
  }
  return LocalTimeOf(std::time(nullptr));
}

}  // namespace hifx
