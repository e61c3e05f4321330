#include "base/FileNames.h"

namespace hifx {

std::string FileNamePart(std::string_view path) {
  const size_t cut = path.find_last_of("/\\");
  return std::string(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

bool HasFolderPart(std::string_view path) { return path.find_first_of("/\\") != std::string_view::npos; }

}  // namespace hifx
