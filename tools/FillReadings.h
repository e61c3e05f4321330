// Plays the handheld's part on a route HIF: every meter of the route gets the
// reading fields a meter reader's handheld fills in, and the transponders the
// handheld heard but found on no meter come back as orphan records. The
// result is the reading HIF that the reading conversion, the reports and the
// re-read file start from, made for the examples and for tests.
//
// Everything is worked out from the seed and the records themselves (no
// clock, no random device), so one route file and one seed always give the
// same bytes.
//
// What a meter gets:
//   - most meters: Status 1, a reading inside [MinReading, MaxReading], the
//     reader's Initials, ReadingDate yyyymmdd, ReadingTime hhnnss, and a
//     Signal when the meter is read by radio (ReadType 1). ReadType stays as
//     routed.
//   - one meter read above MaxReading and, on routes of 8 meters or more, one
//     below MinReading; both with Status 1.
//   - one or two meters (the second from 12 meters on) read in window with a
//     TamperCount above 0.
//   - one meter skipped: Status 0, no reading, ResponseCode the position (from
//     1) of a skip code in the file's skip list and ResponseText that code,
//     stamped with the reader's visit.
//   - one meter not read at all: Status 0, reading, date and time 0.
// A route too small for all of them gets them in the order high, skipped,
// tamper, unread, low, second tamper, so that most of its meters are read.
//
// Limits and previous readings are whole dial units; a stored CurReading
// carries the register's Decimals, so with Decimals 1 it is ten times the dial
// value (a tenth more or less).
//
// Orphan records (RecType 3) are appended at the very end of the file, behind
// the code, index and alert records: the handheld adds what it heard behind
// what it was given. PrvReading, MaxReading, MinReading and LstReadingDate of
// an orphan hold the tag numbers of the meters nearest to where it was heard.
#pragma once

#include <cstdint>
#include <filesystem>

#include "base/Shell.h"

namespace hifx {

// Orphan transponders a filled file carries.
inline constexpr int32_t kFilledOrphans = 3;
// Free record-table slots left behind the orphans of a PDB.
inline constexpr int32_t kFilledSpareSlots = 10;
// The seed when none is given.
inline constexpr uint32_t kDefaultFillSeed = 1;

// Writes `reading` (replacing any file of that name) from the route HIF
// `route`: same container, same schema version, every record of the route in
// its order. Raises a Failure when the route can't be read, has schema
// version 0 (no reading fields), or names the same file as `reading`.
// Progress and the exceptions it made go to the shell's log.
void FillReadings(IShell& shell, const std::filesystem::path& route,
                  const std::filesystem::path& reading, uint32_t seed);

}  // namespace hifx
