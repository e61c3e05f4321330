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
using test::WriteBytes;
using namespace std::string_literals;

const std::string kExamples = std::string(HIFX_TEST_SOURCE_DIR) + "/../examples/";
const std::string kData = std::string(HIFX_TEST_SOURCE_DIR) + "/data/";

class E5kCommand : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Hifx({"dist", "load", kExamples + "site.dst"}).status, 0); }
  test::RunResult Hifx(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", (dir / "site").string()});
    return RunHifx(args, dir, "SOURCE_DATE_EPOCH=1700000000 TZ=UTC");
  }
  test::RunResult Route(const std::string& source) {
    return Hifx({"route", "--source", source, "--dest", (dir / "route.pdb").string(), "--map", "E5000"});
  }
  TempDir dir;
};

TEST_F(E5kCommand, TheRoundTripMatchesItsGoldenUpload) {
  const auto route = Route(kExamples + "route-e5000.txt");
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

TEST_F(E5kCommand, ADamagedDownloadIsLoggedNotFatal) {
  // Cut inside the second account's lines, then bytes of no kind.
  const std::string good = ReadBytes(kExamples + "route-e5000.txt");
  WriteBytes(dir / "cut.txt", good.substr(0, 82 * 12 + 40) + "\r\n\0\x01\xff\r\n"s + std::string(100000, 'q'));
  const auto r = Route((dir / "cut.txt").string());
  ASSERT_TRUE(r.exited);
  EXPECT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_NE(r.out.find("Error: Unknown record type '\0' at line 14\n"s), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("Error: Unknown record type 'q' at line 15\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\n1 meters written to Route HIF File\n"), std::string::npos) << r.out;
}

}  // namespace
}  // namespace hifx
