// The last step of a route conversion: the new file goes on the install queue
// of the handheld unit.
#include <exception>
#include <system_error>

#include "base/Failure.h"
#include "base/Text.h"
#include "delivery/UnitInstall.h"
#include "delivery/clsInstaller.h"
#include "exchange/clsExchange.h"

namespace hifx {

bool clsExchange::InstallPRC(const std::filesystem::path& path) {
  IShell& shell = env_.shell;
  try {
    std::string unit(Trim(AutoInstallUnit));
    if (unit.empty() || AutoInstallPrompt) {
      // The answer stands in for the stored unit, a cancel included.
      AutoInstallUnit = PromptUnit(env_.syncRoot, shell);
      unit = AutoInstallUnit;
    }
    // Nobody to send it to: the file stays where it is.
    if (unit.empty()) return false;

    const std::string file = path.string();
    clsInstaller installer(env_.siteFolder, env_.syncRoot, shell);
    // An earlier copy of the same name is taken off first, so a route sent
    // again replaces it.
    installer.RemovePRC(unit, file);
    if (!installer.PRC(unit, file)) {
      shell.WriteLog("Error: Unable to automatically install route to Handheld unit");
      return false;
    }
    shell.WriteLog("Info: " + file + " copied to HotSync install folder for " + unit);
    if (!AutoInstallLeave) {
      std::error_code ec;
      if (!std::filesystem::remove(installer.FilePath(file), ec)) {
        throw Failure(ec ? fail::kPathAccess : fail::kFileNotFound);
      }
      shell.WriteLog("Info: " + file + " Removed from destination folder");
    }
    return true;
  } catch (const std::exception& failure) {  // a Failure's what() is its description
    shell.WriteLog("Error: " + std::string(failure.what()));
  }
  return false;
}

}  // namespace hifx
