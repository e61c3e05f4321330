#include <gtest/gtest.h>

#include <thread>

#include "support/ExampleSite.h"

namespace hifx::test {
namespace {

const std::string kExampleSite = kExamples + "site.dst";

std::vector<std::string> At(const std::filesystem::path& site, std::vector<std::string> args) {
  args.insert(args.begin(), {"--site", site.string()});
  return args;
}

TEST(DistCommands, ALoadedSiteWritesBackTheSameFileAndMaps) {
  TempDir dir;
  const auto first = dir / "first";
  const auto second = dir / "second";
  const auto load = RunHifx(At(first, {"dist", "load", kExampleSite}), dir);
  ASSERT_EQ(load.status, 0) << load.err;
  EXPECT_EQ(load.err, "Distribution: " + kExampleSite + " loaded.\n");
  const auto written = dir / "copy.dst";
  ASSERT_EQ(RunHifx(At(first, {"dist", "write", written.string()}), dir).status, 0);
  EXPECT_EQ(ReadBytes(written), ReadBytes(kExampleSite));

  ASSERT_EQ(RunHifx(At(second, {"dist", "load", written.string()}), dir).status, 0);
  const auto dumpFirst = RunHifx(At(first, {"registry", "dump"}), dir);
  const auto dumpSecond = RunHifx(At(second, {"registry", "dump"}), dir);
  ASSERT_EQ(dumpFirst.status, 0);
  EXPECT_EQ(dumpFirst.out, dumpSecond.out);
  EXPECT_EQ(dumpFirst.out.rfind("ChangeoutMFG:\r\n> AC = \"Acme Meter Co\"\r\n", 0), 0u);
  EXPECT_NE(dumpFirst.out.find("\r\nRoute:\r\n> Destination = \"out/example/route.pdb\"\r\n"), std::string::npos);
  for (const char* map : {"Billing.hcm", "BillingCsv.hcm", "Billing.hrm", "Orphans.hom"}) {
    EXPECT_EQ(ReadBytes(first / map), ReadBytes(second / map)) << map;
    EXPECT_FALSE(ReadBytes(second / map).empty()) << map;
  }
}

TEST(DistCommands, ALoadWithoutTheHeaderIsRefused) {
  TempDir dir;
  WriteBytes(dir / "bad.dst", "[REGISTRY]\r\nRoute:\r\n> Source = \"x\"\r\n");
  const auto r = RunHifx(At(dir / "site", {"dist", "load", (dir / "bad.dst").string()}), dir);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Distribution: Distribution file not properly formatted\n");
  const auto missing = RunHifx(At(dir / "site", {"dist", "load", (dir / "none.dst").string()}), dir);
  EXPECT_EQ(missing.status, 66);
  EXPECT_NE(missing.err.find("none.dst"), std::string::npos) << missing.err;
}

TEST(SettingsCommands, SetGetAndShow) {
  TempDir dir;
  const auto site = dir / "site";
  EXPECT_EQ(RunHifx(At(site, {"settings", "set", "routesource", "/data/r.txt"}), dir).status, 0);
  EXPECT_EQ(RunHifx(At(site, {"settings", "set", "AutoReRead", "Y"}), dir).status, 0);
  EXPECT_EQ(RunHifx(At(site, {"settings", "set", "OrphanConvert", "-1"}), dir).status, 0);
  EXPECT_EQ(RunHifx(At(site, {"settings", "get", "RouteSource"}), dir).out, "/data/r.txt\n");
  const auto show = RunHifx(At(site, {"settings"}), dir);
  EXPECT_NE(show.out.find("\nAutoReRead=Y\n"), std::string::npos);
  EXPECT_NE(show.out.find("\nOrphanConvert=-1\n"), std::string::npos);
  EXPECT_NE(show.out.find("\nReadingSource=ReadingHIF.pdb\n"), std::string::npos);
  // An empty destination can't be stored: it reads back as the default.
  const auto empty = RunHifx(At(site, {"settings", "set", "RouteDestination", ""}), dir);
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.err, "hifx: settings: RouteDestination reads back as \"RouteHIF.pdb\"\n");
  EXPECT_EQ(RunHifx(At(site, {"settings", "set", "AutoReRead", "maybe"}), dir).status, 64);
  EXPECT_EQ(RunHifx(At(site, {"settings", "get", "Nothing"}), dir).status, 64);
}

// Two scripts setting different settings of one site at once: every set
// stays, none is undone by the other's.
TEST(SettingsCommands, TwoProcessesSettingAtOnceLoseNothing) {
  TempDir dir;
  const auto site = dir / "site";
  ASSERT_EQ(RunHifx(At(site, {"settings", "set", "RouteSource", "start"}), dir).status, 0);
#ifdef _WIN32
  constexpr int kSets = 20;  // each start of the program under Wine takes a while
#else
  constexpr int kSets = 200;
#endif
  auto setter = [&](const char* setting, int& failures) {
    TempDir own;  // each its own captured output
    for (int i = 1; i <= kSets; ++i) {
      const std::string value = std::string(setting) + std::to_string(i);
      if (RunHifx(At(site, {"settings", "set", setting, value}), own).status != 0) ++failures;
    }
  };
  int failuresA = 0;
  int failuresB = 0;
  std::thread a(setter, "RouteSource", std::ref(failuresA));
  std::thread b(setter, "ReadingDestination", std::ref(failuresB));
  a.join();
  b.join();
  EXPECT_EQ(failuresA, 0);
  EXPECT_EQ(failuresB, 0);
  const auto show = RunHifx(At(site, {"settings"}), dir);
  const std::string last = std::to_string(kSets) + "\n";
  EXPECT_NE(show.out.find("RouteSource=RouteSource" + last), std::string::npos) << show.out;
  EXPECT_NE(show.out.find("ReadingDestination=ReadingDestination" + last), std::string::npos) << show.out;
}

TEST(SiteCommands, ShowListsEverySection) {
  TempDir dir;
  const auto site = dir / "site";
  ASSERT_EQ(RunHifx(At(site, {"dist", "load", kExampleSite}), dir).status, 0);
  const auto show = RunHifx(At(site, {"site", "show"}), dir);
  ASSERT_EQ(show.status, 0) << show.err;
  EXPECT_EQ(show.out.rfind("[LoginSetup]\nUseLogin=Y\n[LoginIDs]\nREADER1\tread1\t\nSUPER\tsuper123\tS\n", 0), 0u);
  EXPECT_NE(show.out.find("[Skip]\nDOG\tDog in yard\nLCK\tLocked gate\n"), std::string::npos);
  EXPECT_NE(show.out.find("[OperPrefs]\nAlertOutOfBounds=2\nAlertRollover=1\nAlertTamper=2\n"),
            std::string::npos);
}

#ifndef _WIN32
// The settings file of a machine without a registry, when it is no database
// or one damaged inside: an error naming it, never the defaults, and the file
// stays as it was.
TEST(SiteCommands, ARegistryThatIsNoDatabaseOrIsDamagedIsAnErrorAndStaysAsItWas) {
  for (const bool damaged : {false, true}) {
    SCOPED_TRACE(damaged ? "damaged" : "not a database");
    TempDir dir;
    const auto site = dir / "site";
    std::filesystem::create_directories(site);
    std::string bytes = "this is not a database, it is a letter";
    if (damaged) {
      ASSERT_EQ(RunHifx(At(site, {"dist", "load", kExampleSite}), dir).status, 0);
      bytes = ReadBytes(site / "registry.db");
      ASSERT_GT(bytes.size(), 3u * 4096);
      for (size_t at = 4096 + 8; at < 3 * 4096; at += 7) bytes[at] = static_cast<char>(0xA5);
    }
    WriteBytes(site / "registry.db", bytes);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"settings"}, {"site", "show"}, {"registry", "dump"}, {"dist", "load", kExampleSite},
          {"settings", "set", "RouteMap", "x"}}) {
      const auto r = RunHifx(At(site, command), dir);
      EXPECT_EQ(r.status, 78) << command[0] << r.out;
      EXPECT_NE(r.err.find((site / "registry.db").string() + ": "), std::string::npos) << r.err;
    }
    EXPECT_EQ(ReadBytes(site / "registry.db"), bytes);
  }
}
#endif

}  // namespace
}  // namespace hifx::test
