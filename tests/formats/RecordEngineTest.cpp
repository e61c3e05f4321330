// The record engine: how each field type reads and writes its columns, and
// how a record type parses and builds whole lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <variant>
#include <vector>

#include "base/DateSerial.h"
#include "base/Failure.h"
#include "formats/clsRecType.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

clsField FieldOf(int16_t type, int16_t start, int16_t length) {
  clsField field;
  field.FieldName = "F";
  field.FieldType = type;
  field.Start = start;
  field.Length = length;
  return field;
}

std::string Written(int16_t type, int16_t length, const Value& value) {
  std::string buffer;
  FieldOf(type, 1, length).Insert(buffer, value);
  return buffer;
}

TEST(RecordEngine, EmptyTextReadsAsEachTypesZero) {
  EXPECT_EQ(FieldOf(fldText, 1, 4).Extract(""), Value(""));
  EXPECT_EQ(FieldOf(fldZeroNumber, 1, 4).Extract(""), Value::Long(0));
  EXPECT_EQ(FieldOf(fldDate, 1, 8).Extract(""), Value::Date(0));
  EXPECT_EQ(FieldOf(fldTime, 1, 6).Extract(""), Value::Date(0));
  EXPECT_EQ(FieldOf(fldTime, 1, 4).Extract(""), Value());
  EXPECT_EQ(FieldOf(fldInteger, 1, 4).Extract("12ab"), Value::Integer(0));
  EXPECT_EQ(FieldOf(fldLong, 1, 11).Extract("99999999999"), Value::Long(0));
  EXPECT_EQ(FieldOf(fldDouble, 1, 6).Extract(" 1.5  "), Value::Double(1.5));
}

TEST(RecordEngine, ReadsEachTypeFromItsColumns) {
  const std::string line = "xx  12ab031426  0915301400";
  EXPECT_EQ(FieldOf(fldText, 3, 4).Extract(line), Value("  12"));
  EXPECT_EQ(FieldOf(fldZeroNumber, 3, 6).Extract(line), Value::Long(12));
  EXPECT_EQ(FieldOf(fldDate, 9, 6).Extract(line), Value::Date(DateSerial(2026, 3, 14)));
  EXPECT_EQ(FieldOf(fldTime, 17, 4).Extract(line), Value::Date(TimeSerial(9, 15, 0)));
  EXPECT_EQ(FieldOf(fldTime, 17, 6).Extract(line), Value::Date(TimeSerial(9, 15, 30)));
  EXPECT_EQ(FieldOf(fldDate, 1, 8).Extract("12311999"), Value::Date(DateSerial(1999, 12, 31)));
  EXPECT_EQ(FieldOf(fldDate, 1, 8).Extract("00000000"), Value::Date(0));
  EXPECT_EQ(FieldOf(fldDate, 1, 6).Extract("123129"), Value::Date(DateSerial(2029, 12, 31)));
  EXPECT_EQ(FieldOf(fldDate, 1, 6).Extract("010130"), Value::Date(DateSerial(1930, 1, 1)));
  // Year first when read, month first when written.
  EXPECT_EQ(FieldOf(fldDateTime, 1, 14).Extract("20260314091530"),
            Value::Date(DateSerial(2026, 3, 14) + TimeSerial(9, 15, 30)));
  EXPECT_EQ(FieldOf(fldDateTime, 1, 14).Extract("garbage"), Value());
  EXPECT_EQ(FieldOf(fldTime, 1, 4).Extract("9x15"), Value());
  EXPECT_EQ(FieldOf(fldTime, 1, 6).Extract("9x1500"), Value::Date(0));
  EXPECT_EQ(FieldOf(fldTime, 1, 5).Extract("09150"), Value());
  // Letters behind digits don't stop a zero-number field; too large a
  // number reads as 0.
  EXPECT_EQ(FieldOf(fldZeroNumber, 1, 8).Extract("0042AB12"), Value::Long(42));
  EXPECT_EQ(FieldOf(fldZeroNumber, 1, 12).Extract("999999999999"), Value::Long(0));
  EXPECT_EQ(FieldOf(fldZeroNumber, 0, 4).Extract("1234"), Value::Long(0));
}

