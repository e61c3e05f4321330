#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "hif/SortHIF.h"
#include "hif/clsHIF.h"
#include "support/FailureNumber.h"
#include "support/HifImage.h"
#include "support/TempDir.h"
#include "support/TemporaryFolder.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

// The quick sort exactly as the sort describes it: entries from 1, the pivot
// the middle slot, both parts sorted by recursion.
bool Below(const SortEntry& a, const SortEntry& b) {
  return a.Sequence < b.Sequence || (a.Sequence == b.Sequence && a.Ordinal < b.Ordinal);
}

void DescribedQuickSort(std::vector<SortEntry>& e, int first, int last) {
  int i = first;
  int j = last;
  const int m = (first + last) / 2;
  while (i <= j) {
    while (i < last && Below(e[i], e[m])) ++i;
    while (j > first && Below(e[m], e[j])) --j;
    if (i > j) break;
    if (i < j) std::swap(e[i], e[j]);
    ++i;
    --j;
  }
  if (first < j) DescribedQuickSort(e, first, j);
  if (i < last) DescribedQuickSort(e, i, last);
}

std::vector<SortEntry> Entries(const std::vector<int32_t>& sequences) {
  std::vector<SortEntry> entries;
  for (const int32_t s : sequences) {
    const auto n = static_cast<int32_t>(entries.size()) + 1;
    entries.push_back({s, n, n});
  }
  return entries;
}

std::vector<int32_t> Ordinals(const std::vector<SortEntry>& entries) {
  std::vector<int32_t> ordinals;
  for (const auto& e : entries) ordinals.push_back(e.Ordinal);
  return ordinals;
}

// Sorted as the sort's own quick sort leaves them: the entries' ordinals.
std::vector<int32_t> Described(const std::vector<int32_t>& sequences) {
  std::vector<SortEntry> from1 = Entries(sequences);
  from1.insert(from1.begin(), SortEntry{});
  DescribedQuickSort(from1, 1, static_cast<int>(sequences.size()));
  from1.erase(from1.begin());
  return Ordinals(from1);
}

std::vector<int32_t> Quick(const std::vector<int32_t>& sequences) {
  std::vector<SortEntry> entries = Entries(sequences);
  QuickSort(entries, 0, static_cast<std::ptrdiff_t>(entries.size()) - 1);
  for (const auto& e : entries) EXPECT_EQ(e.Ordinal, e.Position);  // moved whole
  return Ordinals(entries);
}

TEST(SortQuickSort, GivesTheDescribedOrderOnRandomRuns) {
  std::mt19937 random(20240229);
  int outOfOrder = 0;
  for (int run = 0; run < 20000; ++run) {
    const int n = static_cast<int>(random() % (run < 19900 ? 40 : 3000));
    const int32_t range = std::array<int32_t, 4>{1, 3, 50, 1000000}[random() % 4];
    std::vector<int32_t> sequences;
    for (int k = 0; k < n; ++k) sequences.push_back(static_cast<int32_t>(random() % range));
    const auto got = Quick(sequences);
    ASSERT_EQ(got, Described(sequences)) << "run " << run;
    auto entries = Entries(sequences);
    std::vector<SortEntry> result;
    for (const int32_t ordinal : got) result.push_back(entries[static_cast<size_t>(ordinal) - 1]);
    if (!std::is_sorted(result.begin(), result.end(), Below)) ++outOfOrder;
  }
  // The pivot moves with the swaps: some runs end not wholly in order, and
  // they must stay so.
  EXPECT_GT(outOfOrder, 0);
}

// Records through the version-3 schema; a meter's tag names it.
std::string Record(int32_t recType, int32_t route, int32_t sequence, int32_t prvReading,
                   int32_t tag = 0, int16_t version = 3) {
  TestShell shell;
  clsHIF hif(shell);
  hif.SetVersion(version);
  hif.AddNew();
  for (const auto& [name, n] : {std::pair{"RecType", recType}, {"RouteNbr", route}, {"Sequence", sequence}, {"MeterTagNbr", tag}}) {
    hif.SetItem(name, Value::Long(n));
  }
  if (version > 0) {
    hif.SetItem("PrvReading", Value::Long(prvReading));
    hif.SetItem("User1", Value("meter " + std::to_string(tag)));
  }
  if (recType == kRecFileHeader) hif.SetItem("MeterType", Value::Long(version));
  return hif.RawData();
}

