#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "hif/HifView.h"
#include "hif/clsHIF.h"
#include "support/HifImage.h"
#include "support/SampleHif.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

TEST(HifFile, IdentityAndRecordsOnDisk) {
  TempDir dir;
  TestShell shell;
  const auto records = WriteSampleHif(shell, dir / "route.pdb", kFilePDB);
  EXPECT_TRUE(shell.questions.empty());
  // Named RouteHIF, of type DATA and creator qHVN, in a table of ten slots.
  EXPECT_EQ(ReadBytes(dir / "route.pdb"), PdbImage(10, records));
  // A version-3 meter: 76 fixed bytes and 13 texts.
  EXPECT_EQ(records[3].substr(0, 15), Hex("0002 00000001 0000000A 02FB20B9 57"));
}

TEST(HifFile, ReadBackByFieldNameInBothContainers) {
  for (const int32_t type : {kFilePDB, kFileVFS}) {
    TempDir dir;
    TestShell shell;
    const auto path = dir / "route.hif";
    WriteSampleHif(shell, path, type);
    EXPECT_EQ(ReadFileVersion(shell, path), 3);
    clsHIF hif(shell);
    hif.SetVersion(3);
    ASSERT_FALSE(hif.OpenHIF(path));  // False means it opened
    EXPECT_EQ(hif.GetType(), type);
    EXPECT_EQ(hif.RecordCount(), type == kFilePDB ? 7 : 0);
    ASSERT_TRUE(hif.ReadData());
    EXPECT_EQ(hif.Item("RecType"), Value::Long(0));
    EXPECT_EQ(hif.Item("Initials"), Value("HIF loaded from route.txt"));
    ASSERT_TRUE(hif.ReadData());
    ASSERT_TRUE(hif.ReadData());
    EXPECT_EQ(hif.Item("ResponseText"), Value("SOUTH"));
    ASSERT_TRUE(hif.ReadData());
    for (const auto& [field, value] : {std::pair{"MeterTagNbr", Value::Long(50012345)}, {"MeterType", Value::Integer('W')},
                                       {"MaxReading", Value::Long(1734)}, {"BillingName", Value("O'BRIEN, J")},
                                       {"User1", Value("acct~10")}, {"User5", Value("")}, {"InitTamperCount", Value::Long(0)}}) {
      EXPECT_EQ(hif.Item(field), value) << field;
    }
    int more = 0;
    while (hif.ReadData()) ++more;
    EXPECT_EQ(more, 3);
    hif.Rewind();
    ASSERT_TRUE(hif.ReadData());
    EXPECT_EQ(hif.Item("RecType"), Value::Long(0));
    EXPECT_TRUE(shell.questions.empty());
  }
}

TEST(HifFile, VersionComesFromTheFirstRecord) {
  TempDir dir;
  TestShell shell;
  auto writeFirst = [&](const std::string& name, int32_t recType, int32_t meterType) {
    HifWriter(shell, dir / name, 0, kFilePDB, 2).Add({{"RecType", recType}, {"MeterType", meterType}});
  };
  writeFirst("v2", 0, 2);
  writeFirst("route_first", 1, 3);
  writeFirst("zero_type", 0, 0);
  HifWriter(shell, dir / "empty", 0, kFilePDB, 0);  // no records
  for (const auto& [name, version] : {std::pair{"v2", 2}, {"route_first", 0}, {"zero_type", 0}, {"empty", 0}, {"missing", -1}}) {
    EXPECT_EQ(ReadFileVersion(shell, dir / name), version) << name;
  }
  clsHIF hif(shell);
  EXPECT_TRUE(hif.OpenHIF(dir / "missing"));  // True means it failed
}

TEST(HifFile, AShortRecordReadThroughANewerSchemaShowsTheShortRead) {
  TempDir dir;
  TestShell shell;
  const auto path = dir / "v0.pdb";
  HifWriter(shell, path, 0, kFilePDB, 1).Add({{"RecType", kRecMeter}, {"MeterTagNbr", 77}});  // 15 bytes
  EXPECT_EQ(ReadFileVersion(shell, path), 0);
  clsHIF hif(shell);
  hif.SetVersion(1);
  ASSERT_FALSE(hif.OpenHIF(path));
  ASSERT_TRUE(hif.ReadData());
  EXPECT_EQ(hif.Item("MeterTagNbr"), Value::Long(77));
  EXPECT_TRUE(hif.Item("Digits").IsEmpty());  // offset 15 lies past the record
  EXPECT_TRUE(hif.Item("PrvReading").IsEmpty());
  EXPECT_EQ(hif.Item("Initials"), Value(""));
  EXPECT_EQ(shell.Asked(), std::vector<std::string>(2, "Subscript out of range"));
}

