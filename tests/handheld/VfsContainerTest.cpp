#include <gtest/gtest.h>

#include "base/Failure.h"
#include "handheld/clsPalmFileVFS.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

struct TypeCase {
  const char* name;
  std::string bytes;
  bool isVfs;
};

class VfsTypeTest : public testing::TestWithParam<TypeCase> {};

TEST_P(VfsTypeTest, FirstWordsMustBeARecordLengthUpTo65535) {
  TempDir dir;
  WriteBytes(dir / "f", GetParam().bytes);
  clsPalmFileVFS vfs;
  EXPECT_EQ(vfs.TestFileType(dir / "f"), GetParam().isVfs);
}

INSTANTIATE_TEST_SUITE_P(
    Starts, VfsTypeTest,
    testing::Values(TypeCase{"Empty", "", false}, TypeCase{"Length5", Hex("00000005"), true},
                    TypeCase{"HighWord", Hex("00010000"), false},
                    TypeCase{"Length65535", Hex("0000FFFF"), true},
                    TypeCase{"ZeroLength", Hex("00000000 41"), false},
                    TypeCase{"TwoBytes", Hex("0000"), false},
                    TypeCase{"PdbName", "RouteHIF", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VfsContainer, RecordsAreLengthPrefixedAndReadInSequence) {
  TempDir dir;
  const auto path = dir / "v.vfs";
  {
    clsPalmFileVFS vfs;
    std::string a, s;
    ASSERT_EQ(vfs.CreateFile(path, "ignored", "x", "y", 5, a, s), 0);
    vfs.WriteRecord("ABC");
    vfs.WriteRecord("");
    vfs.WriteRecord("DE");
  }
  EXPECT_EQ(ReadBytes(path), Hex("00000003") + "ABC" + Hex("00000000") + Hex("00000002") + "DE");

  clsPalmFileVFS reader;
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.RecordCount(), 0);
  EXPECT_EQ(reader.Title(), "");
  // The next record's data, "-" when the read gives False; the number asked for is ignored.
  const auto next = [&] {
    std::string data;
    int32_t number = 5;
    return reader.ReadRecord(number, data) ? data : "-";
  };
  EXPECT_EQ(next(), "ABC");
  EXPECT_EQ(reader.Position255(), 105);  // 7 of 17 bytes read
  EXPECT_EQ(next(), "-");                // a zero-length record reads as False though the file goes on
  EXPECT_EQ(next(), "DE");
  EXPECT_EQ(reader.Position255(), 255);
  EXPECT_EQ(next(), "-");
  reader.Rewind();
  EXPECT_EQ(next(), "ABC");
}

TEST(VfsContainer, LengthPastTheEndOrNoFileFailsCleanly) {
  TempDir dir;
  EXPECT_FALSE(clsPalmFileVFS().TestFileType(dir / "missing"));
  EXPECT_EQ(clsPalmFileVFS().OpenFile(dir / "missing"), fail::kFileNotFound);
  WriteBytes(dir / "t.vfs", Hex("00000010") + "AB");
  WriteBytes(dir / "huge.vfs", Hex("7FFFFFFF") + "AB");
  for (const char* name : {"t.vfs", "huge.vfs"}) {
    clsPalmFileVFS reader;
    ASSERT_EQ(reader.OpenFile(dir / name), 0);
    std::string data;
    int32_t number = -1;
    EXPECT_THROW(reader.ReadRecord(number, data), Failure) << name;
    EXPECT_FALSE(reader.ReadRecord(number, data)) << name;  // then at the end
  }
}

TEST(VfsContainer, CreateDoesNotTruncate) {
  TempDir dir;
  const auto path = dir / "old.vfs";
  WriteBytes(path, "0123456789");
  {
    clsPalmFileVFS vfs;
    std::string a, s;
    ASSERT_EQ(vfs.CreateFile(path, "", "", "", 0, a, s), 0);
    vfs.WriteRecord("A");
  }
  EXPECT_EQ(ReadBytes(path), Hex("00000001") + "A56789");
}

}  // namespace
}  // namespace hifx::test
