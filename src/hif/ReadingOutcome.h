// What a meter's reading came to, as the meter reports word it and the read
// statistics count it: the first of these that holds.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/Numbers.h"

namespace hifx {

enum class ReadingOutcome {
  Missed,        // not read
  Skipped,       // skipped by the reader, or read with no date
  Low,           // below its range
  High,          // above its range
  Rollover,      // below the previous reading
  ManuallyRead,  // keyed with a response code
  Read,
};

// The numbers of a meter that decide it; current in whole dial units.
struct ReadingNumbers {
  int32_t status = 0;
  int32_t readType = 0;
  int32_t current = 0;
  int32_t date = 0;
  int32_t minimum = 0;
  int32_t maximum = 0;
  int32_t previous = 0;
  int32_t responseCode = 0;
};

// A reading in whole dial units, its decimals cut off, as the reports show
// it and judge it.
inline int32_t WholeReading(int32_t current, int32_t decimals) {
  if (decimals <= 0) return current;
  return static_cast<int32_t>(std::trunc(current / PowerOfTen(std::min(decimals, 9))));
}

// Read types of a meter record.
inline constexpr int32_t kReadRadio = 1;
inline constexpr int32_t kReadManual = 2;
inline constexpr int32_t kReadProbe = 3;
inline constexpr int32_t kReadSkipped = 4;

inline ReadingOutcome OutcomeOf(const ReadingNumbers& n) {
  if (n.status == 0) return ReadingOutcome::Missed;
  if (n.readType == kReadSkipped || n.date == 0 || (n.readType == kReadManual && n.current == 0)) {
    return ReadingOutcome::Skipped;
  }
  if (n.minimum < n.maximum && (n.current < n.minimum || n.current > n.maximum)) {
    return n.current < n.minimum ? ReadingOutcome::Low : ReadingOutcome::High;
  }
  if (n.current < n.previous) return ReadingOutcome::Rollover;
  // A range that wraps past the end of the dials: the words are swapped.
  if (n.minimum > n.maximum && n.current > n.maximum && n.current < n.minimum) {
    return n.current < n.minimum ? ReadingOutcome::High : ReadingOutcome::Low;
  }
  if (n.readType == kReadManual && n.responseCode != 0) return ReadingOutcome::ManuallyRead;
  return ReadingOutcome::Read;
}

// The outcome as the read statistics and the meter picture count it, where
// a meter not read but given a code in the field was skipped.
inline ReadingOutcome FieldOutcomeOf(const ReadingNumbers& n) {
  const ReadingOutcome outcome = OutcomeOf(n);
  if (outcome == ReadingOutcome::Missed && n.responseCode > 0) return ReadingOutcome::Skipped;
  return outcome;
}

}  // namespace hifx
