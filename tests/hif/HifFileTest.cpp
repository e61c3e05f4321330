#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "hif/clsHIF.h"
#include "support/SampleHif.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

TEST(HifFile, IdentityAndRecordsOnDisk) {
  TempDir dir;
  TestShell shell;
  const auto path = dir / "route.pdb";
  const auto records = WriteSampleHif(shell, path, kFilePDB);
  EXPECT_TRUE(shell.questions.empty());
  const std::string bytes = ReadBytes(path);
  EXPECT_EQ(bytes.substr(0, 32), std::string("RouteHIF") + std::string(24, '\0'));
  EXPECT_EQ(bytes.substr(32, 28), std::string(28, '\0'));
  EXPECT_EQ(bytes.substr(60, 8), "DATAqHVN");
  EXPECT_EQ(bytes.substr(68, 10), Hex("00000000 00000000 0007"));
  std::string joined;
  for (const auto& r : records) joined += r;
  EXPECT_EQ(bytes.substr(78 + 8 * 10), joined);
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
    const auto meter = hif.GetValues();
    EXPECT_EQ(meter.Item("MeterTagNbr"), Value::Long(50012345));
    EXPECT_EQ(meter.Item("MeterType"), Value::Integer('W'));
    EXPECT_EQ(meter.Item("MaxReading"), Value::Long(1734));
    EXPECT_EQ(meter.Item("BillingName"), Value("O'BRIEN, J"));
    EXPECT_EQ(meter.Item("User1"), Value("acct~10"));
    EXPECT_EQ(meter.Item("User5"), Value(""));
    EXPECT_EQ(meter.Item("InitTamperCount"), Value::Long(0));
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
    clsHIF hif(shell);
    hif.CreateHIF(dir / name, kFilePDB, 2);
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(recType));
    hif.SetItem("MeterType", Value::Long(meterType));
    hif.WriteData();
  };
  writeFirst("v2", 0, 2);
  writeFirst("route_first", 1, 3);
  writeFirst("zero_type", 0, 0);
  {
    clsHIF empty(shell);
    empty.CreateHIF(dir / "empty", kFilePDB, 0);
  }
  EXPECT_EQ(ReadFileVersion(shell, dir / "v2"), 2);
  EXPECT_EQ(ReadFileVersion(shell, dir / "route_first"), 0);
  EXPECT_EQ(ReadFileVersion(shell, dir / "zero_type"), 0);
  EXPECT_EQ(ReadFileVersion(shell, dir / "empty"), 0);
  EXPECT_EQ(ReadFileVersion(shell, dir / "missing"), -1);
  clsHIF hif(shell);
  EXPECT_TRUE(hif.OpenHIF(dir / "missing"));  // True means it failed
}

TEST(HifFile, AShortRecordReadThroughANewerSchemaShowsTheShortRead) {
  TempDir dir;
  TestShell shell;
  const auto path = dir / "v0.pdb";
  {
    clsHIF hif(shell);  // schema 0: 15 bytes a record
    hif.CreateHIF(path, kFilePDB, 1);
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecMeter));
    hif.SetItem("MeterTagNbr", Value::Long(77));
    hif.WriteData();
  }
  EXPECT_EQ(ReadFileVersion(shell, path), 0);
  clsHIF hif(shell);
  hif.SetVersion(1);
  ASSERT_FALSE(hif.OpenHIF(path));
  ASSERT_TRUE(hif.ReadData());
  EXPECT_EQ(hif.Item("MeterTagNbr"), Value::Long(77));
  EXPECT_TRUE(hif.Item("Digits").IsEmpty());  // offset 15 lies past the record
  EXPECT_TRUE(hif.Item("PrvReading").IsEmpty());
  EXPECT_EQ(hif.Item("Initials"), Value(""));
  ASSERT_EQ(shell.questions.size(), 2u);
  EXPECT_EQ(shell.questions[0].text, "Subscript out of range");
}

// Palm::PDB, the Perl module of Debian's libpalm-perl, reads the file on its
// own and must see the same name, type, creator and records.
TEST(HifFile, PalmPdbPerlModuleAgrees) {
  TempDir dir;
  TestShell shell;
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

}  // namespace
}  // namespace hifx::test
