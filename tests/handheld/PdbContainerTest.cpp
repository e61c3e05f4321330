#include <gtest/gtest.h>

#include "base/DateSerial.h"
#include "base/Failure.h"
#include "handheld/clsPalmFilePDB.h"
#include "support/FailureNumber.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

void Create(clsPalmFilePDB& pdb, const std::filesystem::path& path, int32_t slots, std::string_view title = "T",
            std::string_view creator = "qHVN", std::string_view type = "DATA") {
  std::string appInfo = "a";
  std::string sortInfo = "s";
  ASSERT_EQ(pdb.CreateFile(path, title, creator, type, slots, appInfo, sortInfo), 0);
  EXPECT_EQ(appInfo, "");
  EXPECT_EQ(sortInfo, "");
}

// A file of these records in that many slots, written and closed.
void WritePdb(const std::filesystem::path& path, int32_t slots, const std::vector<std::string>& records) {
  clsPalmFilePDB pdb;
  Create(pdb, path, slots);
  for (const auto& r : records) EXPECT_TRUE(pdb.WriteRecord(r));
}

// A header as the container writes it: name, zeros, type, creator, zeros.
std::string Header(std::string name, int count) {
  name.resize(32, '\0');
  return name + std::string(28, '\0') + "DATAqHVN" + std::string(8, '\0') + BigEndian(count, 2);
}

class PdbContainer : public testing::Test {
 protected:
  // One read of record `number` (-1: the next), as "ok|no NUMBER DATA".
  std::string Read(clsPalmFilePDB& from, int32_t number) {
    std::string data = "x";
    const bool ok = from.ReadRecord(number, data);
    return (ok ? "ok " : "no ") + std::to_string(number) + " " + data;
  }
  std::string Read(int32_t number) { return Read(reader, number); }

  TempDir dir;
  clsPalmFilePDB reader;
};

TEST_F(PdbContainer, TwoRecordsInThreeSlotsMake107Bytes) {
  WritePdb(dir / "two.pdb", 3, {"AB", "CDE"});
  const std::string expected =
      Header("T", 2) + Hex("00000066 00 00 0000  00000068 00 00 0001  0000000000000000") + "ABCDE";
  ASSERT_EQ(expected.size(), 107u);
  EXPECT_EQ(ReadBytes(dir / "two.pdb"), expected);
  ASSERT_EQ(reader.OpenFile(dir / "two.pdb"), 0);
  EXPECT_EQ(reader.RecordCount(), 2);
  EXPECT_EQ(Read(1) + "|" + reader.Title(), "ok 1 CDE|T");
}

TEST_F(PdbContainer, EmptyFileHasTheDefault999Slots) {
  WritePdb(dir / "empty.pdb", 0, {});
  const std::string bytes = ReadBytes(dir / "empty.pdb");
  ASSERT_EQ(bytes.size(), 8070u);
  EXPECT_EQ(bytes.substr(78), std::string(8 * 999, '\0'));
  ASSERT_EQ(reader.OpenFile(dir / "empty.pdb"), 0);
  EXPECT_EQ(reader.RecordCount(), 0);
}

TEST_F(PdbContainer, TitleIsCutAt32AndShortFieldsArePadded) {
  const auto path = dir / "t.pdb";
  const std::string longTitle = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  {
    clsPalmFilePDB pdb;
    Create(pdb, path, 1, longTitle, "ab", "X");
  }
  const std::string bytes = ReadBytes(path);
  EXPECT_EQ(bytes.substr(0, 32), longTitle.substr(0, 32));
  EXPECT_EQ(bytes.substr(60, 8), std::string("X\0\0\0ab\0\0", 8));
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.Title(), longTitle.substr(0, 32));
  // The getters keep their odd decimal form: "a" (97) gives the code of "9".
  EXPECT_EQ(reader.Creator(), "57574848");
}

