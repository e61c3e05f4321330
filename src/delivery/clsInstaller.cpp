#include "delivery/clsInstaller.h"

#include "base/FileNames.h"

namespace hifx {

clsInstaller::clsInstaller(std::filesystem::path programFolder, std::filesystem::path syncRoot,
                           IShell& shell)
    : programFolder_(std::move(programFolder)),
      shell_(shell),
      library_(std::move(syncRoot)),
      users_(library_) {}

std::filesystem::path clsInstaller::FilePath(std::string_view file) const {
  // A bare name lies in the program's folder.
  return HasFolderPart(file) ? std::filesystem::path(file) : programFolder_ / std::filesystem::path(file);
}

void clsInstaller::ShowUndefined(int code) {
  shell_.MsgBox("Undefined error: " + std::to_string(code) + " occurred.");
  // The box's words are the install library's own; what the file system
  // said goes to the log beside them.
  if (!library_.LastProblem().empty()) shell_.WriteLog("Error: " + library_.LastProblem());
}

bool clsInstaller::PRC(std::string_view unit, std::string_view file) {
  library_.UmAddUser(unit);  // the result was never looked at
  const int code = library_.PltInstallFile(unit, FilePath(file));
  switch (code) {
    case install::kDone: return true;
    case install::kAlreadyQueued:
      // The file is on its way all the same.
      shell_.MsgBox("Application (" + std::string(file) +
                    ") is already scheduled to be installed during next HotSync operation.");
      return true;
    case install::kNotFound:
      shell_.MsgBox("Application not found in " + programFolder_.string() + ": " + std::string(file));
      return false;
    default: ShowUndefined(code); return false;
  }
}

bool clsInstaller::RemovePRC(std::string_view unit, std::string_view file) {
  const int code = library_.PltRemoveInstallFile(unit, file);
  switch (code) {
    case install::kDone:
    case install::kAlreadyQueued:
    case install::kNotFound:
    case install::kNoUser: return true;
    default: ShowUndefined(code); return false;
  }
}

}  // namespace hifx
