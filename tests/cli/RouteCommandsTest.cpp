#include <gtest/gtest.h>

#include <random>

#include "support/ExampleSite.h"

namespace hifx::test {
namespace {

using RouteCommand = ExampleSite;

TEST_F(RouteCommand, TheBundledExampleMatchesItsGoldenFile) {
  const auto dest = dir / "route.pdb";
  const auto r = Hifx({"route", "--source", kExamples + "route-fixed.txt", "--dest", dest.string()});
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_EQ(r.out,
            "Reading from " + kExamples + "route-fixed.txt\nWriting to " + dest.string() +
                "\nUsing Map: Billing\nRoute Conversion Starting 22:13 11/14/2023\n"
                "5 meters written to Route HIF File\nRoute Conversion Finished\n\n");
  EXPECT_EQ(ReadBytes(dest), ReadBytes(kTestData + "example-route.pdb"));
  // The stored settings are not changed by the options of a run.
  EXPECT_EQ(Hifx({"settings", "get", "RouteSource"}).out, "examples/route-fixed.txt\n");
}

TEST_F(RouteCommand, TheDelimitedExampleAndTheOverwriteQuestion) {
  const auto dest = dir / "csv.pdb";
  std::vector<std::string> args = {"route", "--source", kExamples + "route-delimited.csv", "--dest",
                                   dest.string(), "--map", "BillingCsv"};
  ASSERT_EQ(Hifx(args).status, 0);
  const auto no = Hifx(args);  // no terminal and no --yes: the answer is No
  EXPECT_EQ(no.status, 1);
  EXPECT_NE(no.out.find("Error: Route Destination already exists\n"), std::string::npos);
  EXPECT_EQ(WithoutSummary(no.err), "Route Destination already exists: " + dest.string() + " already exists.  Overwrite?\n");
  args.insert(args.begin(), "--yes");
  EXPECT_EQ(Hifx(args).status, 0);
}

TEST_F(RouteCommand, BadSourcesEndInTheDriversWords) {
  std::mt19937 random(11);
  std::string garbage(20000, '\0');
  for (char& c : garbage) c = static_cast<char>(random());
  WriteBytes(dir / "garbage.txt", garbage);
  WriteBytes(dir / "nuls.txt", std::string("0001000010\0\0\0\0\0\0W5", 18) + "\r\n");
  WriteBytes(dir / "long.txt", std::string(1 << 20, '7') + "\r\n");
  auto route = [&, runs = 0](const std::string& source, const std::string& map = "Billing") mutable {
    const auto dest = dir / ("run" + std::to_string(++runs) + ".pdb");
    return Hifx({"route", "--source", source, "--dest", dest.string(), "--map", map});
  };
  // Garbage repeats its tags sooner or later: the duplicate stops the run.
  const auto g = route((dir / "garbage.txt").string());
  EXPECT_EQ(g.status, 1);
  EXPECT_NE(g.out.find("Route HIF File NOT created\n"), std::string::npos) << g.out;
  // NULs are bytes like any other: the meter is written, with warnings.
  const auto n = route((dir / "nuls.txt").string());
  EXPECT_EQ(n.status, 0);
  EXPECT_NE(n.out.find("ServiceAddress empty in Line 1\n"), std::string::npos) << n.out;
  EXPECT_NE(n.out.find("Route Conversion Finished with Warnings\n"), std::string::npos);
  // A megabyte of sevens: the previous reading overflows its 32-bit field.
  const auto l = route((dir / "long.txt").string());
  EXPECT_EQ(l.status, 1);
  EXPECT_EQ(WithoutSummary(l.err), "Error: Overflow\n");
  EXPECT_NE(l.out.find("Route Conversion Finished with Warnings\n\n"), std::string::npos) << l.out;
  // A missing map, and a map of another use: route maps are looked up as .hcm.
  for (const char* map : {"Nothing", "Orphans"}) {
    const auto m = route(kExamples + "route-fixed.txt", map);
    EXPECT_EQ(m.status, 1);
    EXPECT_NE(m.out.find("Error: Could not load Route Conversion Map\n"), std::string::npos) << map;
  }
}

// check prints the faults and the verdict, and nothing of the conversion's
// log; the exit says whether the route would convert.
TEST_F(RouteCommand, CheckListsTheFaultsAndSaysWhetherTheRouteWouldConvert) {
  const auto good = Hifx({"check", kExamples + "route-fixed.txt"});
  EXPECT_EQ(good.status, 0) << good.err;
  EXPECT_EQ(good.out, "5 lines, 2 routes, 5 meters; 0 faults\nThe route would convert.\n");
  const auto csv = Hifx({"check", "--map", "BillingCsv", kExamples + "route-delimited.csv"});
  EXPECT_EQ(csv.status, 0) << csv.out;

  std::string lines = ReadBytes(kExamples + "route-fixed.txt");
  const std::string first = lines.substr(0, lines.find('\n') + 1);
  // The first line again (a repeated tag), then with its sequence 0.
  WriteBytes(dir / "bad.txt", lines + first + "0001000000" + first.substr(10));
  const auto bad = Hifx({"check", (dir / "bad.txt").string()});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.out,
            "line 6: MeterTagNbr \"1012345\": Meter Tag Number of 1012345 is duplicate in Line 6 (12 MAIN ST O'BRIEN J)\n"
            "line 7: Sequence \"0\": Sequence zero in Line 7\n"
            "line 7: MeterTagNbr \"1012345\": Meter Tag Number of 1012345 is duplicate in Line 7 (12 MAIN ST O'BRIEN J)\n"
            "7 lines, 2 routes, 7 meters; 3 faults: 2 duplicate tag, 1 zero\n"
            "The route would not convert: a duplicate tag: 1012345\n");
  EXPECT_FALSE(std::filesystem::exists(dir / "out"));
}

// A re-read list is checked through the re-read map; --json gives scripts
// the same as one object.
TEST_F(RouteCommand, CheckAReReadListAndTheCheckAsJson) {
  const auto list = Hifx({"check", "--reread", "--map", "ReRead", kExamples + "reread-tags.txt"});
  EXPECT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(list.out, "2 lines, 1 route, 2 meters; 0 faults\nThe route would convert.\n");

  WriteBytes(dir / "bad.txt", "1012346\n1012346\n");
  const auto json = Hifx({"check", "--reread", "--json", (dir / "bad.txt").string()});
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(json.out, "{\"file\":" + JsonQuoted((dir / "bad.txt").string()) +
                          ",\"kind\":\"reread\",\"converts\":false,"
                          "\"verdict\":\"The route would not convert: a duplicate tag: 1012346\","
                          "\"lines\":2,\"routes\":1,\"meters\":2,\"faultsByKind\":{\"duplicate tag\":1},"
                          "\"faults\":[{\"line\":2,\"field\":\"MeterTagNbr\",\"value\":\"1012346\","
                          "\"kind\":\"duplicate tag\",\"message\":\"Meter Tag Number of 1012346 is duplicate "
                          "in Line 2 (SEE ROUTE BOOK )\"}]}\n");
}

// --since: the example's second meter changed out and its last meter gone,
// against the example's readings.
TEST_F(RouteCommand, CheckSinceTheLastReadingsListsTheChangeOuts) {
  std::string lines = ReadBytes(kExamples + "route-fixed.txt");
  lines.replace(lines.find("1012346"), 7, "1019999");
  lines.replace(lines.find("SN4411"), 6, "SN9911");
  lines.erase(lines.rfind('\n', lines.size() - 2) + 1);  // the last line
  WriteBytes(dir / "changed.txt", lines);
  const auto r = Hifx({"check", "--since", kExamples + "reading.pdb", (dir / "changed.txt").string()});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "4 lines, 2 routes, 4 meters; 0 faults\n"
            "The route would convert.\n"
            "\n"
            "gone: account 200-002, route 2, sequence 20: meter SN5502, tag 0\n"
            "changed out: account 100-002, route 1, sequence 20: meter SN4411 -> SN9911, tag 1012346 -> 1019999\n"
            "Since " + kExamples + "reading.pdb: 1 changed out, 0 new, 1 gone\n");
}

}  // namespace
}  // namespace hifx::test
