#include <gtest/gtest.h>

#include "support/ExampleSite.h"

namespace hifx::test {
namespace {

class ReadingCommand : public ExampleSite {
 protected:
  RunResult Reading(const std::string& source) {
    return Hifx({"--yes", "reading", "--source", source, "--dest", (dir / "billing.txt").string(), "--orphans",
                 (dir / "orphans.txt").string(), "--orphan-replace", "--reread", (dir / "reread.pdb").string()});
  }
};

// Route file, handheld, billing file: the whole road, byte for byte.
TEST_F(ReadingCommand, TheRoundTripMatchesItsGoldenFiles) {
  const auto route = dir / "route.pdb";
  ASSERT_EQ(Hifx({"route", "--source", kExamples + "route-fixed.txt", "--dest", route.string()}).status, 0);
  Fill(route, dir / "reading.pdb");
  EXPECT_EQ(ReadBytes(dir / "reading.pdb"), ReadBytes(kExamples + "reading.pdb"));
  const auto r = Reading((dir / "reading.pdb").string());
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_EQ(ReadBytes(dir / "billing.txt"), ReadBytes(kTestData + "example-billing.txt"));
  EXPECT_EQ(ReadBytes(dir / "orphans.txt"), ReadBytes(kTestData + "example-orphans.txt"));
  EXPECT_NE(r.out.find("Notice: ReRead File prepared with 3 Meters\n"), std::string::npos) << r.out;
  EXPECT_EQ(WithoutSummary(r.err), "ReRead Destination already exists: " + (dir / "reread.pdb").string() +
                       " already exists.  Overwrite?\n");
  const auto view = Hifx({"view", (dir / "reread.pdb").string()});
  EXPECT_EQ(view.out, "Index\tRoute\tMeters\tFirst Read\tLast Read\n1\t0001\t3\t0\t0\n2\t0002\t2\t0\t0\n");
}

// The MVRS and E5000 roads: route file, handheld, reading file, byte for byte.
TEST_F(ReadingCommand, TheMVRSAndE5000RoundTripsMatchTheirGoldenFiles) {
  for (const auto& [source, map, meters, golden] :
       {std::tuple{"route-mvrs.dat", "Mvrs", "\n8 meters", "example-mvrs-reading.dat"},
        std::tuple{"route-e5000.txt", "E5000", "\n7 meters", "e5000-upload.txt"}}) {
    const auto route = dir / (std::string(map) + ".pdb");
    const auto reading = dir / (std::string(map) + "-reading.pdb");
    const auto routed = Hifx({"route", "--source", kExamples + source, "--dest", route.string(), "--map", map});
    ASSERT_EQ(routed.status, 0) << routed.out << routed.err;
    EXPECT_NE(routed.out.find(std::string(meters) + " written to Route HIF File\nRoute Conversion Finished\n"),
              std::string::npos)
        << routed.out;
    Fill(route, reading);
    const auto out = dir / (std::string(map) + ".out");
    const auto r = Hifx({"reading", "--source", reading.string(), "--dest", out.string(), "--map", map,
                         "--no-orphans", "--no-reread"});
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_EQ(ReadBytes(out), ReadBytes(kTestData + golden)) << map;
  }
}

TEST_F(ReadingCommand, DamagedReadingFilesEndInTheDriversWords) {
  const std::string good = ReadBytes(kExamples + "reading.pdb");
  // Cut inside the meters: what came before is in the billing file.
  WriteBytes(dir / "cut.pdb", good.substr(0, good.size() - 900));
  const auto cut = Reading((dir / "cut.pdb").string());
  ASSERT_TRUE(cut.exited);
  EXPECT_EQ(cut.status, 65);
  EXPECT_NE(cut.out.find("Input past end of file\n"), std::string::npos) << cut.out;
  EXPECT_NE(cut.err.find("hifx: reading: " + (dir / "cut.pdb").string() + ": damaged handheld file: "), std::string::npos)
      << cut.err;
  EXPECT_NE(cut.out.find("Reading Conversion Finished\n"), std::string::npos);
  EXPECT_FALSE(ReadBytes(dir / "billing.txt").empty());
  // Record types outside the table are passed over.
  std::string odd = good;
  const size_t third = BigEndianAt(odd, 78 + 16, 4);
  ASSERT_GT(third, BigEndianAt(odd, 78, 4));
  odd[third + 1] = 9;  // the second route header becomes RecType 9 and is passed over
  WriteBytes(dir / "odd.pdb", odd);
  const auto o = Reading((dir / "odd.pdb").string());
  ASSERT_TRUE(o.exited);
  EXPECT_EQ(o.status, 0) << o.out;
  // Its meters keep their place in the list the file header sized, with no name.
  EXPECT_NE(ReadBytes(dir / "billing.txt").find("\r\n    000010"), std::string::npos);
}

}  // namespace
}  // namespace hifx::test
