#include <gtest/gtest.h>

#include "support/RunHifx.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

// An orphan map as the office writes one: fixed columns, a prompt-free
// catalogue, one line left unmapped.
constexpr const char* kOrphanMap =
    "HIF=1.1\r\nMAPNAME=Orphans.hom\r\nMAPTYPE=1\r\nMAPFILTER=0\r\nMAPDELIMITER=\r\n"
    "MAPQUOTE=<none>\r\nMAPTERMINATOR= 3 \r\nMAPLENGTH=40\r\n"
    "MeterTagNbr=1,8,R,Z,0\r\nCurReading=9,8,R,Z,0\r\nReadingDate=17,8,L,B,24\r\n"
    "ReadingTime=25,4,L,B,0\r\nTamperCount=29,3,R,Z,0\r\nUtilityCode=N\r\n";

// Writes a file into the test's site folder.
void Put(const TempDir& dir, const std::string& name, const std::string& bytes) {
  std::filesystem::create_directories(dir / "site");
  WriteBytes(dir / "site" / name, bytes);
}

// hifx --site DIR/site map ARGS...
RunResult Map(const TempDir& dir, std::vector<std::string> args) {
  args.insert(args.begin(), {"--site", (dir / "site").string(), "map"});
  return RunHifx(args, dir);
}

TEST(MapCommand, ListsTheMapFilesSorted) {
  TempDir dir;
  std::filesystem::create_directories(dir / "site" / "Folder.hcm");
  for (const char* name :
       {"route.hcm", "Billing.HRM", "orphans.hom", "notes.txt", "route.hcm.tmp1"}) {
    Put(dir, name, "");
  }
  const auto r = Map(dir, {"list"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Billing.HRM\norphans.hom\nroute.hcm\n");
}

#ifdef _WIN32
// On Windows the maps lie beside the program unless a site is named.
TEST(MapCommand, WithoutASiteTheProgramsFolderIsTheSite) {
  TempDir dir;
  std::filesystem::create_directories(dir / "program");
  std::filesystem::copy_file(HIFX_BINARY, dir / "program" / "hifx.exe");
  WriteBytes(dir / "program" / "Orphans.hom", kOrphanMap);
  const auto r = RunProgram((dir / "program" / "hifx.exe").string(), {"map", "list"}, dir, {{"HIFX_SITE", ""}});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Orphans.hom\n");
}
#endif

TEST(MapCommand, ShowsTheHeaderThenAFieldALine) {
  TempDir dir;
  Put(dir, "Orphans.hom", kOrphanMap);
  const auto r = Map(dir, {"show", "Orphans.hom"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.substr(0, r.out.find("1\tMeterTagNbr")),
            "MapName\tOrphans.hom\nMapUse\t99\nMapType\t1\tFixed\nMapFilter\t0\tAll Entries\n"
            "MapDelimiter\t\nMapQuote\t\nMapOptions\t\nMapTerminator\t3\t<crlf>\nMapLength\t40\n"
            "Order\tFieldName\tDataType\tRequired\tMapOption\tMapping\tDataPosition\tDataWidth\t"
            "MapAlign\tMapPad\tMapFormat\tMaxValue\tPrompt\tMapConstant\n");
  EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 20);
  for (const char* line :
       {"\n3\tReadingDate\t4\tN\t5\tWrite to Destination\t17\t8\t1\t2\t24\t0\tReadingDate\t\n",
        "\n10\tLstReadingDate\t3\tN\t1\tDo Not Map\t0\t0\t0\t0\t0\t0\tNearbyTagNbr4\t\n"}) {
    EXPECT_NE(r.out.find(line), std::string::npos) << line;
  }
}

TEST(MapCommand, CheckExitsByTheValidationAndTwoWithoutAMap) {
  TempDir dir;
  Put(dir, "Orphans.hom", kOrphanMap);
  const auto bad = Map(dir, {"check", "Orphans.hom"});
  EXPECT_EQ(bad.status, 1) << bad.err;
  EXPECT_EQ(bad.out, "Mapping Errors found:\n\tDate/Time format missing for ReadingTime\n");
  Put(dir, "Orphans.hom", std::string(kOrphanMap) + "ReadingTime=25,4,L,B,42\r\n");
  const auto good = Map(dir, {"check", "Orphans.hom"});
  EXPECT_EQ(good.status, 0) << good.err;
  EXPECT_EQ(good.out, "");

  const auto missing = Map(dir, {"check", "Nothing.hcm"});
  EXPECT_EQ(missing.status, 66);
  EXPECT_EQ(missing.err, "hifx: map: could not load Nothing.hcm\n");
  WriteBytes(dir / "outside.hcm", "MAPTYPE=1\r\n");
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{}, {"list", "x"}, {"show"}, {"remove", "a.hcm"},
        {"check", "../outside.hcm"}, {"show", "a.hcm", "b.hcm"}}) {
    const auto r = Map(dir, args);
    EXPECT_EQ(r.status, 64) << r.err;
    EXPECT_EQ(r.out, "") << r.err;
  }
}

}  // namespace
}  // namespace hifx::test
