#include <gtest/gtest.h>

#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

// Every file below folder, by its path relative to folder.
std::vector<std::string> FilesBelow(const fs::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(fs::relative(entry.path(), folder).generic_string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(SyncFolders, UsersAreTheFoldersOfTheRootInByteOrder) {
  TempDir dir;
  const fs::path root = dir / "sync";
  EXPECT_EQ(SyncFolders(root).UmGetUserCount(), 0);  // no root yet: no users
  for (const char* name : {"Zed", "amy", "Bob", ".stfolder"}) fs::create_directories(root / name);
  WriteBytes(root / "notes.txt", "not a user");

  const SyncFolders library(root);
  const clsPalmUsers users(library);
  ASSERT_EQ(users.UserCount(), 3);
  EXPECT_EQ(users.UserNames(), (std::vector<std::string>{"Bob", "Zed", "amy"}));
  EXPECT_EQ(users.Users()[2].UserID, 3);
  EXPECT_EQ(users.Users()[0].UserDirectory, (root / "Bob").string());

  // Looked up by name: exactly, else with no regard to case.
  std::string name = "zED";
  std::string folder;
  users.GetUserData(0, name, folder);
  EXPECT_EQ(name, "Zed");
  EXPECT_EQ(folder, (root / "Zed").string());
  name = "nobody";
  users.GetUserData(0, name, folder);
  EXPECT_EQ(name, "");
  EXPECT_EQ(folder, "");
  users.GetUserData(3, name, folder);
  EXPECT_EQ(name, "amy");
}

TEST(SyncFolders, NamesAndFoldersComeThroughTheDesktopsBuffers) {
  TempDir dir;
  const std::string longName(60, 'N');
  fs::create_directories(dir / "sync" / longName);
  const SyncFolders library(dir / "sync");
  const clsPalmUsers users(library);
  ASSERT_EQ(users.UserCount(), 1);
  EXPECT_EQ(users.Users()[0].UserName, std::string(49, 'N'));
  EXPECT_EQ(users.Users()[0].UserDirectory, (dir / "sync" / longName).string().substr(0, 149));
  EXPECT_EQ(clsPalmUsers::CleanZ(std::string("ab\0cd\0", 6)), "ab");
}

TEST(SyncFolders, AddUserMakesTheQueueAndRefusesNamesOutsideTheRoot) {
  TempDir dir;
  SyncFolders library(dir / "sync");
  EXPECT_EQ(library.UmAddUser("Unit1"), install::kDone);
  EXPECT_TRUE(fs::is_directory(dir / "sync" / "Unit1" / "Install"));
  EXPECT_EQ(library.UmGetIDFromName("Unit1"), 1);
  // Another spelling of a user is the same user.
  EXPECT_EQ(library.UmAddUser("UNIT1"), install::kDone);
  EXPECT_EQ(library.UmGetUserCount(), 1);
  for (const char* bad : {"", "..", ".hidden", "a/b", "../escape", "a\\b"}) {
    EXPECT_EQ(library.UmAddUser(bad), install::kNoUser) << bad;
  }
  EXPECT_FALSE(fs::exists(dir / "escape"));
  EXPECT_EQ(library.UmGetUserCount(), 1);
}

TEST(SyncFolders, QueueAndRemove) {
  TempDir dir;
  SyncFolders library(dir / "sync");
  library.UmAddUser("Unit1");
  const fs::path queue = dir / "sync" / "Unit1" / "Install";
  const fs::path source = dir / "route.pdb";
  WriteBytes(source, std::string("BOOKqHVN\0\x01", 10));

  EXPECT_EQ(library.PltInstallFile("Unit1", source), install::kDone);
  EXPECT_EQ(ReadBytes(queue / "route.pdb"), ReadBytes(source));
  EXPECT_EQ(FilesBelow(dir / "sync"), std::vector<std::string>{"Unit1/Install/route.pdb"});

  // A second queue of the name, in any case, leaves the first copy alone.
  WriteBytes(source, "changed");
  EXPECT_EQ(library.PltInstallFile("unit1", source), install::kAlreadyQueued);
  EXPECT_EQ(ReadBytes(queue / "route.pdb"), std::string("BOOKqHVN\0\x01", 10));

  EXPECT_EQ(library.PltInstallFile("Unit1", dir / "missing.pdb"), install::kNotFound);
  EXPECT_EQ(library.PltInstallFile("Nobody", source), install::kNoUser);
  EXPECT_FALSE(fs::exists(dir / "sync" / "Nobody"));

  EXPECT_EQ(library.PltRemoveInstallFile("Unit1", (dir / "ROUTE.PDB").string()), install::kDone);
  EXPECT_EQ(FilesBelow(dir / "sync"), std::vector<std::string>{});
  EXPECT_EQ(library.PltRemoveInstallFile("Unit1", "route.pdb"), install::kNotFound);
  EXPECT_EQ(library.PltRemoveInstallFile("Nobody", "route.pdb"), install::kNoUser);
}

}  // namespace
}  // namespace hifx::test
