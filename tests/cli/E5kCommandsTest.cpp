// The E5000 road through the command line: the example download to a route
// HIF, the handheld's readings, and the upload file, byte for byte.
#include <gtest/gtest.h>

#include "support/RunHifx.h"
#include "support/TempDir.h"

namespace hifx {
namespace {

using test::ReadBytes;
using test::RunHifx;
using test::ShellQuote;
using test::TempDir;

const std::string kExamples = std::string(HIFX_TEST_SOURCE_DIR) + "/../examples/";
const std::string kData = std::string(HIFX_TEST_SOURCE_DIR) + "/data/";

class E5kCommand : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Hifx({"dist", "load", kExamples + "site.dst"}).status, 0); }
  test::RunResult Hifx(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", (dir / "site").string()});
    return RunHifx(args, dir, "SOURCE_DATE_EPOCH=1700000000 TZ=UTC");
  }
  TempDir dir;
};

TEST_F(E5kCommand, TheRoundTripMatchesItsGoldenUpload) {
  const auto route = Hifx({"route", "--source", kExamples + "route-e5000.txt", "--dest", (dir / "route.pdb").string(),
                           "--map", "E5000"});
  ASSERT_EQ(route.status, 0) << route.out << route.err;
  EXPECT_NE(route.out.find("\n7 meters written to Route HIF File\nRoute Conversion Finished\n"), std::string::npos)
      << route.out;
  const std::string fill = ShellQuote(HIFX_FILL_READINGS) + " " + ShellQuote((dir / "route.pdb").string()) + " " +
                           ShellQuote((dir / "reading.pdb").string()) + " --seed 1 >/dev/null";
  ASSERT_EQ(std::system(fill.c_str()), 0);
  const auto reading = Hifx({"reading", "--source", (dir / "reading.pdb").string(), "--dest",
                             (dir / "upload.txt").string(), "--map", "E5000", "--no-orphans", "--no-reread"});
  ASSERT_EQ(reading.status, 0) << reading.out << reading.err;
  EXPECT_EQ(ReadBytes(dir / "upload.txt"), ReadBytes(kData + "e5000-upload.txt"));
}

}  // namespace
}  // namespace hifx
