#include <gtest/gtest.h>

#include "support/RunHifx.h"
#include "support/TempDir.h"

namespace hifx {
namespace {

using test::ReadBytes;
using test::RunHifx;
using test::ShellQuote;
using test::TempDir;
using test::WriteBytes;

const std::string kExamples = std::string(HIFX_TEST_SOURCE_DIR) + "/../examples/";
const std::string kData = std::string(HIFX_TEST_SOURCE_DIR) + "/data/";
const std::string kFixedEnv = "SOURCE_DATE_EPOCH=1700000000 TZ=UTC";

class ReadingCommand : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Hifx({"dist", "load", kExamples + "site.dst"}).status, 0); }
  test::RunResult Hifx(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", (dir / "site").string()});
    return RunHifx(args, dir, kFixedEnv);
  }
  test::RunResult Reading(const std::string& source) {
    return Hifx({"--yes", "reading", "--source", source, "--dest", (dir / "billing.txt").string(), "--orphans",
                 (dir / "orphans.txt").string(), "--orphan-replace", "--reread", (dir / "reread.pdb").string()});
  }
  TempDir dir;
};

// Route file, handheld, billing file: the whole road, byte for byte.
TEST_F(ReadingCommand, TheRoundTripMatchesItsGoldenFiles) {
  const auto route = dir / "route.pdb";
  ASSERT_EQ(Hifx({"route", "--source", kExamples + "route-fixed.txt", "--dest", route.string()}).status, 0);
  const std::string fill = ShellQuote(HIFX_FILL_READINGS) + " " + ShellQuote(route.string()) + " " +
                           ShellQuote((dir / "reading.pdb").string()) + " --seed 1 >/dev/null";
  ASSERT_EQ(std::system(fill.c_str()), 0);
  EXPECT_EQ(ReadBytes(dir / "reading.pdb"), ReadBytes(kExamples + "reading.pdb"));
  const auto r = Reading((dir / "reading.pdb").string());
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_EQ(ReadBytes(dir / "billing.txt"), ReadBytes(kData + "example-billing.txt"));
  EXPECT_EQ(ReadBytes(dir / "orphans.txt"), ReadBytes(kData + "example-orphans.txt"));
  EXPECT_NE(r.out.find("Notice: ReRead File prepared with 3 Meters\n"), std::string::npos) << r.out;
  EXPECT_EQ(r.err, "ReRead Destination already exists: " + (dir / "reread.pdb").string() +
                       " already exists.  Overwrite?\n");
  const auto view = Hifx({"view", (dir / "reread.pdb").string()});
  EXPECT_EQ(view.out, "Index\tRoute\tMeters\tFirst Read\tLast Read\n1\t0001\t3\t0\t0\n2\t0002\t2\t0\t0\n");
}

TEST_F(ReadingCommand, DamagedReadingFilesEndInTheDriversWords) {
  const std::string good = ReadBytes(kExamples + "reading.pdb");
  // Cut inside the meters: what came before is in the billing file.
  WriteBytes(dir / "cut.pdb", good.substr(0, good.size() - 900));
  const auto cut = Reading((dir / "cut.pdb").string());
  ASSERT_TRUE(cut.exited);
  EXPECT_EQ(cut.status, 1);
  EXPECT_NE(cut.out.find("Input past end of file\n"), std::string::npos) << cut.out;
  EXPECT_NE(cut.out.find("Reading Conversion Finished\n"), std::string::npos);
  EXPECT_FALSE(ReadBytes(dir / "billing.txt").empty());
  // Record types outside the table are passed over.
  std::string odd = good;
  const size_t firstRecord = (static_cast<uint8_t>(odd[78]) << 24) | (static_cast<uint8_t>(odd[79]) << 16) |
                             (static_cast<uint8_t>(odd[80]) << 8) | static_cast<uint8_t>(odd[81]);
  const size_t third = (static_cast<uint8_t>(odd[78 + 16 + 2]) << 8) | static_cast<uint8_t>(odd[78 + 16 + 3]);
  ASSERT_GT(third, firstRecord);
  odd[third + 1] = 9;  // the second route header becomes RecType 9 and is passed over
  WriteBytes(dir / "odd.pdb", odd);
  const auto o = Reading((dir / "odd.pdb").string());
  ASSERT_TRUE(o.exited);
  EXPECT_EQ(o.status, 0) << o.out;
  // Its meters keep their place in the list the file header sized, with no name.
  EXPECT_NE(ReadBytes(dir / "billing.txt").find("\r\n    000010"), std::string::npos);
  // A text part with no NULs: the texts read as empty, the line is written.
  WriteBytes(dir / "garbage.pdb", std::string(78, '\0') + "xyz");
  const auto g = Reading((dir / "garbage.pdb").string());
  ASSERT_TRUE(g.exited);
  EXPECT_TRUE(g.status == 0 || g.status == 1);
}

// The MVRS road: route file, handheld, reading file, byte for byte.
TEST_F(ReadingCommand, TheMvrsRoundTripMatchesItsGoldenFile) {
  const auto route = dir / "mvrs.pdb";
  const auto routed = Hifx({"route", "--source", kExamples + "route-mvrs.dat", "--dest", route.string(), "--map", "Mvrs"});
  ASSERT_EQ(routed.status, 0) << routed.out << routed.err;
  const std::string fill = ShellQuote(HIFX_FILL_READINGS) + " " + ShellQuote(route.string()) + " " +
                           ShellQuote((dir / "mvrs-reading.pdb").string()) + " --seed 1 >/dev/null";
  ASSERT_EQ(std::system(fill.c_str()), 0);
  const auto r = Hifx({"reading", "--source", (dir / "mvrs-reading.pdb").string(), "--dest",
                       (dir / "mvrs-reading.dat").string(), "--map", "Mvrs", "--no-orphans", "--no-reread"});
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_EQ(ReadBytes(dir / "mvrs-reading.dat"), ReadBytes(kData + "example-mvrs-reading.dat"));
}

}  // namespace
}  // namespace hifx
