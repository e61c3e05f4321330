#include "cli/MapNames.h"

#include <system_error>
#include <vector>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "cli/Commands.h"
#include "maps/clsExchMap.h"

namespace hifx::cli {
namespace {

struct MapKind {
  std::string_view extension;
  int32_t use;
  const char* words;
};

constexpr MapKind kMapKinds[] = {
    {".hcm", kUseRoute, "a route map"}, {".hrm", kUseReading, "a reading map"}, {".hom", kUseOrphan, "an orphan map"}};

bool EndsWith(std::string_view name, std::string_view extension) {
  return name.size() > extension.size() && EqualsCaseBlind(name.substr(name.size() - extension.size()), extension);
}

const MapKind* KindOfName(std::string_view name) {
  for (const MapKind& kind : kMapKinds) {
    if (EndsWith(name, kind.extension)) return &kind;
  }
  return nullptr;
}

}  // namespace

int32_t UseOfName(std::string_view name) {
  const MapKind* kind = KindOfName(name);
  return kind == nullptr ? 0 : kind->use;
}

CLI::Validator MapOfUse(int32_t use) {
  return CLI::Validator(
      [use](std::string& name) -> std::string {
        const MapKind* kind = KindOfName(name);
        if (kind == nullptr) return {};
        const std::string wanted = MapExtension(use);
        if (kind->extension != wanted) {
          return name + " is " + kind->words + "; this takes a map of " + wanted;
        }
        name.erase(name.size() - wanted.size());
        return {};
      },
      "");
}

std::string MapFileNamed(const std::filesystem::path& siteFolder, const std::string& name) {
  if (name.find_first_of("/\\") != std::string::npos) {
    throw UsageError("a map NAME is a file name in the site folder");
  }
  if (KindOfName(name) != nullptr) return name;
  std::vector<std::string> found;
  for (const MapKind& kind : kMapKinds) {
    std::error_code error;
    const std::string file = name + std::string(kind.extension);
    if (std::filesystem::is_regular_file(siteFolder / file, error)) found.push_back(file);
  }
  if (found.empty()) {
    throw Failure(FailureKind::MissingInput, fail::kFileNotFound,
                  "could not load " + name + ": no " + name + ".hcm, .hrm or .hom in", siteFolder);
  }
  if (found.size() > 1) {
    std::string all;
    for (const std::string& file : found) all += (all.empty() ? "" : ", ") + file;
    throw UsageError(name + " names several maps (" + all + "); give the one meant with its extension");
  }
  return found.front();
}

}  // namespace hifx::cli