TEST(RecordEngine, WritesEachTypeFittedToItsWidth) {
  EXPECT_EQ(Written(fldZeroNumber, 4, Value::Long(12345)), "1234");
  EXPECT_EQ(Written(fldZeroNumber, 6, Value::Long(-42)), "-00004");  // the sign costs a digit
  EXPECT_EQ(Written(fldZeroNumber, 6, Value("17")), "000017");
  EXPECT_EQ(Written(fldZeroNumber, 6, Value("AB")), "AB    ");
  EXPECT_EQ(Written(fldZeroNumber, 3, Value::Double(2.5)), "003");
  EXPECT_EQ(Written(fldInteger, 3, Value::Long(7)), "007");
  EXPECT_EQ(Written(fldLong, 5, Value::Long(7)), "7    ");
  EXPECT_EQ(Written(fldDecimal, 7, Value::Double(12.345)), "0012.35");
  EXPECT_EQ(Written(fldText, 3, Value("ABCDE")), "ABC");
  EXPECT_EQ(Written(fldText, 5, Value::Long(12)), "12   ");
  EXPECT_EQ(Written(fldTime, 6, Value("0915")), "0915  ");
  EXPECT_EQ(Written(fldTime, 6, Value::Long(0)), "0     ");
  EXPECT_EQ(Written(fldTime, 4, Value("091530")), "0915");
  EXPECT_EQ(Written(fldTime, 5, Value("09153")), "     ");
  const Value date = Value::Date(DateSerial(2026, 3, 14));
  EXPECT_EQ(Written(fldDate, 6, date), "031426");
  EXPECT_EQ(Written(fldDate, 8, date), "03142026");
  EXPECT_EQ(Written(fldDate, 8, Value("03/14/2026")), "03142026");
  EXPECT_EQ(Written(fldDate, 4, date), "    ");
  for (const Value& zero : {Value::Long(0), Value::Date(0), Value("00000000"), Value()}) {
    EXPECT_EQ(Written(fldDate, 8, zero), "00000000");
    EXPECT_EQ(Written(fldDate, 6, zero), "000000");
  }
  EXPECT_EQ(Written(fldDateTime, 17, Value::Date(DateSerial(2026, 3, 14) + TimeSerial(9, 5, 0))),
            "03142026 09:05:00");
}

TEST(RecordEngine, UnknownTypeIsShownAndLeftBlank) {
  TestShell shell;
  clsField field = FieldOf(99, 3, 2);
  EXPECT_EQ(field.Extract("abcdef", &shell), Value());
  std::string buffer = "abcdef";
  field.Insert(buffer, Value("XY"), &shell);
  EXPECT_EQ(buffer, "ab  ef");
  ASSERT_EQ(shell.questions.size(), 2u);
  EXPECT_NE(shell.questions[0].text.find("Undefined Field Type"), std::string::npos);
}

clsRecType Sample(IShell* shell = nullptr) {
  clsRecType type(shell);
  type.SetID(1, 3, "RHD");
  type.AddField("RecID", fldText, 0, 3);
  type.AddField("RouteNumber", fldText, 0, 8);
  type.AddField("Count", fldZeroNumber, 0, 4);
  type.AddField("When", fldDate, 20, 8);  // told position: RecLen still grows by 8
  return type;
}

