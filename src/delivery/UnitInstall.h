// What the two unit windows do apart from drawing: the unit chooser that a
// route install asks through, and the install of the handheld application.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"
#include "delivery/clsInstaller.h"

namespace hifx {

inline constexpr std::string_view kProgramTitle = "hifExchange";

// The handheld application's file for a program title; empty for a title
// outside the table.
std::string ApplicationFile(std::string_view title);

// The two support files of the Meazura extension.
inline constexpr std::string_view kMeazuraLibFile = "MeazuraLib_V302b.prc";
inline constexpr std::string_view kMeazuraPatchFile = "MeazuraStartupPatch_V200b.prc";

inline constexpr std::string_view kNoUnitsMessage =
    "Unable to locate any units!\r\n"
    "Perhaps the Palm Desktop software is not installed \r\n"
    "or is not set up for your login id?";

// frmPromptUnit.Display: the users offered through the shell's unit chooser;
// the chosen name, or empty for Cancel.
std::string PromptUnit(const std::filesystem::path& syncRoot, IShell& shell);

// The units frmUnitInstall lists. With none, it says so.
std::vector<std::string> UnitInstallList(const clsInstaller& installer, IShell& shell);

// The "INSTALL" action of frmUnitInstall: the application file of title from
// the program's folder to each checked unit, and with withMeazura the two
// Meazura files as well.
void InstallUnits(clsInstaller& installer, const std::vector<std::string>& units, bool withMeazura,
                  IShell& shell, std::string_view title = kProgramTitle);

}  // namespace hifx
