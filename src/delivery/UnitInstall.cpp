#include "delivery/UnitInstall.h"

#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"

namespace hifx {

std::string ApplicationFile(std::string_view title) {
  if (title == kProgramTitle) return "HALVERNLINK.PRC";
  if (title == "TallyDesk") return "TALLYHORN.PRC";
  if (title == "ETallyDesk") return "ETALLYHORN.PRC";
  return {};
}

std::string PromptUnit(const std::filesystem::path& syncRoot, IShell& shell) {
  const SyncFolders library(syncRoot);
  return shell.ChooseUnit(clsPalmUsers(library).UserNames());
}

std::vector<std::string> UnitInstallList(const clsInstaller& installer, IShell& shell) {
  std::vector<std::string> units = installer.UserNames();
  if (units.empty()) shell.MsgBox(kNoUnitsMessage);
  return units;
}

void InstallUnits(clsInstaller& installer, const std::vector<std::string>& units, bool withMeazura,
                  IShell& shell, std::string_view title) {
  // A bare name, so that the file is taken from the program's folder.
  const std::string application = ApplicationFile(title);
  for (const std::string& unit : units) {
    installer.PRC(unit, application);
    if (!withMeazura) continue;
    if (!installer.PRC(unit, kMeazuraLibFile)) {
      shell.WriteLog("Warning: Meazura Support extension file failed to install");
    }
    if (!installer.PRC(unit, kMeazuraPatchFile)) {
      shell.WriteLog("Warning: Meazura Startup patch file failed to install");
    }
  }
}

}  // namespace hifx
