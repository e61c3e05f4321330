// Queues files for a handheld unit and takes them off the queue again, with
// the messages the operator has always seen for each outcome.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"
#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"

namespace hifx {

class clsInstaller {
 public:
  // programFolder: where a file named without a folder is taken from (the
  // handheld application files lie there). syncRoot: the users' folders.
  clsInstaller(std::filesystem::path programFolder, std::filesystem::path syncRoot, IShell& shell);
  clsInstaller(const clsInstaller&) = delete;
  clsInstaller& operator=(const clsInstaller&) = delete;

  int16_t UserCount() const { return users_.UserCount(); }
  std::vector<std::string> UserNames() const { return users_.UserNames(); }

  // Queues file for unit, adding the unit when it is new. True when queued,
  // and also when a file of that name was queued already.
  bool PRC(std::string_view unit, std::string_view file);
  // Takes the queued copy of file's name off unit's queue. True when it is
  // gone or was never there.
  bool RemovePRC(std::string_view unit, std::string_view file);

  // Where file is: a name with no folder part lies in the program's folder.
  std::filesystem::path FilePath(std::string_view file) const;

 private:
  void ShowUndefined(int code);

  std::filesystem::path programFolder_;
  IShell& shell_;
  SyncFolders library_;
  clsPalmUsers users_;
};

}  // namespace hifx
