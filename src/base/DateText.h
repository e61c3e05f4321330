// Dates and times as texts: reading the forms a person or a file writes
// ("3/14/2026", "14:05:09", "2026-03-14 14:05") into date values, and
// writing date values and numbers through the format patterns the files use.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hifx {

// Reads a date, a time, or a date and a time separated by blanks. A date is
// month/day/year (a two-digit year falls in 1930-2029) or year-month-day; a
// time is hours:minutes with optional :seconds. False when the text is none
// of these or names a day or time that doesn't exist.
bool ReadDateText(std::string_view text, double& serial);

// A date value through a pattern of mm, dd, yy, yyyy, hh, nn and ss; any
// other character stands for itself. "mmddyy" of 2026-03-14 is "031426".
std::string FormatDateValue(double serial, std::string_view pattern);

// A number padded with leading zeros to at least `digits` digits, with
// `decimals` places behind a point; halves round away from zero.
std::string FormatZeros(double value, int digits, int decimals = 0);

}  // namespace hifx
