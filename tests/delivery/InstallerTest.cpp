#include <gtest/gtest.h>

#include "delivery/UnitInstall.h"
#include "delivery/clsInstaller.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

class Installer : public testing::Test {
 protected:
  fs::path Queued(const std::string& unit, const std::string& file) const {
    return dir / "sync" / unit / "Install" / file;
  }

  TempDir dir;
  fs::path site = dir / "site";
  TestShell shell;
};

TEST_F(Installer, PrcTakesABareNameFromTheProgramsFolderAndSaysWhatWentWrong) {
  fs::create_directories(site);
  WriteBytes(site / "HALVERNLINK.PRC", "application");
  clsInstaller installer(site, dir / "sync", shell);
  EXPECT_EQ(installer.UserCount(), 0);

  EXPECT_TRUE(installer.PRC("Unit1", "HALVERNLINK.PRC"));
  EXPECT_EQ(ReadBytes(Queued("Unit1", "HALVERNLINK.PRC")), "application");
  EXPECT_TRUE(shell.questions.empty());

  EXPECT_TRUE(installer.PRC("Unit1", "HALVERNLINK.PRC"));  // already on its way
  EXPECT_FALSE(installer.PRC("Unit1", "/nowhere/x.prc"));
  EXPECT_FALSE(installer.PRC("bad/unit", "HALVERNLINK.PRC"));
  EXPECT_EQ(shell.Asked(), (std::vector<std::string>{
                                "Application (HALVERNLINK.PRC) is already scheduled to be installed "
                                "during next HotSync operation.",
                                "Application not found in " + site.string() + ": /nowhere/x.prc",
                                "Undefined error: -523 occurred."}));
}

TEST_F(Installer, FileSystemRefusalsAreUndefinedErrorsAndOtherRemovalsQuiet) {
  WriteBytes(dir / "route.pdb", "route");
  // A queued name that is a folder with something in it can't be removed, and
  // nothing can be copied where a plain file stands for the queue.
  fs::create_directories(Queued("Unit1", "stuck.pdb") / "inner");
  fs::create_directories(dir / "sync" / "Unit2");
  WriteBytes(dir / "sync" / "Unit2" / "Install", "not a folder");
  clsInstaller installer(site, dir / "sync", shell);
  EXPECT_TRUE(installer.RemovePRC("Nobody", "route.pdb"));
  EXPECT_TRUE(installer.RemovePRC("Unit1", "route.pdb"));
  EXPECT_TRUE(shell.questions.empty());

  EXPECT_FALSE(installer.RemovePRC("Unit1", "stuck.pdb"));
  EXPECT_FALSE(installer.PRC("Unit2", (dir / "route.pdb").string()));
  EXPECT_EQ(shell.Asked(), (std::vector<std::string>{"Undefined error: -1 occurred.",
                                                      "Undefined error: -1 occurred."}));
  // Beside the library's own words, the log says which file and why.
  ASSERT_EQ(shell.log.size(), 2u);
  EXPECT_EQ(shell.log[0].rfind("Error: Could not remove the queued " + Queued("Unit1", "stuck.pdb").string() + ": ", 0),
            0u);
  EXPECT_EQ(shell.log[1].rfind("Error: Could not make the queue " + (dir / "sync" / "Unit2" / "Install").string() + ": ", 0),
            0u);
}

TEST_F(Installer, UnitInstallWithNoUsersSaysSo) {
  const clsInstaller installer(site, dir / "sync", shell);
  EXPECT_TRUE(UnitInstallList(installer, shell).empty());
  EXPECT_EQ(shell.Asked(), std::vector<std::string>{
                                "Unable to locate any units!\r\nPerhaps the Palm Desktop software is "
                                "not installed \r\nor is not set up for your login id?"});
}

TEST_F(Installer, InstallUnitsSendsTheApplicationAndWarnsForMissingMeazuraFiles) {
  fs::create_directories(site);
  WriteBytes(site / "HALVERNLINK.PRC", "app");
  WriteBytes(site / "MeazuraLib_V302b.prc", "lib");
  clsInstaller installer(site, dir / "sync", shell);

  InstallUnits(installer, {"Unit1", "Unit2"}, true, shell);
  for (const char* unit : {"Unit1", "Unit2"}) {
    EXPECT_EQ(ReadBytes(Queued(unit, "HALVERNLINK.PRC")), "app");
    EXPECT_EQ(ReadBytes(Queued(unit, "MeazuraLib_V302b.prc")), "lib");
  }
  const std::string patchMissing =
      "Application not found in " + site.string() + ": MeazuraStartupPatch_V200b.prc";
  EXPECT_EQ(shell.Asked(), (std::vector<std::string>{patchMissing, patchMissing}));
  EXPECT_EQ(shell.log, (std::vector<std::string>{
                           "Warning: Meazura Startup patch file failed to install",
                           "Warning: Meazura Startup patch file failed to install"}));

  // Without Meazura only the application goes; a missing one is no warning.
  shell.log.clear();
  InstallUnits(installer, {"Unit3"}, false, shell, "TallyDesk");
  EXPECT_TRUE(shell.log.empty());
  EXPECT_EQ(shell.Asked().back(), "Application not found in " + site.string() + ": TALLYHORN.PRC");
  EXPECT_FALSE(fs::exists(Queued("Unit3", "MeazuraLib_V302b.prc")));
}

}  // namespace
}  // namespace hifx::test
