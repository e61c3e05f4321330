// Two files' meters compared: pairing within an account by serial number
// first, then in order; every kind of change; the rest unchanged.
#include <gtest/gtest.h>

#include "hif/MeterDiff.h"
#include "support/HifImage.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

// "change account old-serial>new-serial".
std::vector<std::string> Listed(const MeterDiff& diff) {
  std::vector<std::string> listed;
  for (const MeterDifference& d : diff.differences) {
    listed.push_back(std::string(ChangeWord(d.change)) + " " + (d.after.account.empty() ? d.before.account : d.after.account) +
                     " " + d.before.serial + ">" + d.after.serial);
  }
  return listed;
}

MeterPlace Meter(std::string account, std::string serial, int32_t route, int32_t sequence, int32_t tag = 1) {
  return {std::move(account), std::move(serial), tag, 1, 6, route, sequence};
}

TEST(MeterDiff, EveryChangeOnceAndTheRestUnchanged) {
  const std::vector<MeterPlace> before = {
      Meter("A1", "S1", 1, 10), Meter("A2", "S2", 1, 20), Meter("A3", "S3", 1, 30),
      Meter("A4", "S4", 2, 10), Meter("A5", "S5", 2, 20), Meter("A6", "S6a", 2, 30),
      Meter("A6", "S6b", 2, 40), Meter("", "S7", 2, 50)};
  const std::vector<MeterPlace> after = {
      Meter("A1", "S1", 1, 10),          // unchanged
      Meter("A3", "S3", 1, 25),          // new sequence
      Meter("A4", "S4", 1, 40),          // moved to route 1
      Meter("A5", "S5x", 2, 20, 9),      // changed out: serial and tag
      Meter("A6", "S6b", 2, 40),         // a second meter of the account, found by serial
      Meter("A6", "S6a", 2, 30),         // though listed the other way round
      Meter("", "S7", 2, 50),            // no account: paired by serial
      Meter("A8", "S8", 3, 10)};         // added; A2 is gone
  const MeterDiff diff = CompareMeters(before, after);
  EXPECT_EQ(Listed(diff), (std::vector<std::string>{"added A8 >S8", "removed A2 S2>", "moved A4 S4>S4",
                                                    "sequence A3 S3>S3", "meter A5 S5>S5x"}));
  EXPECT_EQ(diff.unchanged, 4);
  EXPECT_EQ(std::tuple(diff.Count(MeterChange::Added), diff.Count(MeterChange::Replaced)), std::tuple(1, 1));
}

TEST(MeterDiff, ManyMetersUnderOneKeyPairInOrder) {
  // Meters with neither account nor serial pair by tag, in their order:
  // linear however many share a key.
  std::vector<MeterPlace> before, after;
  for (int32_t i = 0; i < 20000; ++i) before.push_back(Meter("", "", 1, i + 1, 0));
  after = before;
  after.pop_back();
  const MeterDiff diff = CompareMeters(before, after);
  EXPECT_EQ(Listed(diff), (std::vector<std::string>{"removed  >"}));
  EXPECT_EQ(diff.unchanged, 19999);
}

TEST(MeterDiff, MetersAreReadFromTheFile) {
  TempDir dir;
  TestShell shell;
  {
    HifWriter w(shell, dir / "route.pdb", 3, kFilePDB, 4);
    w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 1}, {"MeterType", 3}});
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", 4}});
    w.Add({{"RecType", kRecMeter}, {"RouteNbr", 4}, {"Sequence", 7}, {"MeterTagNbr", 1234}, {"MeterType", 2},
           {"Digits", 5}, {"ServiceUniqueID", " AC9 "}, {"MeterSerialNbr", "SN9 "}});
    w.Add({{"RecType", kRecOrphan}, {"MeterTagNbr", 5}});
  }
  const auto meters = ReadMeterPlaces(shell, dir / "route.pdb");
  ASSERT_EQ(meters.size(), 1u);
  const MeterPlace& m = meters[0];
  EXPECT_EQ(std::tuple(m.account, m.serial, m.tag, m.type, m.digits, m.route, m.sequence),
            std::tuple("AC9", "SN9", 1234, 2, 5, 4, 7));
}

}  // namespace
}  // namespace hifx::test