// Palm::PDB, the Perl module of Debian's libpalm-perl, reads the file on its
// own and must see the same name, type, creator and records.
TEST(HifFile, PalmPdbPerlModuleAgrees) {
  TempDir dir;
  TestShell shell;
#ifdef _WIN32
  GTEST_SKIP() << "Palm::PDB is a Perl module of the Linux build";
#endif
  const auto path = dir / "route.pdb";
  const auto records = WriteSampleHif(shell, path, kFilePDB);
  const auto expected = dir / "expected.hex";
  {
    std::ofstream out(expected);
    for (const auto& r : records) {
      for (const char c : r) {
        static constexpr char kHex[] = "0123456789abcdef";
        out << kHex[static_cast<unsigned char>(c) >> 4] << kHex[static_cast<unsigned char>(c) & 15];
      }
      out << '\n';
    }
  }
  const std::string command = std::string("perl ") + HIFX_TEST_SOURCE_DIR +
                              "/hif/palm_pdb_check.pl '" + path.string() + "' '" +
                              expected.string() + "'";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

// A text in JSON: plain bytes as they are, a quote and a backslash behind a
// backslash, every other byte as the Latin-1 character of its code,
// wherever in a long text it falls.
TEST(HifDump, TextsAreEscapedWhereverTheBytesFall) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\"\""},
      {"12 MAIN STREET, APT 4~", "\"12 MAIN STREET, APT 4~\""},
      {"SAID \"HI\" C:\\X", "\"SAID \\\"HI\\\" C:\\\\X\""},
      {std::string("TAB\tAT 3, DEL\x7F AND \xE9 AT 20\x1F"), "\"TAB\\u0009AT 3, DEL\\u007f AND \\u00e9 AT 20\\u001f\""},
      {std::string("ABCDEFGH\0", 9), "\"ABCDEFGH\\u0000\""},
  };
  for (const auto& [text, json] : cases) {
    std::string out = "<";
    AppendJsonText(out, text);
    EXPECT_EQ(out, "<" + json) << text;
  }
}

// One writer for a whole file names the fields of the field list in force,
// even when it changes between records.
TEST(HifDump, AWriterFollowsAChangeOfTheFieldList) {
  TempDir dir;
  TestShell shell;
  WriteSampleHif(shell, dir / "route.pdb", kFilePDB);
  clsHIF hif(shell);
  hif.SetVersion(3);
  ASSERT_FALSE(hif.OpenHIF(dir / "route.pdb"));
  for (int record = 0; record < 4; ++record) ASSERT_TRUE(hif.ReadData());  // the first meter
  RecordJsonWriter writer;
  std::string three, one;
  writer.Append(three, hif);
  EXPECT_EQ(three, RecordToJson(hif));
  hif.SetVersion(1);
  writer.Append(one, hif);
  EXPECT_EQ(one, RecordToJson(hif));
  EXPECT_NE(one, three);
}

// A record is written straight from its bytes: numbers where the field list
// puts them, texts one after another up to each NUL or the record's end.
// One too short for its numbers is read field by field, its missing numbers
// as null.
TEST(HifDump, FieldsAreReadWhereTheyLieInTheRecord) {
  TestShell shell;
  clsHIF hif(shell);
  clsPalmDB& db = hif.DB();
  db.ClearSchema();
  db.AddField(kFieldInt16, "RecType");
  db.AddField(kFieldInt32, "Reading");
  db.AddField(kFieldText, "Name");
  db.AddField(kFieldInt8, "Flag", 6);  // placed by hand behind the texts' field
  db.AddField(kFieldText, "Note");
  const std::string numbers = Hex("0002 0000002A 07");
  const std::pair<std::string, std::string> cases[] = {
      {numbers + std::string("AB\0C\"D\\\x01\0", 9),
       R"({"RecType":2,"Reading":42,"Name":"AB","Flag":7,"Note":"C\"D\\\u0001"})"},
      {numbers + "AB" + std::string(1, '\0') + "CD", R"({"RecType":2,"Reading":42,"Name":"AB","Flag":7,"Note":"CD"})"},
      {numbers + std::string("\0\xE9\0", 3), R"({"RecType":2,"Reading":42,"Name":"","Flag":7,"Note":"\u00e9"})"},
      {numbers, R"({"RecType":2,"Reading":42,"Name":"","Flag":7,"Note":""})"},
      {Hex("0002 FFFFFFFF 00"), R"({"RecType":2,"Reading":0,"Name":"","Flag":0,"Note":""})"},
      {Hex("0002 0000"), R"({"RecType":2,"Reading":null,"Name":"","Flag":null,"Note":""})"},
  };
  RecordJsonWriter writer;
  for (const auto& [bytes, json] : cases) {
    db.SetRawData(bytes);
    std::string out;
    writer.Append(out, hif);
    EXPECT_EQ(out, json);
  }
  EXPECT_EQ(shell.Asked(), std::vector<std::string>(2, "Subscript out of range"));  // the short record only
}

}  // namespace
}  // namespace hifx::test
