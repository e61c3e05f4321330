#include <gtest/gtest.h>

#include "base/Failure.h"
#include "handheld/clsPalmDB.h"
#include "support/FailureNumber.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

// A 2-byte, a 4-byte and a 1-byte number, then two texts.
class SmallSchema : public testing::Test {
 protected:
  void SetUp() override {
    db.AddField(kFieldInt16, " Word ");
    db.AddField(kFieldInt32, "Long");
    db.AddField(kFieldInt8, "Byte");
    db.AddField(kFieldText, "First");
    db.AddField(kFieldText, "Second");
    db.AddNew();
  }
  TestShell shell;
  clsPalmDB db{shell};
};

TEST_F(SmallSchema, NewRecordAndOffsets) {
  EXPECT_EQ(db.RawData(), std::string(9, '\0'));
  EXPECT_EQ(db.Field(1).name, "Word");  // trimmed
  // Numbers by byte offset, texts by their place among the texts.
  std::vector<int> positions;
  for (int16_t f = 1; f <= 5; ++f) positions.push_back(db.Field(f).position);
  EXPECT_EQ(positions, (std::vector<int>{0, 2, 6, 1, 2}));
  EXPECT_EQ(db.FixedLength(), 7);
  EXPECT_EQ(db.FieldCount(), 5);
}

TEST_F(SmallSchema, TextsAreReplacedInPlace) {
  db.SetItem("Second", Value("XYZ"));
  db.SetItem("First", Value("AB"));
  EXPECT_EQ(db.Item("Second"), Value("XYZ"));  // the later text stays put
  db.SetItem("Second", Value(""));
  EXPECT_EQ(db.RawData().substr(7), Hex("41 42 00 00"));
  EXPECT_EQ(db.Item("first"), Value("AB"));
  db.SetItem("First", Value::Long(-12));
  EXPECT_EQ(db.Item("First"), Value("-12"));
  int16_t ordinal = 5;
  EXPECT_EQ(db.GetString(ordinal), "");  // beyond the last text
  EXPECT_EQ(ordinal, 3);                 // walked down as far as the texts went
}

TEST_F(SmallSchema, NumbersReadUnsigned) {
  db.SetItem("Word", Value::Long(0xFFFF));
  db.SetItem("Long", Value::Long(-1));
  db.SetItem("Byte", Value::Long(-1));
  EXPECT_EQ(db.Item("Word"), Value::Long(65535));
  EXPECT_EQ(db.Item("Long"), Value::Long(0x00FFFFFF));
  EXPECT_EQ(db.Item("Byte"), Value::Integer(255));
  db.SetRawData(Hex("0000 FFFFFFFF 00") + std::string(2, '\0'));
  EXPECT_EQ(db.Item("Long"), Value::Long(0));  // top bit set reads as 0, not -1
  db.SetItem("Long", Value("1231"));           // a text is stored as characters
  EXPECT_EQ(db.RawData().substr(2, 4), "1231");
}

TEST_F(SmallSchema, FindItemIgnoresCaseAndBounds) {
  EXPECT_EQ(db.FindItem("LONG"), 2);
  EXPECT_EQ(db.FindItem("none"), 0);
  EXPECT_EQ(db.FindItem(5), 5);
  EXPECT_EQ(db.FindItem(6), 0);
  EXPECT_TRUE(db.Item(6).IsNull());
  EXPECT_TRUE(db.Item("none").IsNull());
  EXPECT_TRUE(shell.questions.empty());  // an unknown field reads silently
}

TEST_F(SmallSchema, UnknownFieldOnWriteIsReported) {
  const std::string before = db.RawData();
  db.SetItem("Bogus", Value::Long(1));
  EXPECT_EQ(shell.Asked(), std::vector<std::string>{"Bogus not valid field in Record"});
  EXPECT_EQ(db.RawData(), before);
}

TEST_F(SmallSchema, ShortRecordReadShowsTheFailureAndGivesEmpty) {
  db.SetRawData(Hex("0001 00"));
  EXPECT_EQ(db.Item("Word"), Value::Long(1));
  EXPECT_TRUE(db.Item("Long").IsEmpty());
  EXPECT_EQ(shell.Asked(), std::vector<std::string>{"Subscript out of range"});
}

