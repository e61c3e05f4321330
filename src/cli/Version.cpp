#include "cli/Version.h"

#include "BuildId.h"
#include "base/Shell.h"
#include "hif/FileVersion.h"
#include "maps/clsExchMap.h"

namespace hifx::cli {

std::string VersionText() {
  SilentShell quiet;
  const int16_t fileVersion = LookupFileVersion(quiet, kProgramMajor, kProgramMinor);
  return "hifx " + std::to_string(kProgramMajor) + "." + std::to_string(kProgramMinor) + "\n" +
         "build " + kBuildId + "\n" + "writes handheld files of version " + std::to_string(fileVersion) +
         " and map files of version " + kMapFileVersion;
}

}  // namespace hifx::cli
