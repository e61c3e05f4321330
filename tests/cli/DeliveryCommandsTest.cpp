#include <gtest/gtest.h>

#include "support/RunHifx.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

class DeliveryCommands : public testing::Test {
 protected:
  // Runs hifx on the test's site, with the sync root left to its default.
  RunResult Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", site.string()});
    return RunHifx(args, dir, {{"HIFX_SYNC_ROOT", ""}});
  }

  TempDir dir;
  fs::path site = dir / "site";
  fs::path sync = site / "sync";
};

TEST_F(DeliveryCommands, UsersListsTheUserFoldersByName) {
  auto none = Run({"users"});
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.out, "");
  EXPECT_EQ(none.err, "hifx: users: no handheld users in " + sync.string() + "\n");

  for (const char* unit : {"Unit2", "Unit1", ".sync-state"}) fs::create_directories(sync / unit);
  EXPECT_EQ(Run({"users"}).out, "Unit1\nUnit2\n");
  // $HIFX_SYNC_ROOT names another root.
  fs::create_directories(dir / "elsewhere" / "Van");
  const auto other = RunHifx({"--site", site.string(), "users"}, dir,
                             {{"HIFX_SYNC_ROOT", (dir / "elsewhere").string()}});
  EXPECT_EQ(other.out, "Van\n");
  EXPECT_EQ(Run({"users", "extra"}).status, 64);
}

TEST_F(DeliveryCommands, InstallQueuesTheFileAndLeavesIt) {
  const fs::path route = dir / "RouteHIF.pdb";
  WriteBytes(route, "first");
  const auto first = Run({"install", route.string(), "--unit", "Unit1"});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, "Info: " + route.string() + " copied to HotSync install folder for Unit1\n");
  EXPECT_EQ(first.err, "");
  EXPECT_EQ(ReadBytes(sync / "Unit1" / "Install" / "RouteHIF.pdb"), "first");
  EXPECT_EQ(ReadBytes(route), "first");
}

TEST_F(DeliveryCommands, InstallWithNobodyToChooseTheUnitQueuesNothing) {
  const fs::path route = dir / "RouteHIF.pdb";
  WriteBytes(route, "route");
  const auto noUsers = Run({"install", route.string()});
  EXPECT_EQ(noUsers.status, 1);
  EXPECT_EQ(noUsers.err,
            "hifx: install: no handheld users in " + sync.string() + "; name one with --unit\n");

  fs::create_directories(sync / "Unit1");
  const auto notChosen = Run({"install", route.string()});
  EXPECT_EQ(notChosen.status, 1);
  EXPECT_EQ(notChosen.err, "hifx: install: no unit chosen; " + route.string() + " was not queued\n");
  EXPECT_FALSE(fs::exists(sync / "Unit1" / "Install"));
}

TEST_F(DeliveryCommands, InstallRefusesBadArguments) {
  WriteBytes(dir / "route.pdb", "route");
  const std::string route = (dir / "route.pdb").string();
  EXPECT_EQ(Run({"install"}).status, 64);
  EXPECT_EQ(Run({"install", route, "--unit", "../up"}).status, 64);
  const auto missing = Run({"install", (dir / "none.pdb").string(), "--unit", "Unit1"});
  EXPECT_EQ(missing.status, 66);
  EXPECT_EQ(missing.err, "hifx: install: cannot read " + (dir / "none.pdb").string() + ": no such file\n");
  EXPECT_FALSE(fs::exists(dir / "up"));
}

}  // namespace
}  // namespace hifx::test
