#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <optional>
#include <tuple>

#include "base/CaseBlind.h"
#include "base/DateSerial.h"
#include "base/Failure.h"
#include "base/KeyedCollection.h"
#include "base/Value.h"
#include "support/FailureNumber.h"

namespace hifx::test {
namespace {

TEST(Value, KindsAndConversions) {
  EXPECT_TRUE(Value().IsEmpty());
  EXPECT_TRUE(Value::Null().IsNull());
  EXPECT_EQ(Value::Integer(5).Kind(), ValueKind::Integer);
  EXPECT_EQ(Value::Long(5).Kind(), ValueKind::Long);
  EXPECT_NE(Value::Integer(5), Value::Long(5));
  EXPECT_EQ(Value().ToDouble(), 0.0);
  EXPECT_EQ(Value("  12 ").ToInt32(), 12);
  EXPECT_EQ(Value::Double(2.5).ToInt32(), 2);
  EXPECT_EQ(FailureNumber([] { Value("12a").ToInt32(); }), fail::kTypeMismatch);
  EXPECT_EQ(FailureNumber([] { Value::Null().ToDouble(); }), fail::kInvalidNull);
  EXPECT_EQ(FailureNumber([] { Value::Long(1).Text(); }), fail::kTypeMismatch);
}

// A value kept from record to record takes each record's number in place,
// whatever kind it held before.
TEST(Value, ANumberIsSetOverAnyKind) {
  Value value("a text longer than any room kept inside the value itself");
  value.SetLong(7);
  EXPECT_EQ(value, Value::Long(7));
  value.SetLong(-8);
  EXPECT_EQ(value, Value::Long(-8));
  value.SetInteger(9);
  EXPECT_EQ(value, Value::Integer(9));
  value.SetText("x");
  value.SetInteger(-1);
  EXPECT_EQ(value, Value::Integer(-1));
}

// Only what ToInt32 gives exactly, with no rounding and no overflow, is a
// whole number.
TEST(Value, AWholeNumberIsOneToInt32GivesWithoutRounding) {
  const std::pair<Value, std::optional<int32_t>> cases[] = {
      {Value::Long(-7), -7},
      {Value::Integer(-3), -3},
      {Value::Double(1734.0), 1734},
      {Value::Double(-0.0), 0},
      {Value::Double(-2147483648.0), INT32_MIN},
      {Value::Double(2147483647.0), INT32_MAX},
      {Value::Double(2.5), {}},
      {Value::Double(2147483648.0), {}},
      {Value::Double(std::nan("")), {}},
      {Value::Single(3.0f), {}},
      {Value("12"), {}},
      {Value(), {}},
  };
  for (const auto& [value, expected] : cases) {
    int32_t number = 99;
    EXPECT_EQ(value.IsWholeNumber(number), expected.has_value()) << value.ToText();
    if (expected) {
      EXPECT_EQ(number, *expected);
      EXPECT_EQ(number, value.ToInt32());
    }
  }
}

TEST(Value, TextForms) {
  EXPECT_EQ(Value().ToText(), "");
  EXPECT_EQ(Value::Long(-42).ToText(), "-42");
  EXPECT_EQ(Value::Double(1.5).ToText(), "1.5");
  EXPECT_EQ(Value::Double(0.1).ToText(), "0.1");
  EXPECT_EQ(Value::Double(100).ToText(), "100");
  EXPECT_EQ(Value::Double(1e20).ToText(), "1E+20");
  EXPECT_EQ(Value::Single(0.1f).ToText(), "0.1");
  EXPECT_EQ(Value::Date(DateSerial(2024, 2, 29)).ToText(), "2/29/2024");
  EXPECT_EQ(Value::Date(DateSerial(2024, 2, 29) + TimeSerial(13, 5, 9)).ToText(),
            "2/29/2024 13:05:09");
}

TEST(DateSerial, DaysSinceTheEndOf1899) {
  EXPECT_EQ(DateSerial(1899, 12, 30), 0);
  EXPECT_EQ(DateSerial(1900, 1, 1), 2);
  EXPECT_EQ(DateSerial(1904, 1, 1), kPalmEpochSerial);
  EXPECT_EQ(DateSerial(2000, 1, 1), 36526);
  EXPECT_EQ(DateSerial(2024, 13, 1), DateSerial(2025, 1, 1));  // months roll over
  EXPECT_EQ(DateSerial(2024, 3, 0), DateSerial(2024, 2, 29));
  const CivilTime t = FromDateValue(DateSerial(1999, 12, 31) + TimeSerial(23, 59, 59));
  EXPECT_EQ(std::tuple(t.year, t.month, t.day, t.hour, t.minute, t.second), std::tuple(1999, 12, 31, 23, 59, 59));
}

TEST(KeyedCollection, KeysIgnoreCaseAndKeepTheirOrder) {
  KeyedCollection<int> c;
  c.Add("RouteNbr", 1);
  c.Add("Sequence", 2);
  EXPECT_EQ(c.Item("routenbr"), 1);
  EXPECT_EQ(c.Item("SEQUENCE"), 2);
  EXPECT_EQ(c.Item(size_t{2}), 2);
  EXPECT_EQ(c.Key(1), "RouteNbr");
  EXPECT_EQ(FailureNumber([&] { c.Add("ROUTENBR", 3); }), fail::kDuplicateKey);
  EXPECT_EQ(FailureNumber([&] { c.Item("Missing"); }), fail::kInvalidCall);
  EXPECT_EQ(FailureNumber([&] { c.Item(size_t{3}); }), fail::kInvalidCall);
  c.Remove("routeNBR");
  EXPECT_EQ(c.Count(), 1u);
  EXPECT_EQ(c.Item("Sequence"), 2);
  EXPECT_FALSE(c.Contains("RouteNbr"));
}

// Tags are kept case-blind in an open table that grows as they come: every
// name stays found through the growth, and a cleared set takes them again.
TEST(CaseBlindSet, ANameIsAddedOnceInAnyCaseThroughGrowth) {
  CaseBlindSet set;
  EXPECT_TRUE(set.Insert("ab12"));
  EXPECT_FALSE(set.Insert("AB12"));
  EXPECT_TRUE(set.Insert(""));
  EXPECT_FALSE(set.Insert(""));
  for (int i = 0; i < 3000; ++i) EXPECT_TRUE(set.Insert("t" + std::to_string(i))) << i;
  for (int i = 0; i < 3000; ++i) EXPECT_FALSE(set.Insert("T" + std::to_string(i))) << i;
  EXPECT_EQ(set.Size(), 3002u);
  set.Clear();
  EXPECT_EQ(set.Size(), 0u);
  set.Reserve(10);
  EXPECT_TRUE(set.Insert("ab12"));
}

}  // namespace
}  // namespace hifx::test