TEST(RecordEngine, RecordTypeParsesAndBuildsByName) {
  clsRecType type = Sample();
  EXPECT_EQ(type.RecLen(), 23);
  EXPECT_EQ(type.Fields()[2].Start, 12);
  EXPECT_EQ(type.Fields()[3].Start, 20);
  EXPECT_TRUE(type.TestID("RHD0001"));
  EXPECT_FALSE(type.TestID("rhd0001"));
  EXPECT_FALSE(type.TestID("RH"));
  EXPECT_THROW(type.AddField("routenumber", fldText, 0, 1), Failure);

  type.Parse("RHDROUTE-01");
  EXPECT_EQ(type.GetValue("routenumber"), Value("ROUTE-01"));
  EXPECT_EQ(type.GetValue("Count"), Value::Long(0));  // past the end of the line
  EXPECT_EQ(type.GetValue("Nothing"), Value());

  // Unset fields are skipped: their columns are blank only when a later
  // field reaches past them.
  type.Init();
  type.SetValue("Count", Value::Long(7));
  EXPECT_EQ(type.Buffer(0), "           0007");
  type.SetValue("RecID", Value("RHD"));
  type.SetValue("When", Value::Date(0));
  EXPECT_EQ(type.Buffer(30), "RHD        0007    00000000   ");
  type.Init();
  EXPECT_EQ(type.Buffer(126), std::string(126, ' '));
  // Never cut to the requested length.
  type.SetValue("When", Value::Long(0));
  EXPECT_EQ(type.Buffer(10).size(), 27u);
  // Values under names no field has are kept but not written.
  type.SetValue("Other", Value("x"));
  EXPECT_EQ(type.GetValue("OTHER"), Value("x"));

  // A value set after a parse stands beside the parsed ones; the next parse
  // takes every field from its own line again.
  type.Parse("RHDROUTE-010042");
  type.SetValue("Count", Value::Long(7));
  EXPECT_EQ(type.Buffer(0), "RHDROUTE-010007    00000000");
  type.Parse("RHDROUTE-020042");
  EXPECT_EQ(type.GetValue("Count"), Value::Long(42));
  EXPECT_EQ(type.GetValue("Other"), Value());

  // A kind holds 64 fields; one more is refused and leaves it as it was.
  clsRecType wide;
  for (int i = 0; i < 64; ++i) wide.AddField("F" + std::to_string(i), fldText, 0, 1);
  EXPECT_THROW(wide.AddField("F64", fldText, 0, 1), Failure);
  EXPECT_EQ(wide.RecLen(), 64);
  wide.SetText("F63", "x");
  EXPECT_EQ(wide.Buffer(0), std::string(63, ' ') + "x");
  wide.Parse(std::string(64, 'y'));
  EXPECT_EQ(wide.Buffer(0), std::string(64, 'y'));
}

// Texts and numbers read straight from the parsed line agree with the
// values a field gives, before and after they are taken, and a value set
// over a parsed field stands.
TEST(RecordEngine, TextsAndNumbersAreAsTheValuesGiveThem) {
  clsRecType type = Sample();
  type.Parse("RHD ROUTE-1 12x4");
  EXPECT_EQ(type.GetText("RouteNumber"), " ROUTE-1");
  EXPECT_EQ(type.GetNumber("Count"), 12);
  EXPECT_EQ(type.GetNumber("count"), NumberOf(type.GetValue("Count")));
  EXPECT_EQ(type.GetText("Count"), "12");
  EXPECT_EQ(type.GetText("When"), TextOf(type.GetValue("When")));  // past the end of the line
  EXPECT_EQ(type.GetText("Nothing"), "");
  type.Parse("RHD");
  EXPECT_EQ(type.GetNumber("Count"), 0);
  // A zero-filled number reads as its leading number, and as 0 past the
  // largest Long.
  for (const auto& [columns, number] : std::vector<std::pair<std::string, int32_t>>{{"0000012345", 12345},
                                                                                    {"", 0},
                                                                                    {"2147483647", 2147483647},
                                                                                    {"2147483648", 0},
                                                                                    {"999999999999999999", 0},
                                                                                    {"9999999999999999999", 0},
                                                                                    {" -12x", -12},
                                                                                    {"12 3", 12}}) {
    EXPECT_EQ(clsField::LeadingNumber(columns), number) << columns;
  }
  type.SetValue("RouteNumber", Value::Long(5));
  EXPECT_EQ(type.GetText("RouteNumber"), "5");
  EXPECT_EQ(type.GetNumber("RouteNumber"), 5);
}