// A new record takes its texts by adding them to its end while they come in
// order; a record read whole takes them in place. Any order of setting, and
// reading between, gives the same bytes either way.
TEST(PalmDB, ANewRecordsTextsComeOutAsTheyWouldInPlace) {
  using Steps = std::vector<std::pair<std::string, std::string>>;  // field, text; "?" reads it
  const std::vector<std::pair<Steps, std::string>> cases = {
      // the steps, what they read
      {{{"A", "one"}, {"C", "three"}}, ""},                           // in order, B and D left empty
      {{{"D", "four"}, {"B", "two"}, {"C", "3"}}, ""},                // back to an earlier one
      {{{"A", "x"}, {"B", std::string("t\0u", 3)}, {"C", "c"}}, ""},  // a NUL shifts the later texts
      {{{"B", "b"}, {"B", "?"}, {"C", "c"}, {"A", "?"}, {"D", "d"}}, "b||"},
      {{{"C", ""}, {"D", "dd"}, {"Num", "7"}, {"A", "a"}}, ""},
      {{{"A", "a"}, {"Num", "'12x"}, {"C", "c"}}, ""},  // a text into the number on the way
      // After a NUL a text left out keeps what moved into its place, and one
      // set empty does not.
      {{{"A", std::string("x\0y", 3)}, {"C", ""}, {"D", "d"}}, ""},
      {{{"A", std::string("x\0y", 3)}, {"B", ""}, {"D", "d"}}, ""},
      {{{"B", "b"}, {"C", std::string("\0", 1)}, {"D", "?"}, {"A", "a"}}, "|"},
  };
  for (const auto& [steps, reads] : cases) {
    TestShell shell;
    clsPalmDB filled{shell};
    clsPalmDB inPlace{shell};
    for (clsPalmDB* db : {&filled, &inPlace}) {
      db->AddField(kFieldInt16, "Num");
      for (const char* name : {"A", "B", "C", "D"}) db->AddField(kFieldText, name);
    }
    filled.AddNew();
    inPlace.SetRawData(std::string(2 + 4, '\0'));
    std::string readBack[2];
    for (const auto& [field, text] : steps) {
      for (int k : {0, 1}) {
        clsPalmDB& db = k == 0 ? filled : inPlace;
        if (text == "?") {
          readBack[k] += db.Item(field).ToText() + "|";
        } else {
          const bool number = field == "Num" && text[0] != '\'';
          db.SetItem(field, number ? Value::Long(std::stoi(text)) : Value(text.substr(field == "Num" ? 1 : 0)));
        }
      }
    }
    EXPECT_EQ(filled.RawData(), inPlace.RawData()) << steps.front().first << steps.front().second;
    EXPECT_EQ(filled.Item("D"), inPlace.Item("D"));
    EXPECT_EQ(readBack[0], reads);
    EXPECT_EQ(readBack[1], reads);
  }
  TestShell shell;
  clsPalmDB db{shell};
  db.AddField(kFieldInt8, "Num");
  for (const char* name : {"A", "B", "C"}) db.AddField(kFieldText, name);
  db.AddNew();
  db.SetItem("B", Value("hi"));
  EXPECT_EQ(db.GetInt16(4), 0);  // a number read from the texts still to come finds them, empty
  EXPECT_EQ(db.RawData(), Hex("00 00 6869 00 00"));
  EXPECT_TRUE(shell.questions.empty());
}

TEST(PalmDB, HandBuiltRecordsGrowBySetInt16AndAppendString) {
  TestShell shell;
  clsPalmDB db(shell);
  db.SetRawData("XYZW");
  EXPECT_EQ(db.AppendString(3, "AB", true), 6);
  EXPECT_EQ(db.RawData(), std::string("XYZAB\0", 6));
  EXPECT_EQ(db.AppendString(3, "ABC", true), 8);
  EXPECT_EQ(db.RawData(), std::string("XYZABC\0\0", 8));
  EXPECT_EQ(db.AppendString(8, "A", false), 10);
  EXPECT_EQ(db.SetInt16(10, Value::Long(-1)), 12);  // at the end: grows by two
  EXPECT_EQ(db.RawData().size(), 12u);
  EXPECT_EQ(db.RawData().substr(10), Hex("FFFF"));
  EXPECT_EQ(db.SetInt16(13, Value::Long(1)), 15);  // past the end: nothing changes
  EXPECT_EQ(db.RawData().size(), 12u);
  EXPECT_EQ(db.SetInt32(10, Value::Long(0x01020304)), 14);  // partly past: cut
  EXPECT_EQ(db.RawData().substr(10), Hex("0102"));
  db.SetInt8(40, Value::Long(1));
  EXPECT_EQ(db.RawData().size(), 12u);
  db.SetRawData(std::string(32766, 'a'));  // a record is at most 32767 bytes
  EXPECT_EQ(FailureNumber([&] { db.AppendString(32766, "b", false); }), fail::kOverflow);
}

TEST(PalmDB, OpenDBTriesVfsFirst) {
  TempDir dir;
  WriteBytes(dir / "v", Hex("00000001 41"));
  WriteBytes(dir / "p", std::string("RouteHIF") + std::string(70, '\0'));
  TestShell shell;
  clsPalmDB db(shell);
  EXPECT_EQ(db.OpenDB(dir / "v", -1), 0);
  EXPECT_EQ(db.GetType(), kFileVFS);
  EXPECT_EQ(db.OpenDB(dir / "p", -1), 0);
  EXPECT_EQ(db.GetType(), kFilePDB);
  EXPECT_EQ(db.OpenDB(dir / "missing", -1), -1);
}

TEST(PalmDB, UnknownContainerTypeFailsOnUse) {
  TempDir dir;
  TestShell shell;
  clsPalmDB db(shell);
  std::string a, s;
  EXPECT_THROW(db.CreateDB(7, dir / "x", "t", "c", "d", 0, a, s), Failure);
  EXPECT_THROW(db.WriteData(), Failure);
}

}  // namespace
}  // namespace hifx::test
