#include <gtest/gtest.h>

#include "base/Failure.h"
#include "support/FailureNumber.h"
#include "base/Numbers.h"

#include <cmath>

namespace hifx::test {
namespace {

TEST(Rounding, HalvesGoToTheEvenNeighbour) {
  EXPECT_EQ(RoundHalfEven(0.5), 0.0);
  EXPECT_EQ(RoundHalfEven(1.5), 2.0);
  EXPECT_EQ(RoundHalfEven(2.5), 2.0);
  EXPECT_EQ(RoundHalfEven(3.5), 4.0);
  EXPECT_EQ(RoundHalfEven(-2.5), -2.0);
  EXPECT_EQ(RoundHalfEven(-3.5), -4.0);
  EXPECT_EQ(RoundHalfEven(2.4999), 2.0);
  EXPECT_EQ(RoundHalfEven(2.5001), 3.0);
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

struct PrefixCase {
  const char* text;
  double value;
};

class NumericPrefixTest : public testing::TestWithParam<PrefixCase> {};

TEST_P(NumericPrefixTest, ReadsTheLeadingNumber) {
  EXPECT_DOUBLE_EQ(NumericPrefix(GetParam().text), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NumericPrefixTest,
    testing::Values(PrefixCase{"", 0}, PrefixCase{"abc", 0}, PrefixCase{"  12abc", 12},
                    PrefixCase{"\t7", 7}, PrefixCase{"-3.5e2x", -350}, PrefixCase{"1e", 1},
                    PrefixCase{"1E+3", 1000}, PrefixCase{".5", 0.5}, PrefixCase{"+7", 7},
                    PrefixCase{"1.2.3", 1.2}, PrefixCase{"12 34", 12}, PrefixCase{"-", 0},
                    PrefixCase{"0042", 42}, PrefixCase{"5.", 5}));

// A decimal reads as the double nearest to it, as the compiler reads the same
// literal, with every platform's maths library: 0.3 is not 3 times 0.1.
TEST(NumericPrefix, DecimalsAreTheNearestDouble) {
  EXPECT_EQ(NumericPrefix("0.3"), 0.3);
  EXPECT_EQ(NumericPrefix("1.1"), 1.1);
  EXPECT_EQ(NumericPrefix("0.25"), 0.25);
  EXPECT_EQ(NumericPrefix("123.456"), 123.456);
  EXPECT_EQ(NumericPrefix("9.99"), 9.99);
  EXPECT_EQ(NumericPrefix("12345.6789"), 12345.6789);
  EXPECT_EQ(NumericPrefix("2.5e-3"), 2.5e-3);
  EXPECT_EQ(PowerOfTen(22), 1e22);
  EXPECT_EQ(PowerOfTen(-2), 0.01);
  EXPECT_EQ(PowerOfTen(-7), 1e-7);
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
