#include <gtest/gtest.h>

#include "base/DateSerial.h"
#include "base/Failure.h"
#include "handheld/clsPalmFilePDB.h"
#include "support/FailureNumber.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

void Create(clsPalmFilePDB& pdb, const std::filesystem::path& path, int32_t slots,
            std::string_view title = "T", std::string_view creator = "qHVN",
            std::string_view type = "DATA") {
  std::string appInfo = "a";
  std::string sortInfo = "s";
  ASSERT_EQ(pdb.CreateFile(path, title, creator, type, slots, appInfo, sortInfo), 0);
  EXPECT_EQ(appInfo, "");
  EXPECT_EQ(sortInfo, "");
}

// A header as the container writes it: name, zeros, type, creator, zeros.
std::string Header(std::string name, const std::string& type, const std::string& creator,
                   int count) {
  name.resize(32, '\0');
  std::string h = name + std::string(28, '\0') + type + creator + std::string(8, '\0');
  h += static_cast<char>(count >> 8);
  h += static_cast<char>(count & 0xFF);
  return h;
}

TEST(PdbContainer, TwoRecordsInThreeSlotsMake107Bytes) {
  TempDir dir;
  const auto path = dir / "two.pdb";
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 3);
    EXPECT_TRUE(pdb.WriteRecord("AB"));
    EXPECT_TRUE(pdb.WriteRecord("CDE"));
  }
  const std::string expected = Header("T", "DATA", "qHVN", 2) +
                               Hex("00000066 00 00 0000  00000068 00 00 0001  0000000000000000") +
                               "ABCDE";
  ASSERT_EQ(expected.size(), 107u);
  EXPECT_EQ(ReadBytes(path), expected);

  clsPalmFilePDB reader;
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.RecordCount(), 2);
  int32_t number = 1;
  std::string data;
  EXPECT_TRUE(reader.ReadRecord(number, data));
  EXPECT_EQ(data, "CDE");
  EXPECT_EQ(reader.Title(), "T");
}

TEST(PdbContainer, EmptyFileHasTheDefault999Slots) {
  TempDir dir;
  const auto path = dir / "empty.pdb";
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 0);
  }
  const std::string bytes = ReadBytes(path);
  ASSERT_EQ(bytes.size(), 8070u);
  EXPECT_EQ(bytes.substr(78), std::string(8 * 999, '\0'));
  clsPalmFilePDB reader;
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.RecordCount(), 0);
}

TEST(PdbContainer, TitleIsCutAt32AndShortFieldsArePadded) {
  TempDir dir;
  const auto path = dir / "t.pdb";
  const std::string longTitle = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 1, longTitle, "ab", "X");
  }
  const std::string bytes = ReadBytes(path);
  EXPECT_EQ(bytes.substr(0, 32), longTitle.substr(0, 32));
  EXPECT_EQ(bytes.substr(60, 4), std::string("X\0\0\0", 4));
  EXPECT_EQ(bytes.substr(64, 4), std::string("ab\0\0", 4));
  clsPalmFilePDB reader;
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.Title(), longTitle.substr(0, 32));
  // The getters keep their odd decimal form: "a" (97) gives the code of "9".
  EXPECT_EQ(reader.Creator(), "57574848");
}

TEST(PdbContainer, EveryRecordIsOnDiskBeforeTheNextOne) {
  TempDir dir;
  const auto path = dir / "live.pdb";
  clsPalmFilePDB writer;
  Create(writer, path, 5);
  for (int i = 0; i < 4; ++i) {
    writer.WriteRecord(std::string(static_cast<size_t>(i + 1), static_cast<char>('a' + i)));
    // Another reader sees a well-formed file with every record so far, as a
    // run killed at this point would leave it.
    clsPalmFilePDB reader;
    ASSERT_EQ(reader.OpenFile(path), 0);
    ASSERT_EQ(reader.RecordCount(), i + 1);
    int32_t number = i;
    std::string data;
    ASSERT_TRUE(reader.ReadRecord(number, data));
    EXPECT_EQ(data, std::string(static_cast<size_t>(i + 1), static_cast<char>('a' + i)));
  }
}

TEST(PdbContainer, SequentialAndNumberedReadsMoveThePosition) {
  TempDir dir;
  const auto path = dir / "r.pdb";
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 3);
    pdb.WriteRecord("A");
    pdb.WriteRecord("B");
    pdb.WriteRecord("C");
  }
  clsPalmFilePDB reader;
  ASSERT_EQ(reader.OpenFile(path), 0);
  std::string data;
  int32_t number = -1;
  ASSERT_TRUE(reader.ReadRecord(number, data));
  EXPECT_EQ(number, 0);
  EXPECT_EQ(data, "A");
  // A read by number leaves the position on that record: the next
  // sequential read gives it again.
  number = 2;
  ASSERT_TRUE(reader.ReadRecord(number, data));
  number = -1;
  ASSERT_TRUE(reader.ReadRecord(number, data));
  EXPECT_EQ(data, "C");
  EXPECT_EQ(reader.Position255(), 382);  // 3 * 255 / 2 = 382.5, to the even 382, not clamped
  number = -1;
  EXPECT_FALSE(reader.ReadRecord(number, data));
  EXPECT_EQ(number, -1);
  EXPECT_EQ(data, "");
  // A number at or above the count fails and still moves the position.
  number = 7;
  data = "x";
  EXPECT_FALSE(reader.ReadRecord(number, data));
  EXPECT_EQ(data, "");
  reader.Rewind();
  number = -1;
  ASSERT_TRUE(reader.ReadRecord(number, data));
  EXPECT_EQ(data, "A");
  EXPECT_EQ(reader.Position255(), 128);  // 1 * 255 / 2 = 127.5, to the even 128
}

