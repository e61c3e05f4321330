// What the handhelds brought back, counted per route and in total from a
// reading HIF: meters read and unread, skipped (by skip code), read by
// radio, by hand and by probe, out of range, rolled over and tampered with,
// the orphans heard, and the first and last reading time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Shell.h"

namespace hifx {

// A reading's date and time as the record holds them: yyyymmdd and hhmmss.
struct ReadingTime {
  int32_t date = 0;
  int32_t time = 0;
  auto operator<=>(const ReadingTime&) const = default;
};

struct RouteReadStats {
  int32_t route = 0;  // 0 for the total
  std::string name;
  int32_t meters = 0;
  int32_t read = 0;
  int32_t unread = 0;
  int32_t skipped = 0;  // not read, with a response code, or read with no date
  std::map<int32_t, int32_t> skippedByCode;  // response code: meters
  int32_t radio = 0;
  int32_t manual = 0;
  int32_t probe = 0;
  int32_t low = 0;
  int32_t high = 0;
  int32_t rollover = 0;
  int32_t tamper = 0;
  std::optional<ReadingTime> first;
  std::optional<ReadingTime> last;

  // Adds another's counts and times to these.
  void Add(const RouteReadStats& other);
  // Seconds from the first reading to the last; 0 without readings.
  int64_t SpanSeconds() const;
};

struct SkipCode {
  std::string code;
  std::string reason;
};

struct ReadStats {
  std::vector<RouteReadStats> routes;  // in route number order
  RouteReadStats total;
  int32_t orphans = 0;
  // The file's own skip list, in its order: a skipped meter's response code
  // is its position from 1. Empty when the file doesn't carry one.
  std::vector<SkipCode> skipCodes;
};

// "2024-03-09 23:59:00"; "-" for no time.
std::string ReadingTimeText(const std::optional<ReadingTime>& t);
// Hours, minutes and seconds: "15:18:00".
std::string SpanText(int64_t seconds);

// Counts the reading HIF. Raises a failure of kind BadInput, naming the
// file, when it can't be read or its structure doesn't hold.
ReadStats CountReadings(IShell& shell, const std::filesystem::path& file);

}  // namespace hifx