// Texts and Longs are written over what a field held before the clear,
// whatever its kind, and build the lines their values build; fields not set
// since the clear stay out of the line.
TEST(RecordEngine, TextsAndLongsAreSetOverTheValuesBefore) {
  clsRecType inPlace = Sample();
  clsRecType byValue = Sample();
  using Set = std::pair<std::string, std::variant<std::string, int32_t>>;
  const std::vector<std::pair<std::vector<Set>, std::string>> lines = {
      {{{"RecID", "RHD"}, {"RouteNumber", "A ROUTE OF MANY LETTERS"}, {"Count", 7}}, "RHDA ROUTE 0007"},
      {{{"RecID", 12}, {"RouteNumber", 3}, {"Count", "12"}}, "12 3       0012"},
      {{{"RouteNumber", "R"}}, "   R       "},
  };
  for (const auto& [sets, line] : lines) {
    inPlace.Init();
    byValue.Init();
    for (const auto& [name, value] : sets) {
      if (const auto* text = std::get_if<std::string>(&value)) {
        inPlace.SetText(name, *text);
        byValue.SetValue(name, Value(*text));
      } else {
        inPlace.SetLong(name, std::get<int32_t>(value));
        byValue.SetValue(name, Value::Long(std::get<int32_t>(value)));
      }
    }
    EXPECT_EQ(inPlace.Buffer(0), line);
    EXPECT_EQ(byValue.Buffer(0), line);
  }
  inPlace.SetText("Other", "x");
  inPlace.SetLong("Another", 2);
  EXPECT_EQ(inPlace.GetValue("OTHER"), Value("x"));
  EXPECT_EQ(inPlace.GetValue("another"), Value::Long(2));
}

// The line as each field's last value makes it, written in field order over
// blanks: how a line is built, however its values were set.
std::string LineOfValues(const clsRecType& type, const std::vector<std::pair<std::string, Value>>& sets,
                         int16_t width) {
  std::string line(static_cast<size_t>(width), ' ');
  size_t end = 0;
  for (const clsField& field : type.Fields()) {
    const Value* last = nullptr;
    for (const auto& [name, value] : sets) {
      if (EqualsCaseBlind(name, field.FieldName)) last = &value;
    }
    if (last == nullptr) continue;
    field.Insert(line, *last);
    end = std::max(end, static_cast<size_t>(field.Start - 1 + field.Length));
  }
  line.resize(std::max(end, static_cast<size_t>(width)));
  return line;
}

// Texts and whole numbers are written into the line as they are set, in a
// kind whose fields lie apart; the line and the values read back are those
// of the values set, in any order, over a parse, and after the kind gains a
// field. Fields that share columns are written in field order.
TEST(RecordEngine, ALineWrittenAsItIsSetIsTheLineOfItsValues) {
  const auto mixed = [] {
    clsRecType type;
    type.AddField("RecID", fldText, 0, 3);
    type.AddField("Name", fldText, 0, 6);
    type.AddField("Count", fldZeroNumber, 0, 4);
    type.AddField("Small", fldInteger, 0, 3);
    type.AddField("At", fldTime, 0, 4);
    type.AddField("On", fldDate, 0, 8);
    type.AddField("Rate", fldLong, 0, 5);
    return type;
  };
  clsRecType sharing = mixed();
  sharing.AddField("Over", fldText, 5, 4);  // over Name and Count
  using Sets = std::vector<std::pair<std::string, Value>>;
  const std::vector<std::pair<std::string, Sets>> cases = {
      {"every kind of value",
       {{"RecID", "MTR"},
        {"Name", "AB"},
        {"Count", Value::Long(42)},
        {"Small", Value::Long(-7)},
        {"At", "1230"},
        {"On", Value::Date(45000)},
        {"Rate", Value::Long(12)}}},
      {"texts wider than their columns", {{"Name", "ABCDEFGHI"}, {"At", "123456"}, {"RecID", ""}}},
      {"digits in number fields",
       {{"Count", "5"}, {"Small", "123"}, {"Count", "0042"}, {"Small", "12x"}, {"Count", "12345"}}},
      {"numbers too wide, or below zero", {{"Count", Value::Long(123456)}, {"Small", Value::Long(-99)}}},
      {"later sets stand over earlier",
       {{"Name", "FIRST"},
        {"Name", Value::Long(3)},
        {"Count", Value::Long(9)},
        {"Count", Value::Double(2.5)},
        {"Small", "x"},
        {"Small", Value::Long(8)},
        {"Over", "OVER"},
        {"Name", "LAST"}}},
  };
  for (const auto& [label, sets] : cases) {
    for (clsRecType type : {mixed(), sharing}) {
      const size_t fields = type.Fields().size();
      type.Parse("XYZparsed0012");  // the sets stand over every parsed field
      type.Init();
      std::map<std::string, Value> last;
      for (const auto& [name, value] : sets) {
        if (value.IsText()) {
          type.SetText(name, value.Text());
        } else if (value.Kind() == ValueKind::Long) {
          type.SetLong(name, value.ToInt32());
        } else {
          type.SetValue(name, value);
        }
        last[name] = value;
      }
      EXPECT_EQ(type.Buffer(30), LineOfValues(type, sets, 30)) << label << ", fields " << fields;
      clsRecType grown = type;
      grown.AddField("Later", fldText, 0, 2);  // the values stay, and the line
      EXPECT_EQ(grown.Buffer(30), LineOfValues(grown, sets, 30)) << label << ", a field added";
      for (const clsRecType* kind : {&type, &grown}) {
        for (const auto& [name, value] : last) EXPECT_EQ(kind->GetValue(name), value) << label << ": " << name;
      }
      std::string text;
      type.GetText(Key<"Name">(), text);
      EXPECT_EQ(text, type.GetText("Name")) << label;
    }
  }
}

