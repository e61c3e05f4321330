// Distribution files: a site's whole set-up in one text file, every setting
// under the registry root and every map file of the site folder, written on
// one desk and loaded on another.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "config/IRegistryStore.h"

namespace hifx {

class clsDist {
 public:
  clsDist(IRegistryStore& store, IShell& shell, std::filesystem::path siteFolder);

  // Writes the file; true when it was written. An empty path ends the
  // operation silently, as a cancelled dialog does.
  bool WriteDist(const std::filesystem::path& path);
  // Loads the file into the registry and the site folder; false when the file
  // can't be read or has no "DIST " header.
  bool LoadDist(const std::filesystem::path& path);

  // The text that WriteDist writes.
  std::string BuildDist();

 private:
  void LoadRegistrySection(const std::string& section);
  int unsaved_ = 0;  // registry values of the load that could not be saved
  void LoadMapSection(const std::string& section, int32_t use);

  IRegistryStore& store_;
  IShell& shell_;
  std::filesystem::path site_;
};

// The map files of a folder ("*.h?m"), sorted by name.
std::vector<std::filesystem::path> MapFilesIn(const std::filesystem::path& folder);

}  // namespace hifx
