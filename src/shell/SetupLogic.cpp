#include "shell/SetupLogic.h"

#include <algorithm>
#include <system_error>

#include "base/CaseBlind.h"
#include "maps/clsExchMap.h"

namespace hifx::shell {

int HIFTypePosition(std::string_view word) {
  for (int i = 0; i < 3; ++i) {
    if (word == kHIFTypeWords[i]) return i;
  }
  return 0;
}

std::string HIFTypeWord(int position) { return kHIFTypeWords[position >= 0 && position < 3 ? position : 0]; }

std::vector<std::string> MapChoices(const std::filesystem::path& folder, int32_t use) {
  const std::string extension = UpperCase(MapExtension(use));
  std::vector<std::string> names;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::filesystem::path& file = it->path();
    if (extension.empty() || UpperCase(file.extension().string()) != extension) continue;
    names.push_back(file.stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

int InterchangeFilterIndex(const std::filesystem::path& file) {
  const std::string extension = UpperCase(file.extension().string());
  const char* const kExtensions[] = {".HIF", ".DAT", ".PRC", ".PDB"};
  for (int i = 0; i < 4; ++i) {
    if (extension == kExtensions[i]) return i;
  }
  return 0;
}

std::string MapChoiceOf(const std::string& editorResult) {
  if (editorResult.empty() || editorResult == "{DELETED}") return {};
  return std::filesystem::path(editorResult).stem().string();
}

}  // namespace hifx::shell
