// The one source of "now" for the engine. Every date and time written into a
// file or a log line comes from here, so a run can be made reproducible.
#pragma once

#include <ctime>
#include <cstdint>
#include <optional>
#include <string>

#include "base/DateSerial.h"

namespace hifx {

class IClock {
 public:
  virtual ~IClock() = default;
  // Local date and time.
  virtual CivilTime Now() const = 0;
};

// The system clock, or, when SOURCE_DATE_EPOCH is set to a number of seconds,
// that moment, shown in the local time zone.
class SystemClock final : public IClock {
 public:
  CivilTime Now() const override;
};

// A clock that always tells the same moment, for tests and tools.
class FixedClock final : public IClock {
 public:
  explicit FixedClock(CivilTime at) : at_(at) {}
  CivilTime Now() const override { return at_; }

 private:
  CivilTime at_;
};

// Local time of a count of seconds since 1970-01-01 00:00 UTC.
CivilTime LocalTimeOf(std::time_t seconds);

// The short forms the run log shows: "17:45" and "11/22/2026".
std::string ShortTime(const CivilTime& t);
std::string ShortDate(const CivilTime& t);
// yyyymmdd and hhnn as numbers, as file headers carry them.
int32_t DateNumber(const CivilTime& t);
int32_t TimeNumber(const CivilTime& t);

}  // namespace hifx
