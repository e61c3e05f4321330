#include <gtest/gtest.h>

#include <random>

#include "hif/clsIndex.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

class CodeRecords : public testing::Test {
 protected:
  void SetUp() override {
    hif.SetVersion(3);
    ASSERT_EQ(hif.CreateHIF(dir / "c.pdb", kFilePDB, 10), 0);
  }
  TempDir dir;
  TestShell shell;
  clsHIF hif{shell};
};

TEST_F(CodeRecords, AnIndexRecordGroupsKeysAndPacksThemEven) {
  clsIndex index;
  index.Route = 2;
  index.IndexType = 1;
  index.Insert("OAK", 5);
  index.Insert("MAIN", 3);
  index.InsertUpper("Main", 7);  // filed as MAIN
  index.WriteRecord(hif);
  EXPECT_EQ(hif.RawData(), Hex("0006 0002 0001  0012") + std::string("MAIN\0\0", 6) + Hex("0003 0007") +
                               Hex("FFFF") + std::string("OAK\0", 4) + Hex("0005"));
  EXPECT_EQ(index.Count(), 0);  // it starts afresh
  int32_t route = 0, type = 0, count = 0;
  std::vector<std::string> entries;
  hif.GetIndexRecord(route, type, count, entries);
  EXPECT_EQ(route, 2);
  EXPECT_EQ(type, 1);
  EXPECT_EQ(entries, (std::vector<std::string>{"MAIN:3:7", "OAK:5"}));
  clsIndex empty;
  empty.WriteRecord(hif);  // nothing gathered, nothing written
  EXPECT_EQ(hif.RecordCount(), 1);
}

// Keys are in the order of their bytes, high ones last, however long the
// part they share; equal keys keep the order they came in.
TEST_F(CodeRecords, IndexKeysSortByTheirBytesPastAnyCommonHead) {
  clsIndex index;
  index.Route = 1;
  for (const auto& [key, number] : {std::pair{"ABCDEFGHJ", 1},
                                    {"ABCDEFGHI", 2},
                                    {"ABCDEFGH", 3},
                                    {"\xC9TAGE", 4},
                                    {"ABCDEFGHI", 5},
                                    {"Z", 6},
                                    {"ABCDEFGHIJKLMNOQ", 7},
                                    {"ABCDEFGHIJKLMNOP", 8}}) {
    index.Insert(key, static_cast<int16_t>(number));
  }
  index.WriteRecord(hif);
  int32_t route = 0, type = 0, count = 0;
  std::vector<std::string> entries;
  hif.GetIndexRecord(route, type, count, entries);
  EXPECT_EQ(entries, (std::vector<std::string>{"ABCDEFGH:3", "ABCDEFGHI:2:5", "ABCDEFGHIJKLMNOP:8",
                                               "ABCDEFGHIJKLMNOQ:7", "ABCDEFGHJ:1", "Z:6", "\xC9TAGE:4"}));
}

TEST_F(CodeRecords, ACodeRecordReadsBack) {
  hif.AddCodeRecord(kRecCodes, 2, 0, 2, {"W", "GAS"}, {"Water", "Gas meter"}, {"", ""});
  const CodeRecord record = ReadCodeRecord(hif.RawData());
  EXPECT_EQ(record.recType, kRecCodes);
  EXPECT_EQ(record.group, 2);
  ASSERT_EQ(record.entries.size(), 2u);
  EXPECT_EQ(record.entries[1][1], "Gas meter");
  EXPECT_THROW(ReadCodeRecord(Hex("0005 0000 0000 0009") + "AB"), Failure);
}

TEST_F(CodeRecords, BrokenIndexRecordsFailInsteadOfLooping) {
  int32_t route = 0, type = 0, count = 0;
  std::vector<std::string> entries;
  hif.SetRawData(Hex("0006 0001 0000 0006") + std::string("K\0", 2));  // points at itself
  EXPECT_THROW(hif.GetIndexRecord(route, type, count, entries), Failure);
  hif.SetRawData(Hex("0006 0001 0000 7000") + std::string("K\0", 2));  // past the end
  EXPECT_THROW(hif.GetIndexRecord(route, type, count, entries), Failure);
}

// The index sort must give what the stable bubble sort of the keys gives.
TEST(IndexSort, SameOrderAsTheBubbleSort) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    clsIndex index;
    std::vector<std::string> keys;
    std::vector<int16_t> numbers;
    const int n = static_cast<int>(random() % 40);
    for (int i = 0; i < n; ++i) {
      std::string key(1 + random() % 3, 'A');
      for (char& c : key) c = static_cast<char>("AB\xE9z0"[random() % 5]);
      if (random() % 3 == 0) key.insert(0, "ABCDEFG");  // heads alike, or equal past eight bytes
      keys.push_back(key);
      numbers.push_back(static_cast<int16_t>(i));
      index.Insert(key, static_cast<int16_t>(i));
    }
    // Passes over a shrinking range, swapping when the second key's bytes are
    // below the first's, until a pass swaps nothing.
    for (int last = n - 1; last >= 1; --last) {
      bool swapped = false;
      for (int i = 0; i < last; ++i) {
        const auto& a = keys[static_cast<size_t>(i)];
        const auto& b = keys[static_cast<size_t>(i + 1)];
        if (std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), [](char x, char y) {
              return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
            })) {
          std::swap(keys[static_cast<size_t>(i)], keys[static_cast<size_t>(i + 1)]);
          std::swap(numbers[static_cast<size_t>(i)], numbers[static_cast<size_t>(i + 1)]);
          swapped = true;
        }
      }
      if (!swapped) break;
    }
    index.Sort();
    const auto sorted = index.Keys();
    ASSERT_EQ(std::vector<std::string>(sorted.begin(), sorted.end()), keys) << round;
    ASSERT_EQ(index.Numbers(), numbers) << round;
  }
}

}  // namespace
}  // namespace hifx::test