std::string Header(int32_t meterCount) { return Record(kRecFileHeader, 2, 20240229, meterCount); }
std::string RouteHeader(int32_t route) { return Record(kRecRouteHeader, route, 0, 0); }
std::string Meter(int32_t route, int32_t sequence, int32_t tag) {
  return Record(kRecMeter, route, sequence, 1000 + tag, tag);
}

// Equal bytes, or where they first differ.
testing::AssertionResult SameBytes(const std::string& got, const std::string& expected) {
  if (got == expected) return testing::AssertionSuccess();
  const auto at = std::mismatch(got.begin(), got.end(), expected.begin(), expected.end());
  return testing::AssertionFailure() << got.size() << " bytes, expected " << expected.size()
                                     << ", first difference at offset " << (at.first - got.begin());
}

class SortHIFTest : public testing::TestWithParam<int32_t> {
 protected:
  int32_t Type() const { return GetParam(); }
  // A file of these records, its table sized to them.
  std::filesystem::path Write(const std::vector<std::string>& records) {
    std::filesystem::remove(path);  // the writers don't truncate
    WriteRecords(shell, path, Type(), static_cast<int32_t>(records.size()), records);
    return path;
  }
  std::string Image(const std::vector<std::string>& records, uint32_t slots) const {
    return HifImage(Type(), slots, records);
  }
  // The sort from that reading source fails with that number and changes
  // nothing: the file, its folder and the temporary folder stay as they were.
  void FailsChangingNothing(int number, const std::filesystem::path& source) {
    const std::string before = ReadBytes(path);
    const size_t files = FilesIn(dir.path());
    EXPECT_EQ(FailureNumber([&] { SortHIF(shell, source, path); }), number);
    EXPECT_TRUE(SameBytes(ReadBytes(path), before));
    EXPECT_EQ(FilesIn(dir.path()), files);
    EXPECT_EQ(FilesIn(temporaryFolder.path()), 0u);
  }

  TempDir dir;
  TempDir temporaryFolder;
  TemporaryFolder useIt{temporaryFolder.path()};
  TestShell shell;
  std::filesystem::path path = dir / "route.hif";
};

TEST_P(SortHIFTest, SortsEachStretchOfARouteAndDropsTheOtherRecords) {
  const std::string code = Hex("0005 0000 0000 0001 444F4700 446F6700 0000 FFFF");
  const std::string index = Hex("0006 0001 0002 FFFF 4F414B00 0005");
  const std::string alerts = Hex("0007 0000 0001 0000 FFFF");
  const std::vector<std::string> source = {
      Header(4),
      RouteHeader(1),
      Meter(1, 30, 1),
      Meter(1, 10, 2),
      code,  // not a meter: the stretch goes on behind it
      Meter(1, 20, 3),
      RouteHeader(2),  // copied at once, ahead of the stretch still held
      Meter(2, 5, 4),
      Meter(2, 1, 5),
      Meter(2, 5, 6),  // equal Sequence: stays behind meter 4
      index,
      Meter(1, 3, 7),  // route 1 again: a stretch of its own
      Meter(1, 3, 8),
      Meter(1, 2, 9),
      Meter(1, 1, 10),
      alerts,
      Record(kRecRouteHeaderAlt, 3, 0, 0),
      Record(kRecOrphan, 1, 0, 0, 11),
      Meter(0, 3, 12),  // route 0 is a route like any other
  };
  Write(source);
  ASSERT_EQ(SortHIF(shell, path, path), SortOutcome::Sorted);

  const std::vector<std::string> sorted = {
      source[0], source[1], source[6],  // headers in the order met
      source[3], source[5], source[2],  // route 1: 10, 20, 30
      source[8], source[7], source[9],  // route 2: 1, 5, 5
      // Route 1 again, as the quick sort leaves it: 1, 3, 2, 3.
      source[14], source[11], source[13], source[12],
      source[18]};
  EXPECT_TRUE(SameBytes(ReadBytes(path), Image(sorted, static_cast<uint32_t>(source.size()))));
  EXPECT_TRUE(shell.log.empty());
  EXPECT_EQ(shell.questions, (std::vector<Question>{{"Indexes would need to be rebuilt", "", MsgButtons::OK}}));
  // One step a record read, in the last third of a bar of 765.
  ASSERT_EQ(shell.progress.size(), source.size());
  EXPECT_GT(shell.progress.front().second, 510);
  EXPECT_GE(shell.progress.back().second, 765);
  for (const auto& [total, position] : shell.progress) EXPECT_EQ(total, 765);
  // Nothing left behind, beside the file or in the temporary folder.
  EXPECT_EQ(FilesIn(dir.path()), 1u);
  EXPECT_EQ(FilesIn(temporaryFolder.path()), 0u);
}