// Records go to disk in batches; whenever another reader looks, as a run
// killed at that moment would leave it, the file opens and its table holds
// only records whose bytes are all there.
TEST_F(PdbContainer, TheFileOnDiskOnlyEverListsWholeRecords) {
  const auto path = dir / "live.pdb";
  clsPalmFilePDB writer;
  Create(writer, path, 40);
  std::vector<std::string> records;
  int32_t seen = 0;
  for (int i = 0; i < 40; ++i) {
    records.emplace_back(static_cast<size_t>(20000 + i), static_cast<char>('a' + i % 26));
    writer.WriteRecord(records.back());
    clsPalmFilePDB other;
    ASSERT_EQ(other.OpenFile(path), 0);
    const int32_t count = other.RecordCount();
    ASSERT_LE(count, i + 1);
    ASSERT_GE(count, seen);
    for (int32_t k = 0; k < count; ++k) ASSERT_EQ(Read(other, k), "ok " + std::to_string(k) + " " + records[static_cast<size_t>(k)]);
    seen = count;
  }
  EXPECT_GT(seen, 10);  // batches land while the run goes on, not only at its end
  EXPECT_LT(seen, 40);
  writer.FinishFile();
  ASSERT_EQ(reader.OpenFile(path), 0);
  EXPECT_EQ(reader.RecordCount(), 40);
}

TEST_F(PdbContainer, SequentialAndNumberedReadsMoveThePosition) {
  WritePdb(dir / "r.pdb", 3, {"A", "B", "C"});
  ASSERT_EQ(reader.OpenFile(dir / "r.pdb"), 0);
  EXPECT_EQ(Read(-1), "ok 0 A");
  // A read by number leaves the position on that record: the next
  // sequential read gives it again.
  EXPECT_EQ(Read(2), "ok 2 C");
  EXPECT_EQ(Read(-1), "ok 2 C");
  EXPECT_EQ(reader.Position255(), 382);  // 3 * 255 / 2 = 382.5, to the even 382, not clamped
  EXPECT_EQ(Read(-1), "no -1 ");
  // A number at or above the count fails and still moves the position.
  EXPECT_EQ(Read(7), "no 7 ");
  reader.Rewind();
  EXPECT_EQ(Read(-1), "ok 0 A");
  EXPECT_EQ(reader.Position255(), 128);  // 1 * 255 / 2 = 127.5, to the even 128
}

TEST_F(PdbContainer, RecordCountLimitIs32767) {
  WriteBytes(dir / "ok.pdb", Header("X", 32767));
  WriteBytes(dir / "bad.pdb", Header("X", 32768));
  EXPECT_EQ(reader.OpenFile(dir / "ok.pdb"), 0);
  EXPECT_EQ(reader.RecordCount(), 32767);
  EXPECT_EQ(reader.OpenFile(dir / "bad.pdb"), fail::kOverflow);
  EXPECT_FALSE(reader.TestFileType(dir / "bad.pdb"));
  EXPECT_TRUE(reader.TestFileType(dir / "ok.pdb"));
  // The writer refuses the record past the limit before writing any of it,
  // so what it leaves opens.
  {
    clsPalmFilePDB writer;
    Create(writer, dir / "full.pdb", 33000);
    for (int i = 0; i < 32767; ++i) writer.WriteRecord("r");
    const auto size = std::filesystem::file_size(dir / "full.pdb");
    EXPECT_EQ(FailureNumber([&] { writer.WriteRecord("r"); }), fail::kOverflow);
    EXPECT_EQ(std::filesystem::file_size(dir / "full.pdb"), size);
  }
  EXPECT_EQ(reader.OpenFile(dir / "full.pdb"), 0);
  EXPECT_EQ(reader.RecordCount(), 32767);
}

TEST_F(PdbContainer, ShortOrMissingFiles) {
  WriteBytes(dir / "zero", "");
  WriteBytes(dir / "short", "abc");
  EXPECT_EQ(reader.OpenFile(dir / "zero"), 0);
  EXPECT_EQ(reader.RecordCount(), 0);
  EXPECT_EQ(reader.OpenFile(dir / "short"), 0);
  EXPECT_EQ(reader.Title(), "abc");
  EXPECT_EQ(reader.OpenFile(dir / "missing"), fail::kFileNotFound);
  EXPECT_FALSE(reader.TestFileType(dir / "missing"));
  EXPECT_FALSE(reader.TestFileType(dir.path()));
}

