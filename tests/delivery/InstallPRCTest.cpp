#include <gtest/gtest.h>

#include "support/TestRegistryStore.h"
#include "exchange/clsExchange.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

class InstallPRC : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(site);
    fs::create_directories(dir / "out");
    for (const char* unit : {"Unit1", "Unit2"}) fs::create_directories(dir / "sync" / unit);
    WriteBytes(route, "route file");
  }
  fs::path Queued(const std::string& unit) const {
    return dir / "sync" / unit / "Install" / "RouteHIF.pdb";
  }
  std::string Copied(const std::string& unit) const {
    return "Info: " + route.string() + " copied to HotSync install folder for " + unit;
  }

  TempDir dir;
  fs::path site = dir / "site";
  fs::path route = dir / "out" / "RouteHIF.pdb";
  TestRegistryStore store{dir.path()};
  TestShell shell;
  FixedClock clock{CivilTime{}};
  clsExchange exchange{{store, shell, clock, site, dir / "sync"}};
};

TEST_F(InstallPRC, AStoredUnitIsUsedTrimmedAndASecondInstallReplacesTheQueuedCopy) {
  exchange.AutoInstallUnit = "  Unit1 ";
  exchange.AutoInstallLeave = true;
  ASSERT_TRUE(exchange.InstallPRC(route));
  WriteBytes(route, "route file, second run");
  EXPECT_TRUE(exchange.InstallPRC(route));
  EXPECT_TRUE(shell.unitLists.empty());
  EXPECT_EQ(ReadBytes(Queued("Unit1")), "route file, second run");
  EXPECT_TRUE(shell.questions.empty());  // never "already scheduled"
  EXPECT_TRUE(fs::exists(route));
  EXPECT_EQ(shell.log, (std::vector<std::string>{Copied("Unit1"), Copied("Unit1")}));
}

TEST_F(InstallPRC, TheUnitIsAskedForWhenNoneIsStoredOrPromptIsSet) {
  // Nothing stored: asked although Prompt is off.
  exchange.AutoInstallPrompt = false;
  exchange.AutoInstallLeave = true;
  shell.units = {"Unit2"};
  EXPECT_TRUE(exchange.InstallPRC(route));
  ASSERT_EQ(shell.unitLists.size(), 1u);
  EXPECT_EQ(shell.unitLists[0], (std::vector<std::string>{"Unit1", "Unit2"}));
  EXPECT_TRUE(fs::exists(Queued("Unit2")));

  // A stored unit with Prompt set: the answer replaces it.
  exchange.AutoInstallUnit = "Unit2";
  exchange.AutoInstallPrompt = true;
  shell.units = {"Unit1"};
  EXPECT_TRUE(exchange.InstallPRC(route));
  EXPECT_EQ(exchange.AutoInstallUnit, "Unit1");
  EXPECT_TRUE(fs::exists(Queued("Unit1")));
  EXPECT_EQ(shell.log, (std::vector<std::string>{Copied("Unit2"), Copied("Unit1")}));
}

TEST_F(InstallPRC, ACancelledChoiceLeavesTheFileWhereItIs) {
  exchange.AutoInstallUnit = "Unit1";
  exchange.AutoInstallPrompt = true;
  exchange.AutoInstallLeave = false;
  EXPECT_FALSE(exchange.InstallPRC(route));
  EXPECT_EQ(shell.unitLists.size(), 1u);
  EXPECT_EQ(exchange.AutoInstallUnit, "");
  EXPECT_TRUE(fs::exists(route));
  EXPECT_FALSE(fs::exists(Queued("Unit1").parent_path()));
  EXPECT_TRUE(shell.log.empty());
}

TEST_F(InstallPRC, WithoutLeaveTheFileGoesOnlyOnceItIsQueued) {
  exchange.AutoInstallLeave = false;
  exchange.AutoInstallUnit = "../outside";
  EXPECT_FALSE(exchange.InstallPRC(route));
  EXPECT_TRUE(fs::exists(route));
  EXPECT_EQ(shell.log, std::vector<std::string>{
                           "Error: Unable to automatically install route to Handheld unit"});
  EXPECT_FALSE(fs::exists(dir / "outside"));

  shell.log.clear();
  exchange.AutoInstallUnit = "Unit1";
  EXPECT_TRUE(exchange.InstallPRC(route));
  EXPECT_FALSE(fs::exists(route));
  EXPECT_EQ(ReadBytes(Queued("Unit1")), "route file");
  EXPECT_EQ(shell.log, (std::vector<std::string>{
                           Copied("Unit1"), "Info: " + route.string() + " Removed from destination folder"}));
}

TEST_F(InstallPRC, ABareNameIsTakenFromTheSiteFolderAndRemovedFromThere) {
  WriteBytes(site / "RouteHIF.pdb", "in the site");
  exchange.AutoInstallUnit = "Unit2";
  exchange.AutoInstallLeave = false;
  EXPECT_TRUE(exchange.InstallPRC("RouteHIF.pdb"));
  EXPECT_EQ(ReadBytes(Queued("Unit2")), "in the site");
  EXPECT_FALSE(fs::exists(site / "RouteHIF.pdb"));
  EXPECT_TRUE(fs::exists(route));
  EXPECT_EQ(shell.log.back(), "Info: RouteHIF.pdb Removed from destination folder");
}

}  // namespace
}  // namespace hifx::test