TEST_P(SortHIFTest, ARecordTooShortForItsRecTypeIsCopiedAsAHeader) {
  const std::vector<std::string> source = {Header(1), std::string(1, '\x02'), Meter(1, 1, 1)};
  Write(source);
  ASSERT_EQ(SortHIF(shell, path, path), SortOutcome::Sorted);
  EXPECT_TRUE(SameBytes(ReadBytes(path), Image(source, 3)));
  EXPECT_EQ(shell.Asked().at(1), "Subscript out of range");  // the short read, shown
}

TEST_P(SortHIFTest, TheVersionComesFromTheReadingSource) {
  Write({Header(2), RouteHeader(1), Meter(1, 2, 1), Meter(1, 1, 2)});
  const std::string before = ReadBytes(path);
  EXPECT_EQ(SortHIF(shell, dir / "missing.hif", path), SortOutcome::NotRead);
  EXPECT_EQ(shell.log, std::vector<std::string>{"Error: Could not read HIF file for sorting"});
  EXPECT_EQ(shell.questions.size(), 1u);  // the rebuild notice
  EXPECT_TRUE(SameBytes(ReadBytes(path), before));

  // A reading source of version 0: the header is read with no PrvReading.
  const auto old = dir / "old.hif";
  WriteRecords(shell, old, Type(), 1, {Record(kRecMeter, 1, 1, 0, 1, 0)});
  FailsChangingNothing(fail::kInvalidNull, old);
}

TEST_P(SortHIFTest, ADamagedRecordPartwayChangesNothing) {
  Write({Header(3), RouteHeader(1), Meter(1, 2, 1), Meter(1, 1, 2)});
  std::string bytes = ReadBytes(path);
  if (Type() == kFilePDB) {
    bytes[78 + 8 * 3] = '\x7F';  // the last record starts far past the end
  } else {
    bytes.resize(bytes.size() - 5);  // the last record is cut short
  }
  WriteBytes(path, bytes);
  FailsChangingNothing(fail::kPastEnd, path);
}

TEST_P(SortHIFTest, NoTemporaryFolder) {
  Write({Header(2), RouteHeader(1), Meter(1, 2, 1), Meter(1, 1, 2)});
  const std::string before = ReadBytes(path);
  TemporaryFolder missing(dir / "no such folder");
  if (Type() == kFileVFS) {
    EXPECT_EQ(SortHIF(shell, path, path), SortOutcome::NotCreated);
    EXPECT_EQ(shell.log,
              std::vector<std::string>{"Error: Could not create temporary HIF file for sorting"});
  } else {
    // The PDB container raises what the VFS one returns as a status.
    EXPECT_EQ(FailureNumber([&] { SortHIF(shell, path, path); }), fail::kFileNotFound);
  }
  const auto asked = shell.Asked();
#ifdef _WIN32
  // Windows names a temporary folder without looking for it; the name fails.
  EXPECT_EQ(std::vector(asked.begin() + 1, asked.end()), std::vector<std::string>{"Error getting file"});
#else
  EXPECT_EQ(std::vector(asked.begin() + 1, asked.end()),
            (std::vector<std::string>{"Error getting directory", "Error getting file"}));
#endif
  EXPECT_TRUE(SameBytes(ReadBytes(path), before));
}

INSTANTIATE_TEST_SUITE_P(Containers, SortHIFTest, testing::Values(kFilePDB, kFileVFS),
                         [](const testing::TestParamInfo<int32_t>& info) {
                           return info.param == kFilePDB ? std::string("PDB") : std::string("VFS");
                         });

}  // namespace
}  // namespace hifx::test
