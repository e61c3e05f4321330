// The files of one run kept apart: no output may be one of the run's inputs
// or another of its outputs, whichever way the names arrived (settings,
// options, links), and only plain files are ever replaced.
#include "base/FileIdentity.h"
#include "exchange/clsExchange.h"

namespace hifx {

std::string clsExchange::MapFile(const std::string& map, int16_t use) const {
  return (env_.siteFolder / (map + MapExtension(use))).string();
}

bool clsExchange::FilesApart(const std::vector<RunFile>& sources, const std::vector<RunFile>& destinations) {
  for (size_t i = 0; i < destinations.size(); ++i) {
    const RunFile& out = destinations[i];
    if (!IsReplaceable(out.name)) return Fail("Error: " + out.role + " " + out.name + " is not a plain file");
    for (const RunFile& in : sources) {
      if (SameFile(out.name, in.name)) {
        return Fail("Error: " + out.role + " " + out.name + " is the same file as " + in.role + " " + in.name);
      }
    }
    for (size_t j = 0; j < i; ++j) {
      if (SameFile(out.name, destinations[j].name)) {
        return Fail("Error: " + out.role + " " + out.name + " is the same file as " + destinations[j].role + " " +
                    destinations[j].name);
      }
    }
  }
  return true;
}

}  // namespace hifx
