// Number rules shared by every reader and writer: rounding half to even into
// 16- and 32-bit integers, and the numeric prefix of a text.
#pragma once

#include <cstdint>
#include <string_view>

namespace hifx {

// Nearest integer, halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
double RoundHalfEven(double value);

// Rounded half to even into a 16-bit integer; out of range or not a number
// raises an overflow failure.
int16_t ToInt16(double value);

// Rounded half to even into a 32-bit integer; out of range or not a number
// raises an overflow failure.
int32_t ToInt32(double value);

// The leading number of a text: leading blanks are skipped, reading stops at
// the first character that can't continue a number, and a text with no
// number gives 0. A sign, a decimal point and an exponent are understood.
double NumericPrefix(std::string_view text);

// Whether the leading number of text, as NumericPrefix reads it, surely has
// at most `digits` digits before its point (leading zeros not counted) and no
// exponent: then it fits a field of that many digits without being read. A
// text with no number is short; false means only that it must be read.
bool LeadingNumberIsShort(std::string_view text, size_t digits);

// 10 to the power n, exact where a double holds it (n from 0 to 22) and the
// nearest double down to -22, so that scaling by it gives the same bits with
// every platform's maths library (pow of Windows' runtime is not exact).
double PowerOfTen(int n);

// The whole text as a number, blanks around it allowed; nullopt-like false
// when the text is not entirely one number.
bool ParseWholeNumber(std::string_view text, double& out);

}  // namespace hifx