TEST(PdbContainer, RecordCountLimitIs32767) {
  TempDir dir;
  const auto ok = dir / "ok.pdb";
  const auto bad = dir / "bad.pdb";
  WriteBytes(ok, Header("X", "DATA", "qHVN", 32767));
  WriteBytes(bad, Header("X", "DATA", "qHVN", 32768));
  clsPalmFilePDB pdb;
  EXPECT_EQ(pdb.OpenFile(ok), 0);
  EXPECT_EQ(pdb.RecordCount(), 32767);
  EXPECT_EQ(pdb.OpenFile(bad), fail::kOverflow);
  EXPECT_FALSE(pdb.TestFileType(bad));
  EXPECT_TRUE(pdb.TestFileType(ok));
}

TEST(PdbContainer, ShortOrMissingFiles) {
  TempDir dir;
  WriteBytes(dir / "zero", "");
  WriteBytes(dir / "short", "abc");
  clsPalmFilePDB pdb;
  EXPECT_EQ(pdb.OpenFile(dir / "zero"), 0);
  EXPECT_EQ(pdb.RecordCount(), 0);
  EXPECT_EQ(pdb.OpenFile(dir / "short"), 0);
  EXPECT_EQ(pdb.Title(), "abc");
  EXPECT_EQ(pdb.OpenFile(dir / "missing"), fail::kFileNotFound);
  EXPECT_FALSE(pdb.TestFileType(dir / "missing"));
  EXPECT_FALSE(pdb.TestFileType(dir.path()));
}

TEST(PdbContainer, DatesWithTheTopBitSetReadAsZero) {
  TempDir dir;
  std::string bytes = Header("X", "DATA", "qHVN", 0);
  bytes[36] = static_cast<char>(0x80);  // creation: 1972 onward in Palm seconds
  bytes[43] = 60;                       // modification: one minute after 1904
  WriteBytes(dir / "d.pdb", bytes);
  clsPalmFilePDB pdb;
  ASSERT_EQ(pdb.OpenFile(dir / "d.pdb"), 0);
  EXPECT_EQ(pdb.CreateDate(), 0.0);
  EXPECT_DOUBLE_EQ(pdb.ModifyDate(), kPalmEpochSerial + 60.0 / 86400.0);
}

TEST(PdbContainer, BadTablesFailCleanly) {
  TempDir dir;
  // Record 0 ends before it starts; record 1 runs past the end of the file.
  const std::string bytes = Header("X", "DATA", "qHVN", 2) +
                            Hex("00000070 00000000 00000060 00000001") + "ABCDEFGHIJ";
  WriteBytes(dir / "bad.pdb", bytes);
  clsPalmFilePDB pdb;
  ASSERT_EQ(pdb.OpenFile(dir / "bad.pdb"), 0);
  std::string data;
  int32_t number = 0;
  EXPECT_THROW(pdb.ReadRecord(number, data), Failure);
  const std::string past = Header("X", "DATA", "qHVN", 2) +
                           Hex("0000005E 00000000 7FFFFFF0 00000001") + "AB";
  WriteBytes(dir / "past.pdb", past);
  ASSERT_EQ(pdb.OpenFile(dir / "past.pdb"), 0);
  number = 0;
  EXPECT_EQ(FailureNumber([&] { pdb.ReadRecord(number, data); }), fail::kPastEnd);
}

TEST(PdbContainer, WritingPastTheTableFailsAfterTheDataIsOut) {
  TempDir dir;
  const auto path = dir / "over.pdb";
  clsPalmFilePDB pdb;
  Create(pdb, path, 1);
  pdb.WriteRecord("AAAAAAAAAA");
  // Slot 1 is only the in-memory end slot: its write lands over the first
  // bytes of record 0, the count becomes 2, and only then the write fails.
  EXPECT_EQ(FailureNumber([&] { pdb.WriteRecord("BB"); }), fail::kSubscript);
  const std::string bytes = ReadBytes(path);
  ASSERT_EQ(bytes.size(), 78u + 8 + 10 + 2);
  EXPECT_EQ(bytes[77], 2);
  EXPECT_EQ(bytes.substr(86, 8), Hex("00000060 00000001"));
  EXPECT_EQ(bytes.substr(94), "AABB");
  EXPECT_THROW(pdb.WriteRecord("CC"), Failure);
}

TEST(PdbContainer, CreateDoesNotTruncate) {
  TempDir dir;
  const auto path = dir / "old.pdb";
  WriteBytes(path, std::string(9000, 'z'));
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 2);
    pdb.WriteRecord("R");
  }
  const std::string bytes = ReadBytes(path);
  EXPECT_EQ(bytes.size(), 9001u);
  EXPECT_EQ(bytes.substr(78, 4), Hex("00002328"));  // the record went behind the old bytes
}

}  // namespace
}  // namespace hifx::test
