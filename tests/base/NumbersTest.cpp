#include <gtest/gtest.h>

#include "base/Failure.h"
#include "support/FailureNumber.h"
#include "base/Numbers.h"

#include <cmath>
#include <utility>

namespace hifx::test {
namespace {

TEST(Rounding, HalvesGoToTheEvenNeighbour) {
  for (const auto& [value, rounded] : {std::pair{0.5, 0.0}, {1.5, 2.0}, {2.5, 2.0}, {3.5, 4.0}, {-2.5, -2.0},
                                       {-3.5, -4.0}, {2.4999, 2.0}, {2.5001, 3.0}}) {
    EXPECT_EQ(RoundHalfEven(value), rounded) << value;
  }
}

TEST(Rounding, SixteenAndThirtyTwoBitLimitsOverflow) {
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_EQ(ToInt16(-32768.5), -32768);  // rounds to the even -32768
  EXPECT_EQ(FailureNumber([] { ToInt16(32767.5); }), fail::kOverflow);
  EXPECT_EQ(FailureNumber([] { ToInt16(-32769.0); }), fail::kOverflow);
  EXPECT_EQ(ToInt32(2147483647.0), 2147483647);
  EXPECT_EQ(ToInt32(-2147483648.0), -2147483647 - 1);
  EXPECT_EQ(FailureNumber([] { ToInt32(2147483647.5); }), fail::kOverflow);
  EXPECT_EQ(FailureNumber([] { ToInt32(0.0 / 0.0); }), fail::kOverflow);
}

TEST(NumericPrefix, ReadsTheLeadingNumber) {
  const std::pair<const char*, double> cases[] = {{"", 0},
                                                  {"abc", 0},
                                                  {"  12abc", 12},
                                                  {"\t7", 7},
                                                  {"-3.5e2x", -350},
                                                  {"1e", 1},
                                                  {"1E+3", 1000},
                                                  {".5", 0.5},
                                                  {"+7", 7},
                                                  {"1.2.3", 1.2},
                                                  {"12 34", 12},
                                                  {"-", 0},
                                                  {"0042", 42},
                                                  {"5.", 5},
                                                  {"   000000000000123", 123},
                                                  {"999999999999999", 999999999999999},
                                                  {"1234567890123456", 1234567890123456},
                                                  {"0000000000000000042", 42},
                                                  {"42 ", 42},
                                                  {"42e1", 420}};
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(NumericPrefix(text), value) << '"' << text << '"';
}

// A decimal reads as the double nearest to it, as the compiler reads the same
// literal, with every platform's maths library: 0.3 is not 3 times 0.1.
TEST(NumericPrefix, DecimalsAreTheNearestDouble) {
  for (const auto& [text, value] : {std::pair{"0.3", 0.3}, {"1.1", 1.1}, {"0.25", 0.25}, {"123.456", 123.456},
                                    {"9.99", 9.99}, {"12345.6789", 12345.6789}, {"2.5e-3", 2.5e-3}}) {
    EXPECT_EQ(NumericPrefix(text), value) << text;
  }
  EXPECT_EQ(PowerOfTen(22), 1e22);
  EXPECT_EQ(PowerOfTen(-2), 0.01);
  EXPECT_EQ(PowerOfTen(-7), 1e-7);
}

// A short number needs no reading to know it fits: each text said short has
// a leading number below 10^4, and an exponent always sends it to be read.
TEST(NumericPrefix, AShortNumberIsKnownWithoutReadingIt) {
  const std::pair<const char*, bool> cases[] = {
      {"", true},        {"abc", true},     {"  0000009999", true}, {"9999.99", true}, {"-9999", true},
      {"+0009999x", true}, {"12345", false}, {"  -12345", false},    {"12e9", false},   {"1.5E3", false},
      {".5e9", false},   {"00012345", false}, {"1e", false}};
  for (const auto& [text, isShort] : cases) {
    EXPECT_EQ(LeadingNumberIsShort(text, 4), isShort) << '"' << text << '"';
    if (isShort) {
      EXPECT_LT(std::fabs(NumericPrefix(text)), 1e4) << '"' << text << '"';
    }
  }
  EXPECT_TRUE(LeadingNumberIsShort("0000012345", 5));
}

TEST(WholeNumber, AcceptsOnlyATextThatIsOneNumber) {
  double v = -1;
  EXPECT_TRUE(ParseWholeNumber(" 12 ", v));
  EXPECT_EQ(v, 12);
  EXPECT_FALSE(ParseWholeNumber("12a", v));
  EXPECT_FALSE(ParseWholeNumber("", v));
  EXPECT_FALSE(ParseWholeNumber("1 2", v));
}

}  // namespace
}  // namespace hifx::test