TEST_F(PdbContainer, DatesWithTheTopBitSetReadAsZero) {
  std::string bytes = Header("X", 0);
  bytes[36] = static_cast<char>(0x80);  // creation: 1972 onward in Palm seconds
  bytes[43] = 60;                       // modification: one minute after 1904
  WriteBytes(dir / "d.pdb", bytes);
  ASSERT_EQ(reader.OpenFile(dir / "d.pdb"), 0);
  EXPECT_EQ(reader.CreateDate(), 0.0);
  EXPECT_DOUBLE_EQ(reader.ModifyDate(), kPalmEpochSerial + 60.0 / 86400.0);
}

TEST_F(PdbContainer, BadTablesFailCleanly) {
  // Record 0 ends before it starts; record 1 runs past the end of the file.
  WriteBytes(dir / "bad.pdb", Header("X", 2) + Hex("00000070 00000000 00000060 00000001") + "ABCDEFGHIJ");
  WriteBytes(dir / "past.pdb", Header("X", 2) + Hex("0000005E 00000000 7FFFFFF0 00000001") + "AB");
  ASSERT_EQ(reader.OpenFile(dir / "bad.pdb"), 0);
  EXPECT_THROW(Read(0), Failure);
  ASSERT_EQ(reader.OpenFile(dir / "past.pdb"), 0);
  EXPECT_EQ(FailureNumber([&] { Read(0); }), fail::kPastEnd);
}

TEST_F(PdbContainer, WritingPastTheTableFailsAfterTheDataIsOut) {
  const auto path = dir / "over.pdb";
  clsPalmFilePDB pdb;
  Create(pdb, path, 1);
  pdb.WriteRecord("AAAAAAAAAA");
  // Slot 1 is only the in-memory end slot: its write lands over the first
  // bytes of record 0, the count becomes 2, and only then the write fails.
  EXPECT_EQ(FailureNumber([&] { pdb.WriteRecord("BB"); }), fail::kSubscript);
  // A record with no slot at all still goes behind the others.
  EXPECT_EQ(FailureNumber([&] { pdb.WriteRecord("CC"); }), fail::kSubscript);
  pdb.CloseFile();
  EXPECT_EQ(ReadBytes(path).substr(76), Hex("0002 00000056 00000000 00000060 00000001") + "AABBCC");
}

TEST_F(PdbContainer, CreateDoesNotTruncate) {
  WriteBytes(dir / "old.pdb", std::string(9000, 'z'));
  WritePdb(dir / "old.pdb", 2, {"R"});
  const std::string bytes = ReadBytes(dir / "old.pdb");
  EXPECT_EQ(bytes.size(), 9001u);
  EXPECT_EQ(bytes.substr(78, 4), Hex("00002328"));  // the record went behind the old bytes
}

// Records are read a stretch of the file at a time: any order, across the
// stretches' edges and larger than one, gives the bytes written. The file
// may be removed while it is open; what was opened reads on.
TEST_F(PdbContainer, RecordsReadInAnyOrderAcrossTheReadWindow) {
  std::vector<std::string> records;
  for (int i = 0; i < 700; ++i) records.push_back(std::string(997, static_cast<char>('a' + i % 26)) + std::to_string(i));
  records[350] = std::string(300 * 1024, 'L');
  WritePdb(dir / "big.pdb", 700, records);
  ASSERT_EQ(reader.OpenFile(dir / "big.pdb"), 0);
  std::filesystem::remove(dir / "big.pdb");
  std::string data;
  for (int32_t n : {0, 699, 1, 350, 263, 262, 351, 698}) {
    ASSERT_TRUE(reader.ReadRecord(n, data));
    EXPECT_EQ(data, records[static_cast<size_t>(n)]) << n;
  }
  reader.Rewind();
  int32_t count = 0;
  for (int32_t n = -1; reader.ReadRecord(n, data); n = -1) {
    EXPECT_EQ(data, records[static_cast<size_t>(n)]) << n;
    ++count;
  }
  EXPECT_EQ(count, 700);
}

}  // namespace
}  // namespace hifx::test
