// The filled file's form and that a seed always gives the same bytes; what the
// readings are is the examples' and the command line's tests' business.
#include <gtest/gtest.h>

#include <set>

#include "base/Failure.h"
#include "support/SampleHif.h"
#include "support/TestShell.h"
#include "tools/FillReadings.h"

namespace hifx::test {
namespace {

// The fields a handheld fills in; every other field comes back as routed.
const std::set<std::string> kHandheldFields = {"CurReading",  "ReadingDate",  "ReadingTime",
                                               "Status",      "ResponseCode", "ResponseText",
                                               "TamperCount", "Signal",       "Initials"};

struct FillReadingsTest : testing::Test {
  std::string Fill(const std::string& name, uint32_t seed) {
    FillReadings(shell, dir / "route.pdb", dir / name, seed);
    EXPECT_TRUE(shell.questions.empty());
    return ReadBytes(dir / name);
  }
  TempDir dir;
  TestShell shell;
  std::vector<std::string> route = WriteSampleHif(shell, dir / "route.pdb", kFilePDB);
};

TEST_F(FillReadingsTest, TheRouteInItsOrderWithOnlyTheHandheldsFieldsAndTheOrphansBehind) {
  const std::string bytes = Fill("reading.pdb", kDefaultFillSeed);
  // The same identity, and the record table sized for the orphans and spares.
  EXPECT_EQ(bytes.substr(0, 76), ReadBytes(dir / "route.pdb").substr(0, 76));
  EXPECT_EQ((BigEndianAt(bytes, 78, 4) - 78) / 8, route.size() + kFilledOrphans + kFilledSpareSlots);

  clsHIF reading(shell), schema(shell);
  reading.SetVersion(3);
  schema.SetVersion(3);
  ASSERT_FALSE(reading.OpenHIF(dir / "reading.pdb"));
  int changed = 0;
  for (size_t i = 0; i < route.size() + kFilledOrphans; ++i) {
    ASSERT_TRUE(reading.ReadData()) << i;
    const auto values = reading.GetValues();
    if (i >= route.size()) {
      EXPECT_EQ(values.Item("RecType").ToInt32(), kRecOrphan) << i;
      EXPECT_EQ(values.Item("RouteNbr").ToInt32() + values.Item("Status").ToInt32(), 0) << i;
      EXPECT_GT(values.Item("MeterTagNbr").ToInt32(), 0) << i;
      continue;
    }
    schema.SetRawData(route[i]);
    if (schema.GetValues().Item("RecType").ToInt32() != kRecMeter) {
      EXPECT_EQ(reading.RawData(), route[i]) << "record " << i << " is copied as it stands";
      continue;
    }
    changed += reading.RawData() != route[i];
    const auto before = schema.GetValues();
    for (int16_t f = 1; f <= schema.DB().FieldCount(); ++f) {
      const std::string name = schema.DB().FieldName(f);
      if (!kHandheldFields.contains(name)) { EXPECT_EQ(values.Item(name), before.Item(name)) << name << " of " << i; }
    }
  }
  EXPECT_EQ(changed, 3);
  EXPECT_FALSE(reading.ReadData());
}

TEST_F(FillReadingsTest, SameSeedSameBytesAnotherSeedOthers) {
  const std::string first = Fill("a.pdb", 5);
  // Filled again over a longer file of the same name: nothing of it stays.
  WriteBytes(dir / "b.pdb", std::string(first.size() * 2, '\x7F'));
  EXPECT_EQ(Fill("b.pdb", 5), first);
  EXPECT_NE(Fill("c.pdb", 6), first);
}

TEST_F(FillReadingsTest, RefusesWhatItCannotFill) {
  EXPECT_THROW(FillReadings(shell, dir / "missing.pdb", dir / "reading.pdb", 1), Failure);
  // Version 0 records have no reading fields.
  HifWriter(shell, dir / "v0.pdb", 0, kFilePDB, 2).Add({{"RecType", kRecMeter}, {"MeterTagNbr", 77}});
  EXPECT_THROW(FillReadings(shell, dir / "v0.pdb", dir / "reading.pdb", 1), Failure);
  EXPECT_FALSE(std::filesystem::exists(dir / "reading.pdb"));
  // The route file is never overwritten by its own reading.
  const std::string before = ReadBytes(dir / "route.pdb");
  EXPECT_THROW(FillReadings(shell, dir / "route.pdb", dir / "." / "route.pdb", 1), Failure);
  EXPECT_EQ(ReadBytes(dir / "route.pdb"), before);
}

}  // namespace
}  // namespace hifx::test