// A key finds the field of its name in each line kind apart, and a field a
// kind gains after the key was first looked for.
TEST(RecordEngine, AKeyFindsItsFieldInEachKind) {
  clsRecType first = Sample();
  clsRecType second;
  second.AddField("Count", fldZeroNumber, 0, 2);
  first.SetLong(Key<"Count">(), 7);
  second.SetLong(Key<"Count">(), 7);
  EXPECT_EQ(first.Buffer(0), "           0007");
  EXPECT_EQ(second.Buffer(0), "07");
  second.SetText(Key<"Extra">(), "x");  // no such field yet: kept aside
  EXPECT_EQ(second.GetValue("Extra"), Value("x"));
  second.AddField("Extra", fldText, 0, 3);
  second.Init();
  second.SetText(Key<"Extra">(), "abc");
  EXPECT_EQ(second.Buffer(0), "  abc");
  first.Parse("RHDROUTE-010042");
  EXPECT_EQ(first.GetText(Key<"RouteNumber">()), "ROUTE-01");
  EXPECT_EQ(first.GetNumber(Key<"Count">()), 42);
  EXPECT_EQ(first.GetText(Key<"Extra">()), "");  // a field of the other kind only
  EXPECT_EQ(second.GetNumber(Key<"Extra">()), 0);
  std::string into(40, 'x');
  first.GetText(Key<"RouteNumber">(), into);
  EXPECT_EQ(into, "ROUTE-01");
  first.GetText(Key<"Count">(), into);  // not a text field: as the value gives it
  EXPECT_EQ(into, "42");
}

// A name is remembered by where its text lies, and checked: a buffer that
// holds one name and then another finds each, and names from more places
// than are remembered are still found.
TEST(RecordEngine, NamesAreFoundWhateverBufferTheyComeIn) {
  clsRecType type = Sample();
  type.Parse("RHDROUTE-010042");
  char name[16] = "RouteNumber";
  EXPECT_EQ(type.GetValue(name), Value("ROUTE-01"));
  std::strcpy(name, "Count");
  EXPECT_EQ(type.GetValue(name), Value::Long(42));
  const std::vector<std::string> copies(200, "RecID");
  for (const std::string& copy : copies) EXPECT_EQ(type.GetValue(copy), Value("RHD"));
  std::strcpy(name, "routenumber");
  EXPECT_EQ(type.GetValue(name), Value("ROUTE-01"));
}

TEST(RecordEngine, FailureWhileBuildingIsShownAndGivesNothing) {
  TestShell shell;
  clsRecType type(&shell);
  type.AddField("A", fldText, 0, 2);
  type.AddField("B", fldText, -5, 2);  // an unusable column
  type.SetValue("A", Value("x"));
  type.SetValue("B", Value("y"));
  EXPECT_EQ(type.Buffer(10), "");
  EXPECT_EQ(shell.questions.size(), 1u);
}

}  // namespace
}  // namespace hifx::test
